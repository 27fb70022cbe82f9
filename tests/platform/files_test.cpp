#include "kvshare/platform/filehelpers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/os/files.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

struct TextCase {
  std::string_view given, want;
};

TEST(FileHelpers, Names) {
  constexpr TextCase kFileNames[] = {{"C:\\Docs\\report.v1.doc", "report.v1"},
                                     {"C:\\a.b\\x", "x"},
                                     {"a.b.a.b", "a.a.b"},
                                     {".cfg", ""},
                                     {"", ""}};
  for (const TextCase& c : kFileNames) EXPECT_EQ(ExtractFileNameOnly(c.given), c.want);
  constexpr TextCase kWhole[] = {{"C:\\a.txt.d\\x.txt", "C:\\a.d\\x.txt"},
                                 {"C:\\a.d\\x", "C:\\a.d\\x"},
                                 {"C:\\x.txt", "C:\\x"}};
  for (const TextCase& c : kWhole) EXPECT_EQ(FileNameWoExt(c.given), c.want);
  constexpr TextCase kParents[] = {{"C:\\A\\B\\file.txt", "C:\\A\\"},
                                   {"C:\\A\\B\\", "C:\\A\\"},
                                   {"file.txt", ""},
                                   {"C:\\x", ""},
                                   {"\\a\\b", "\\"},
                                   {"", ""}};
  for (const TextCase& c : kParents) EXPECT_EQ(ParentPath(c.given), c.want);
  constexpr TextCase kGuids[] = {
      {"D:\\Data\\{01234567-89AB-CDEF-0123-456789ABCDEF}\\Sub", "D:\\Data\\"},
      {"D:\\Data\\{01234567-89AB-CDEF-0123-456789ABCDEF}", "D:\\Data\\"},
      {"D:\\Data{01234567-89AB-CDEF-0123-456789ABCDEF}",
       "D:\\Data{01234567-89AB-CDEF-0123-456789ABCDEF}\\"},
      {"D:\\{0123}\\", "D:\\{0123}\\"},
      {"{01234567-89AB-CDEF-0123-456789ABCDEF}", "{01234567-89AB-CDEF-0123-456789ABCDEF}\\"},
      {"D:\\}\\{01234567-89AB-CDEF-0123-456789ABCDEF}",
       "D:\\}\\{01234567-89AB-CDEF-0123-456789ABCDEF}\\"},
      {"D:\\{", "D:\\{\\"},
      {"", "\\"}};
  for (const TextCase& c : kGuids) EXPECT_EQ(TrimGuid(c.given), c.want);
}

class Trees : public ::testing::Test {
 protected:
  Trees() {
    for (const char* name : {"X/a.txt", "X/b.doc", "X/.cache", "X/sub/c.doc", "X/sub/.hidden",
                             "X/sub/low/d.txt", "X/old.txt/e.doc", "X/old.txt/low/f"}) {
      home_.Make(name);
    }
  }
  TemporaryHome home_;
};

std::vector<std::string> Texts(const TStrings& list) {
  return {list.begin(), list.end()};
}

TEST_F(Trees, CountAndList) {
  struct Case {
    std::string_view folder, mask;
    bool recurse;
    int count;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"C:\\X\\", "*.txt", false, 1, "flat"},
      {"C:\\X\\", "*.txt", true, 3, "the mask chooses subfolders too, and nothing below them"},
      {"c:\\x\\", "*.*", true, 6, "every file but hidden ones"},
      {"C:\\X", "*.*", false, 2, "a folder without its backslash"},
      {"C:\\none\\", "*.*", true, 0, "no folder"},
      {"Q:\\", "*.*", true, 0, "no drive"},
      {"C:\\X\\a.txt\\", "*.*", true, 0, "a file"},
  };
  for (const Case& c : kCases)
    EXPECT_EQ(CountFileName(c.folder, c.mask, c.recurse), c.count) << c.why;

  TStringList list;
  list.Add("kept");
  GetFileNames("C:\\X\\", list, "*.txt", true);
  ASSERT_EQ(list.Count(), 6);
  EXPECT_EQ(list[0], "kept");
  EXPECT_EQ(list[5], "C:\\X\\a.txt") << "the folder's own files come last";
  EXPECT_GT(list.IndexOf("C:\\X\\sub\\c.doc"), list.IndexOf("C:\\X\\sub\\low\\d.txt"));
  EXPECT_GE(list.IndexOf("C:\\X\\old.txt\\low\\f"), 0);

  GetFileName("C:\\X\\*.*", os::faDirectory | os::faHidden, list);
  EXPECT_THAT(Texts(list),
              UnorderedElementsAre(".", "..", "a.txt", "b.doc", ".cache", "sub", "old.txt"));
  GetFileName("C:\\X\\*.*", 0, list);
  EXPECT_THAT(Texts(list), UnorderedElementsAre("a.txt", "b.doc"));
}

