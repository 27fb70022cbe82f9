#include "apps/kvshare/terminal/stream.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/apps/tempfile.h"

namespace kvshare::app {
namespace {

std::string ReadAll(int fd) {
  LineReader reader(fd, [](bool) {});
  std::string seen;
  std::string_view line;
  for (;;) {
    switch (reader.Next(line)) {
      case LineReader::Result::End:
        return seen;
      case LineReader::Result::TooLong:
        seen += "<long>";
        break;
      case LineReader::Result::Line:
        seen.append("[").append(line.size() < 100 ? line : std::to_string(line.size())).append("]");
    }
  }
}

TEST(LineReader, Lines) {
  const std::string block(300'000, 'x');  // more than one read
  const std::string most(LineReader::kMaxLine, 'y');
  const struct {
    std::string input, want;
    const char* why;
  } cases[] = {
      {"", "", "no line"},
      {"a", "[a]", "a last line without an end"},
      {"a\r\n\r\nb\n", "[a][][b]", "both line ends, an empty line"},
      {"a\rb\n", "[a\rb]", "a lone CR belongs to the line"},
      {"\xEF\xBB\xBF"
       "1\n\xEF\xBB\xBF"
       "2\n",
       "[1][\xEF\xBB\xBF"
       "2]",
       "a byte-order mark only at the start"},
      {"\xEF\xBB\xBF", "", "nothing but a byte-order mark"},
      {"\xEF\xBB", "[\xEF\xBB]", "half a byte-order mark is text"},
      {block + "\nb\n" + block, "[300000][b][300000]", "lines over the block's end"},
      {most + "\nb", "[16777216][b]", "the longest line"},
      {most + "y\nb", "<long>[b]", "one byte more"},
      {most + most + most + "\n" + block, "<long>[300000]", "far longer"},
      {most + most, "<long>", "the rest of the input"},
  };
  for (const auto& c : cases) {
    const TempFile file(c.input);
    EXPECT_EQ(ReadAll(file.Fd()), c.want) << c.why;
  }
}

TEST(LineReader, TakesAByteAtATime) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  std::thread writer([&] {
    for (const char c : std::string_view("\xEF\xBB\xBF"
                                         "ab\r\nc\n")) {
      EXPECT_EQ(::write(ends[1], &c, 1), 1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ::close(ends[1]);
  });
  EXPECT_EQ(ReadAll(ends[0]), "[ab][c]");
  writer.join();
  ::close(ends[0]);
}

TEST(LineReader, SaysWhatFailed) {
  LineReader reader(-1, [](bool) {});
  std::string_view line;
  EXPECT_THROW(reader.Next(line), StreamError);
}

}  // namespace
}  // namespace kvshare::app
