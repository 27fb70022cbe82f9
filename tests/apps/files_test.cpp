// The files command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/rtl/filebytes.h"
#include "tests/apps/tempfile.h"
#include "tests/os/filesupport.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;

Outcome Files(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "files");
  return Kvshare(std::move(arguments));
}

class FilesCommand : public ::testing::Test {
 protected:
  FilesCommand() {
    home_.Make("X/a.txt");
    home_.Make("X/ไทย/ข.txt");
    home_.Make("X/日本\x1B/y");
  }
  TemporaryHome home_;
  std::string x_ = (home_.Drive() / "X").string();
};

TEST_F(FilesCommand, CountsAndLists) {
  const struct {
    std::vector<std::string> arguments;
    std::string out;
  } cases[] = {
      {{"count", "c:\\x"}, "1\n"},
      {{"count", "--recursive", x_}, "3\n"},
      {{"count", "--recursive", "--json", "--mask", "ไ*", x_ + "/"}, "{\"files\":1}\n"},
      {{"list", x_}, x_ + "/a.txt\n"},
      {{"list", "--recursive", "--mask", "none", "C:\\X\\ไทย\\"}, ""},
      {{"list", "C:\\X\\ไทย"}, "C:\\X\\ไทย\\ข.txt\n"},
      {{"list", x_ + "/日本\x1B"}, x_ + "/日本?/y\n"},
      {{"list", "--json", x_ + "/日本\x1B"}, "{\"file\":\"" + x_ + "/日本\\u001b/y\"}\n"},
  };
  for (const auto& c : cases) {
    const Outcome got = Files(c.arguments);
    EXPECT_EQ(got.out, c.out);
    EXPECT_EQ(got.err, "");
    EXPECT_EQ(got.status, 0);
  }
}

TEST_F(FilesCommand, CopiesAndTellsWhatItCouldNot) {
  Outcome got = Files({"copy", "--recursive", "C:\\X", (home_.Path() / "new/to").string()});
  EXPECT_EQ(got.out + got.err, "3 files copied\n");
  EXPECT_TRUE(std::filesystem::exists(home_.Path() / "new/to/日本\x1B/y"));
  std::filesystem::create_directories(home_.Drive() / "Y/a.txt");
  got = Files({"copy", "--json", x_, "C:\\Y\\"});
  EXPECT_EQ(got.out, "{\"copied\":0,\"failed\":1}\n");
  EXPECT_EQ(got.err, x_ + "/a.txt: Is a directory\n");
  EXPECT_EQ(got.status, 1);
}

TEST_F(FilesCommand, DeletesOnlyWhenToldSo) {
  home_.Make("X/.keep");
  Outcome got = Files({"delete", "--recursive", "C:\\X\\"});
  EXPECT_THAT(got.out, HasSubstr("C:\\X\\a.txt\n"));
  EXPECT_THAT(got.out, HasSubstr("C:\\X\\ไทย\\ข.txt\nC:\\X\\ไทย\n"));
  EXPECT_EQ(got.err, x_ + "/: the folder is not empty\nNothing was deleted; --yes deletes.\n");
  EXPECT_EQ(got.status, 1);
  EXPECT_TRUE(home_.Has("X/a.txt"));
  got = Files({"delete", "--yes", "--json", "--mask", "a*", x_});
  EXPECT_EQ(got.out, "{\"files\":1,\"folders\":0,\"failed\":0}\n");
  got = Files({"delete", "--yes", "--recursive", x_});
  EXPECT_EQ(got.err, x_ + "/: Directory not empty\n");
  EXPECT_EQ(got.status, 1);
  std::filesystem::remove(home_.Drive() / "X/.keep");
  EXPECT_EQ(Files({"delete", "--recursive", x_}).out, x_ + "\n");
  EXPECT_EQ(Files({"delete", "--yes", "--recursive", x_}).out, "0 files and 1 folder deleted\n");
  EXPECT_FALSE(home_.Has("X"));
}

TEST_F(FilesCommand, WrongNames) {
  const struct {
    std::vector<std::string> arguments;
    std::string err;
    int status;
  } cases[] = {
      {{"count", "C:\\none"}, "kvshare: C:\\none: there is no such folder\n", 1},
      {{"list", x_ + "/a.txt"}, "kvshare: " + x_ + "/a.txt: that is no folder\n", 1},
      {{"list", "Q:\\x"}, "kvshare: Q:\\x: there is no such drive or share\n", 1},
      {{"copy", x_, x_ + "/a.txt/b"}, "kvshare: " + x_ + "/a.txt/b: Not a directory\n", 1},
      {{"delete", "--yes", "--recursive", "//"}, "kvshare: the root folder is not deleted\n", 1},
      {{"count", "C:\\日本"},
       "kvshare: FOLDER: No letter U+65E5 in code page 874, at byte 4\n"
       "Try `kvshare files --help`.\n",
       2},
      {{"count"}, "kvshare: FOLDER is required\nTry `kvshare files --help`.\n", 2},
  };
  for (const auto& c : cases) {
    const Outcome got = Files(c.arguments);
    EXPECT_EQ(got.out, "");
    EXPECT_EQ(got.err, c.err);
    EXPECT_EQ(got.status, c.status);
  }
  WriteFileBytes((home_.Path() / "drives.ini").string(), "[D:]\n");
  const Outcome warned = Files({"count", "C:\\X"});
  EXPECT_EQ(warned.out, "1\n");
  EXPECT_EQ(warned.err, "warning: drives.ini: [D:] has no absolute Path\n");
}

}  // namespace
}  // namespace kvshare::app
