#include "kvshare/os/sharedlibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

namespace fs = std::filesystem;

class SharedLibraries : public testing::Test {
 protected:
  SharedLibraries() {
    fs::create_directories(folder_.File("first"));
    fs::create_directories(folder_.File("second"));
  }

  const TemporaryFolder folder_;
  const std::string both_ = folder_.File("first") + "::" + folder_.File("second");
  const WithVariable path_{"KVSHARE_LIBRARY_PATH", both_.c_str()};
};

int AnswerOf(const SharedLibrary& library) {
  const auto answer = reinterpret_cast<int (*)()>(library.Entry("Answer"));
  return answer != nullptr ? answer() : 0;
}

TEST_F(SharedLibraries, ABareNameIsLookedForAsTheSystemSpellsIt) {
  struct Case {
    std::string file, name;
    const char* why;
  };
  const Case cases[] = {
      {"first/libKvTestA.so", "KvTestA", "the system's form"},
      {"second/libKvTestB.so", "KvTestB.DLL", "a later folder, the platform's form"},
      {"first/KvTestC.so", "KvTestC", "without lib"},
      {"first/libkvtestd.so", "KVTESTD.dll", "letter case"},
      {"first/libkvteste.so", "LibKvTestE", "with its own lib"},
      {"first/libkvtestf.so.5", "libkvtestf.so.5", "a version"},
      {"first/libkvtestg.so", folder_.File("first/KvTestG.dll"), "beside a full name"},
      {"first/odd.dll", folder_.File("first\\odd.dll"), "a full name as it stands"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    fs::copy_file(WHOLE_LIBRARY, folder_.File(c.file));
    const SharedLibrary library(c.name);
    ASSERT_TRUE(library.Loaded()) << library.ErrorText();
    EXPECT_EQ(library.ErrorCode(), 0);
    EXPECT_EQ(AnswerOf(library), 42);
    EXPECT_EQ(library.Entry("answer"), nullptr) << "entries have letter case";
    EXPECT_EQ(library.Entry("exit"), nullptr) << "another library's";
    EXPECT_EQ(library.Handle(), SharedLibrary(c.name).Handle());
  }
}

TEST_F(SharedLibraries, TheSystemsOwnSearchComesLast) {
  for (const std::string_view name : {"LIBC.so.6", "libc.so.6"}) {
    const SharedLibrary library(name);
    EXPECT_TRUE(library.Loaded()) << library.ErrorText();
    EXPECT_NE(library.Entry("malloc"), nullptr);
  }
}

TEST_F(SharedLibraries, FailuresHaveTheirCodes) {
  fs::copy_file(LACKING_LIBRARY, folder_.File("first/libLacking.so"));
  fs::copy_file(WHOLE_LIBRARY, folder_.File("second/libLacking.so"));
  std::string foreign = ReadFileBytes(WHOLE_LIBRARY);
  foreign[18] = '\x02';  // the machine of an ELF file: another processor
  WriteFileBytes(folder_.File("first/libForeign.so"), foreign);
  WriteFileBytes(folder_.File("first/libText.so"), "MZ");
  const std::string whole = ReadFileBytes(WHOLE_LIBRARY);
  WriteFileBytes(folder_.File("first/libHead.so"), whole.substr(0, 100));
  WriteFileBytes(folder_.File("first/libBegun.so"), whole.substr(0, 4096));
  struct Case {
    std::string name;
    int code;
    std::string text;
    const char* why;
  };
  const Case cases[] = {
      {"KvNoSuchLibrary.DLL", 1157, "KvNoSuchLibrary", "no file"},
      {folder_.File("first/none.dll"), 1157, "none.dll", "no file of a full name"},
      {"", 1157, "", "no name"},
      {".dll", 1157, "", "nothing but an extension"},
      {folder_.File("first/"), 1157, "", "a folder"},
      {"Q:\\x.dll", 1157, "", "no such drive"},
      {"a\xFF.dll", 1157, "", "a byte that is no letter"},
      {std::string("c\0.so", 5), 1157, "", "a zero byte"},
      {"Foreign", 193, "libForeign.so", "another machine's"},
      {"Text", 193, "libText.so", "no library"},
      {"Head", 193, "too short", "the copy broke off in its headers"},
      {"Begun", 193, "too short", "the copy broke off behind them"},
      {"Lacking", 193, "NowhereToBeFound", "what it needs is missing; no later file hides that"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const SharedLibrary library(c.name);
    EXPECT_FALSE(library.Loaded());
    EXPECT_EQ(library.ErrorCode(), c.code);
    EXPECT_NE(library.ErrorText().find(c.text), std::string::npos) << library.ErrorText();
    EXPECT_EQ(library.Entry("Answer"), nullptr);
  }
}

TEST_F(SharedLibraries, OneObjectOwnsALibrary) {
  fs::copy_file(WHOLE_LIBRARY, folder_.File("first/libMoved.so"));
  SharedLibrary first("Moved");
  SharedLibrary second(std::move(first));
  EXPECT_TRUE(second.Loaded());
  first = SharedLibrary("KvNoSuchLibrary");
  EXPECT_FALSE(first.Loaded());
  first = std::move(second);
  EXPECT_EQ(AnswerOf(first), 42);
}

TEST_F(SharedLibraries, CandidatesOfAFullNameLieBesideIt) {
  EXPECT_EQ(SharedLibrary::Candidates("/opt/app\\x.DLL"),
            (std::vector<std::string>{"/opt/app/libx.so", "/opt/app/x.so", "/opt/app/x.DLL"}));
}

TEST_F(SharedLibraries, CandidatesTellWhereAFileMayLie) {
  const std::vector<std::string> all = SharedLibrary::Candidates("KovraWin.DLL");
  ASSERT_GE(all.size(), 8u);
  EXPECT_EQ(all[0], folder_.File("first/libKovraWin.so"));
  EXPECT_EQ(all[1], folder_.File("first/KovraWin.so"));
  EXPECT_EQ(all[3], folder_.File("second/KovraWin.so")) << "an empty folder is skipped";
  EXPECT_TRUE(std::ranges::any_of(all, [](const std::string& file) {
    return file.ends_with("/kvshare/kvshare/libKovraWin.so");  // the library's folder is `kvshare`
  }));
  EXPECT_EQ(
      std::vector<std::string>(all.end() - 4, all.end()),
      (std::vector<std::string>{"libKovraWin.so", "KovraWin.so", "libkovrawin.so", "kovrawin.so"}));
}

}  // namespace
}  // namespace kvshare::os
