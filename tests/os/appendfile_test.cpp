#include "kvshare/os/appendfile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <map>
#include <vector>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/lines.h"
#include "tests/os/childprocess.h"
#include "tests/support.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

TEST(AppendToFile, CreatesWhatIsMissing) {
  const TemporaryFolder folder;
  const std::string file = folder.File("a\\b\\log.txt");
  os::AppendToFile(file, "one\r\n");
  os::AppendToFile(file, "");
  os::AppendToFile(file, "two\r\n");
  EXPECT_EQ(ReadFileBytes(folder.File("a/b/log.txt")), "one\r\ntwo\r\n");
  os::AppendToFile(folder.File("c/d/log.txt"), "one");
  EXPECT_EQ(ReadFileBytes(folder.File("c/d/log.txt")), "one");
}

TEST(AppendToFile, WritesOverTheEndMark) {
  const TemporaryFolder folder;
  const std::string file = folder.File("log");
  const std::string marks(200, '\x1A');
  struct Case {
    std::string before, after;
    const char* why;
  };
  const Case cases[] = {
      {"a\r\n\x1A", "a\r\n+", "one"},
      {marks.substr(0, 128), "+", "nothing else in 128 bytes"},
      {"a" + marks, "a" + marks.substr(0, 72) + "+", "at most 128"},
      {"\x1A z", "\x1A z+", "text behind a mark is kept"},
      {"no end", "no end+", "none"},
  };
  for (const Case& c : cases) {
    WriteFileBytes(file, c.before);
    os::AppendToFile(file, "+");
    EXPECT_EQ(ReadFileBytes(file), c.after) << c.why;
  }
}

TEST(AppendToFile, FailuresHaveThePlatformsMessages) {
  const TemporaryFolder folder;
  WriteFileBytes(folder.File("file"), "");
  const auto message = [](const std::string& name) {
    return MessageOf<EInOutError>([&] { os::AppendToFile(name, "x"); });
  };
  EXPECT_EQ(message(folder.Path().string()), "File access denied");
  EXPECT_EQ(message(folder.File("file\\sub\\log")), "Invalid filename");
  EXPECT_EQ(message("?:\\log"), "Invalid filename");
  EXPECT_EQ(message("/dev/full"), "Disk full");
}

// No file may grow past the limit, as on a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(rlim_t most) {
    ::getrlimit(RLIMIT_FSIZE, &earlier_);
    const rlimit limit{most, earlier_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &earlier_);
    std::signal(SIGXFSZ, signal_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit earlier_{};
  void (*signal_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST(AppendToFile, OfAnAppendThatFailsNothingStays) {
  const TemporaryFolder folder;
  const std::string file = folder.File("log");
  os::AppendToFile(file, "first\r\n");
  {
    const FullDisk disk(20);
    EXPECT_EQ(MessageOf<EInOutError>([&] { os::AppendToFile(file, std::string(30, 'x')); }),
              "Disk full");
    EXPECT_EQ(ReadFileBytes(file), "first\r\n");
  }
  os::AppendToFile(file, "second\r\n");
  EXPECT_EQ(ReadFileBytes(file), "first\r\nsecond\r\n");
}

// Lines of all lengths, so that a torn one shows.
TEST(AppendToFile, ManyProcessesKeepTheirLinesWhole) {
  constexpr int kProcesses = 8;
  constexpr int kLines = 300;
  const TemporaryFolder folder;
  const std::string file = folder.File("log");
  const auto line = [](int process, int number) {
    return std::to_string(process) + std::string(static_cast<std::size_t>(number * 37 % 5000), '.');
  };
  {
    std::vector<ChildProcess> writers;
    for (int process = 0; process < kProcesses; ++process) {
      writers.emplace_back([&, process] {
        for (int i = 0; i < kLines; ++i) os::AppendToFile(file, line(process, i) + "\r\n");
        return true;
      });
    }
    for (ChildProcess& writer : writers) EXPECT_TRUE(writer.Held());
  }
  const std::string bytes = ReadFileBytes(file);
  std::string_view rest = bytes;
  std::map<int, int> next;
  while (!rest.empty()) {
    const std::string_view found = TakeLine(rest);
    const int process = found.empty() ? -1 : found[0] - '0';
    ASSERT_EQ(found, line(process, next[process]++)) << "in each writer's order";
  }
  for (int process = 0; process < kProcesses; ++process) EXPECT_EQ(next[process], kLines);
}

}  // namespace
}  // namespace kvshare