TEST_F(Trees, AListMayHoldWhereItLooks) {
  TStringList list;
  list.Add("C:\\X\\old.txt\\low\\..\\e.*");
  GetFileName(list[0], 0, list);
  EXPECT_THAT(Texts(list), testing::ElementsAre("e.doc"));
  list.Put(0, "C:\\X\\old.txt\\low\\");
  GetFileNames(list[0], list, "*.*", true);
  EXPECT_THAT(Texts(list), testing::ElementsAre("C:\\X\\old.txt\\low\\", "C:\\X\\old.txt\\low\\f"));
}

TEST_F(Trees, Copy) {
  CopyAllFiles("C:\\X\\", "C:\\Y\\one\\");
  EXPECT_EQ(CountFileName("C:\\Y\\", "*.*", true), 2);
  CopyDir("C:\\X\\", "C:\\Y\\two\\", "*.txt", true);
  EXPECT_TRUE(home_.Has("Y/two/old.txt/low/f") && !home_.Has("Y/two/sub"));
  CopyDir("C:\\none\\", "C:\\Y\\three\\", "*.*", true);
  EXPECT_TRUE(home_.Has("Y/three")) << "the target is created first";
  home_.Make("X/a.txt", "newer");
  CopyAllFiles("C:\\X\\", "C:\\Y\\one\\");
  EXPECT_EQ(ReadFileBytes("C:\\Y\\one\\a.txt"), "newer");
  EXPECT_THROW(CopyAllFiles("C:\\X\\", "C:\\X\\a.txt\\y\\"), EInOutError);
  EXPECT_THROW(CopyAllFiles("C:\\X\\", ""), EInOutError);
}

TEST_F(Trees, Delete) {
  os::FileSetAttr("C:\\X\\a.txt", os::faReadOnly);
  DeleteDirContent("C:\\X\\");
  EXPECT_FALSE(home_.Has("X/a.txt") || home_.Has("X/b.doc"));
  EXPECT_TRUE(home_.Has("X/.cache") && home_.Has("X/sub/c.doc"));
  EXPECT_EQ(MessageOf<EInOutError>([] { DeleteDir("C:\\X\\", "*.txt", true); }), "I/O error 145");
  EXPECT_FALSE(home_.Has("X/old.txt"));
  EXPECT_TRUE(home_.Has("X/sub/c.doc")) << "which the mask spares";
  DeleteDir("C:\\none\\", "*.*", true);
  DeleteDir("Q:\\", "*.*", true);
  fs::remove(home_.Drive() / "X/.cache");
  fs::remove(home_.Drive() / "X/sub/.hidden");
  DeleteDir("C:\\X\\", "*.*", true);
  EXPECT_FALSE(home_.Has("X"));
}

TEST(FileHelpers, RemoveEmptyDir) {
  const TemporaryHome home;
  fs::create_directories(home.Drive() / "E/a/b");
  EXPECT_EQ(CodeOf([] { RemoveEmptyDir("C:\\E\\", false); }), 145) << "subfolders are not counted";
  home.Make("E/c/file");
  EXPECT_FALSE(RemoveEmptyDir("C:\\E\\", true));
  EXPECT_FALSE(home.Has("E/a")) << "empty subfolders go all the same";
  fs::remove(home.Drive() / "E/c/file");
  home.Make("E/c/.cache");
  EXPECT_EQ(CodeOf([] { RemoveEmptyDir("C:\\E\\", true); }), 145) << "hidden names are not counted";
  fs::remove(home.Drive() / "E/c/.cache");
  EXPECT_TRUE(RemoveEmptyDir("C:\\E\\", true));
  EXPECT_FALSE(home.Has("E"));
  EXPECT_TRUE(RemoveEmptyDir("C:\\E\\", true) && RemoveEmptyDir("Q:\\", true));
}

