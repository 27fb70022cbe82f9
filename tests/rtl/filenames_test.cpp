#include "kvshare/rtl/filenames.h"

#include <gtest/gtest.h>

namespace kvshare {
namespace {

TEST(FileNames, TakesNamesApart) {
  struct Case {
    std::string_view name, path, file, extension, drive;
  };
  constexpr Case kCases[] = {
      {"C:\\a\\b.txt", "C:\\a\\", "b.txt", ".txt", "C:"},
      {"C:x.txt", "C:", "x.txt", ".txt", "C:"},
      {"a.b\\c", "a.b\\", "c", "", ""},
      {"a/b.c/d", "", "a/b.c/d", ".c/d", ""},
      {".cfg", "", ".cfg", ".cfg", ""},
      {"x.", "", "x.", ".", ""},
      {"\\\\host\\share\\f.x", "\\\\host\\share\\", "f.x", ".x", "\\\\host\\share"},
      {"\\\\host\\share", "\\\\host\\", "share", "", "\\\\host\\share"},
      {"\\\\host\\", "\\\\host\\", "", "", "\\\\host"},
      {"\\x", "\\", "x", "", ""},
      {"", "", "", "", ""},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ExtractFilePath(c.name), c.path);
    EXPECT_EQ(ExtractFileName(c.name), c.file);
    EXPECT_EQ(ExtractFileExt(c.name), c.extension);
    EXPECT_EQ(ExtractFileDrive(c.name), c.drive);
    const std::string_view stem = c.name.substr(0, c.name.size() - c.extension.size());
    EXPECT_EQ(ChangeFileExt(c.name, ".bak"), std::string(stem) + ".bak");
  }
}

TEST(FileNames, TrailingBackslash) {
  EXPECT_EQ(IncludeTrailingBackslash("a"), "a\\");
  EXPECT_EQ(IncludeTrailingBackslash("a\\"), "a\\");
  EXPECT_EQ(IncludeTrailingBackslash(""), "\\");
  EXPECT_EQ(ExcludeTrailingBackslash("C:\\"), "C:");
  EXPECT_EQ(ExcludeTrailingBackslash("a\\\\"), "a\\") << "one only";
}

TEST(FileNames, Expand) {
  struct Case {
    std::string_view name, folder, want;
  };
  constexpr Case kCases[] = {{"x.txt", "C:\\a\\b", "C:\\a\\b\\x.txt"},
                             {"..\\x", "C:\\a\\b\\", "C:\\a\\x"},
                             {"../../../x", "C:\\a\\b", "C:\\x"},
                             {".", "C:\\a", "C:\\a"},
                             {"..\\", "C:\\a", "C:\\"},
                             {"sub/.\\y\\", "C:\\a", "C:\\a\\sub\\y\\"},
                             {"\\x", "D:\\a", "D:\\x"},
                             {"c:x", "C:\\a", "c:\\a\\x"},
                             {"D:x", "C:\\a", "D:\\x"},
                             {"D:\\a\\\\b\\..\\..\\c", "C:\\a", "D:\\c"},
                             {"//host/share/a/../..", "C:\\a", "\\\\host\\share"},
                             {"x", "\\\\host\\share\\a", "\\\\host\\share\\a\\x"},
                             {"", "C:\\a", ""}};
  for (const Case& c : kCases) EXPECT_EQ(ExpandFileName(c.name, c.folder), c.want) << c.name;
}

}  // namespace
}  // namespace kvshare