TEST(FileHelpers, AFolderThatIsGoneHasNoFiles) {
  const TemporaryHome home;
  const fs::path before = fs::current_path();
  fs::create_directory(home.Drive() / "gone");
  fs::current_path(home.Drive() / "gone");
  fs::remove(home.Drive() / "gone");
  EXPECT_EQ(KovraExpandFileName("C:\\base\\", "x.txt"), "C:\\base\\x.txt");
  fs::current_path(before);
}

TEST(FileHelpers, DriveCIsReadyBeforeItsFirstFolder) {
  const TemporaryHome home;
  fs::remove(home.Drive());
  EXPECT_EQ(GetDriveTypeE("C:\\"), 3);
  EXPECT_TRUE(DriveReady('C') && IsWriteableDisk("C:\\"));
  EXPECT_FALSE(fs::exists(home.Drive()));
  std::ofstream(home.Drive()) << "x";
  EXPECT_EQ(GetDriveTypeE("C:\\"), 1) << "a file stands in its place";
}

TEST(FileHelpers, DrivesAndFiles) {
  const TemporaryHome home;
  WriteFileBytes((home.Path() / "drives.ini").string(),
                 "[A:]\nPath=/none\nKind=removable\n[E:]\nPath=/tmp\nKind=cdrom\n[R:]\nPath=/tmp\n"
                 "Kind=ram\n[\\\\srv\\x]\nPath=/tmp\n");
  struct Case {
    std::string_view path;
    int type;
    bool local, writeable;
  };
  const fs::path before = fs::current_path();
  fs::current_path(home.Drive());
  constexpr Case kCases[] = {{"c:\\x", 3, true, true},
                             {"E:\\", 5, false, false},
                             {"R:x", 6, false, true},
                             {"\\\\srv\\x\\y", 4, false, true},
                             {"\\\\srv\\y", 1, false, false},
                             {"A:\\", 1, false, false},
                             {"x", 3, true, true}};
  for (const Case& c : kCases) {
    EXPECT_EQ(GetDriveTypeE(c.path), c.type) << c.path;
    EXPECT_EQ(IsLocalHardDisk(c.path), c.local);
    EXPECT_EQ(IsWriteableDisk(c.path), c.writeable);
  }
  EXPECT_TRUE(DriveReady('c') && DriveReady('Z'));
  EXPECT_FALSE(DriveReady('A') || DriveReady('Q'));
  for (const char bad : {'1', '[', '@', '\0'}) {
    EXPECT_EQ(MessageOf<EConvertError>([bad] { DriveReady(bad); }), "Not a valid drive ID");
  }

  home.Make("five", "12345");
  EXPECT_EQ(KovraGetFileSize("C:\\FIVE"), 5);
  EXPECT_EQ(KovraGetFileSize("C:\\none"), 0);
  fs::resize_file(home.Drive() / "five", (std::uintmax_t{1} << 32) + 7);
  EXPECT_EQ(KovraGetFileSize("C:\\five"), 7) << "32 bits";
  EXPECT_EQ(GetFileDateTime("C:\\five"), os::FileAge("C:\\five"));
  const double missing = GetFileDateTime("C:\\none").Days();
  EXPECT_NEAR(missing, Now().Days(), 1.0 / 24);

  EXPECT_EQ(KovraExpandFileName("B:\\base\\", "Five"), "C:\\Five");
  EXPECT_EQ(KovraExpandFileName("B:\\base\\", "none"), "B:\\base\\none");
  EXPECT_EQ(KovraExpandFileName("B:\\base\\", "c:none"), "c:none");
  EXPECT_EQ(KovraExpandFileName("B:\\base\\", "\\\\h\\s\\x"), "\\\\h\\s\\x");
  fs::current_path(before);
}

}  // namespace
}  // namespace kvshare
