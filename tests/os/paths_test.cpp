#include "kvshare/os/paths.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "kvshare/os/files.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

TEST(Paths, DrivesAndSeparators) {
  ASSERT_EQ(setenv("KVSHARE_HOME", "/srv/kv/", 1), 0);
  struct Case {
    std::string_view windows, native;
  };
  constexpr Case kCases[] = {{"C:\\Apps\\x.ini", "/srv/kv/drive_c/Apps/x.ini"},
                             {"c:x", "/srv/kv/drive_c/x"},
                             {"C:", "/srv/kv/drive_c/"},
                             {"C:\\..\\..\\etc\\.\\x", "/srv/kv/drive_c/etc/x"},
                             {"C:/a/b/../../../c/", "/srv/kv/drive_c/c/"},
                             {"C:\\..", "/srv/kv/drive_c/"},
                             {"Z:\\..\\tmp", "/tmp"},
                             {"/nowhere/../x", "/nowhere/../x"},
                             {"Z:\\tmp/a\\b", "/tmp/a/b"},
                             {"z:tmp", "/tmp"},
                             {"\\tmp\\x", "/tmp/x"},
                             {"a\\b:c", "a/b:c"},
                             {"", ""},
                             {"Z:\\บัญชี.txt"_th, "/บัญชี.txt"}};
  for (const Case& c : kCases) EXPECT_EQ(os::NativePath(c.windows), c.native) << c.windows;
  constexpr std::string_view kRefused[] = {
      "D:\\x", "1:x", "\\\\host\\share\\x", "Z:\\\xFF", {"Z:\\a\0b", 6}};
  for (const std::string_view bad : kRefused) {
    EXPECT_EQ(CodeOf([&] { os::NativePath(bad); }), 3) << bad;
    EXPECT_FALSE(FileExists(bad)) << bad;
  }
}

TEST(Paths, HomeFolderFollowsTheEnvironment) {
  struct Case {
    const char *home, *data, *user, *want;
  };
  constexpr Case kCases[] = {{"/kv", "/data", "/u", "/kv"},
                             {"", "/data", "/u", "/data/kvshare"},
                             {"", "relative", "/u", "/u/.local/share/kvshare"}};
  const std::string user = std::getenv("HOME") == nullptr ? "" : std::getenv("HOME");
  for (const Case& c : kCases) {
    setenv("KVSHARE_HOME", c.home, 1);
    setenv("XDG_DATA_HOME", c.data, 1);
    setenv("HOME", c.user, 1);
    EXPECT_EQ(os::HomeFolder(), c.want);
  }
  setenv("HOME", "", 1);
  EXPECT_EQ(CodeOf([] { ReadFileBytes("C:\\x"); }), 3) << "no place for the drive";
  setenv("HOME", user.c_str(), 1);
  unsetenv("XDG_DATA_HOME");
}

TEST(Paths, SecondLook) {
  const TemporaryHome home;
  home.Make("Data/Ledger.TXT");
  home.Make("Data/both");
  home.Make("Data/BOTH");
  home.Make("ข้อมูล/Ab.txt");
  fs::create_symlink("nowhere", home.Drive() / "Dangling");
  struct Case {
    std::string_view name;
    std::string_view native;
    const char* why;
  };
  constexpr std::string_view kThai = "C:\\ข้อมูล\\aB.TXT"_th;
  constexpr Case kCases[] = {
      {"C:\\Data\\Ledger.TXT", "Data/Ledger.TXT", "as spelled"},
      {"c:\\DATA\\ledger.txt", "Data/Ledger.TXT", "folder and file"},
      {"C:\\data\\New\\x.TXT", "Data/New/x.TXT", "as spelled from what is missing on"},
      {"C:\\Data\\both", "Data/both", "as spelled before any other"},
      {"C:\\Data\\Both", "Data/BOTH", "else the first by bytes"},
      {"C:\\data\\ledger.txt\\x", "Data/Ledger.TXT/x", "a file is no folder"},
      {"C:\\DATA\\", "Data/", "a folder"},
      {"C:\\dangling", "Dangling", "a link that leads nowhere is there"},
      {kThai, "ข้อมูล/Ab.txt", "Thai has no case"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(os::NativePath(c.name), (home.Drive() / c.native).string()) << c.why;
  }
  const std::string plain = (home.Drive() / "DATA/ledger.TXT").string();
  EXPECT_EQ(os::NativePath(plain), (home.Drive() / "Data/Ledger.TXT").string())
      << "without a drive";
}

// A large folder is watched; what others do in it counts at once.
TEST(Paths, SecondLookInALargeFolder) {
  const TemporaryHome home(FastDisk());
  const fs::path folder = home.Drive() / "many";
  fs::create_directory(folder);
  const auto name = [](int i) { return "File" + std::to_string(i); };
  for (int i = 0; i < 600; ++i) std::ofstream(folder / name(i)) << i;
  const auto look = [&](const std::string& n) {
    return fs::path(os::NativePath("C:\\MANY\\" + n)).filename().string();
  };
  EXPECT_EQ(look("FILE599"), "File599");
  std::ofstream(folder / "Later") << 1;
  EXPECT_EQ(look("LATER"), "Later");
  fs::rename(folder / "Later", folder / "laTer");
  EXPECT_EQ(look("LATER"), "laTer");
  fs::remove(folder / "laTer");
  EXPECT_EQ(look("LATER"), "LATER");
  EXPECT_TRUE(HoldsForOrdinaryUser([&] { return look("FILE1") == "File1"; }))
      << "in a child process";
  std::ofstream(folder / "aFter") << 1;
  EXPECT_EQ(look("AFTER"), "aFter") << "which took no message away";
  fs::rename(folder, home.Drive() / "gone");
  fs::create_directory(folder);
  std::ofstream(folder / "fIle1") << 1;
  EXPECT_EQ(look("FILE1"), "fIle1") << "another folder of the name";
  fs::remove_all(folder);
  fs::rename(home.Drive() / "gone", folder);
  EXPECT_EQ(look("FILE2"), "File2");
  for (int i = 0; i < 9'000; ++i) {  // more than the system keeps messages
    std::ofstream(folder / "tmp").flush();
    fs::remove(folder / "tmp");
  }
  std::ofstream(folder / "Last") << 1;
  EXPECT_EQ(look("LAST"), "Last");
}

TEST(Paths, LimitsOfTheSystem) {
  const TemporaryHome home;
  const std::string loop = (home.Drive() / "Loop").string();
  fs::create_symlink(loop, loop);
  EXPECT_EQ(os::NativePath("C:\\Loop\\x"), loop + "/x");
  home.Make(std::string(255, 'N'));
  EXPECT_TRUE(FileExists("C:\\" + std::string(255, 'n')));
  EXPECT_FALSE(FileExists("C:\\" + std::string(256, 'n')));
  home.Make("Locked/Inside");
  fs::permissions(home.Path(), fs::perms{0755});
  fs::permissions(home.Drive() / "Locked", fs::perms{0});
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    return os::NativePath("C:\\LOCKED\\inside") == (home.Drive() / "Locked/inside").string() &&
           !FileExists("C:\\locked\\Inside");
  }));
  fs::permissions(home.Drive() / "Locked", fs::perms{0755});
}

TEST(Paths, BackToTheInterface) {
  const TemporaryHome home;
  WriteFileBytes((home.Path() / "drives.ini").string(),
                 "[D:]\nPath=/srv/ledger/\n[\\\\Server\\Share]\nPath=/srv/ledger/2026\n");
  const std::string root = home.Path().string();
  constexpr std::string_view kOnShare = "\\\\Server\\Share\\มกราคม"_th;
  struct Case {
    std::string native, windows;
  };
  const Case cases[] = {
      {"/", "Z:\\"},
      {"/tmp/a", "Z:\\tmp\\a"},
      {root + "/drive_c", "C:\\"},
      {root + "/drive_c/", "C:\\"},
      {root + "/drive_c/A/b", "C:\\A\\b"},
      {"/srv/ledger/x", "D:\\x"},
      {"/srv/ledgers", "Z:\\srv\\ledgers"},
      {"/srv/ledger/2026/มกราคม", std::string(kOnShare)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(os::WindowsPath(c.native), c.windows);
    if (!c.native.ends_with('/') && c.windows.size() > 3) {
      EXPECT_EQ(os::NativePath(c.windows), c.native);
    }
  }
  EXPECT_THROW(os::WindowsPath("/日本"), EConvertError);
  EXPECT_THROW(os::WindowsPath("/a\\b"), EConvertError);
}

TEST(Paths, CurrentFolderAndFullNames) {
  const TemporaryHome home;
  const fs::path before = fs::current_path();
  fs::create_directory(home.Drive() / "work");
  fs::current_path(home.Drive() / "work");
  EXPECT_EQ(os::CurrentFolder(), "C:\\work");
  struct Case {
    std::string_view name, full;
  };
  constexpr Case kCases[] = {{"x", "C:\\work\\x"},
                             {"..\\..\\x", "C:\\x"},
                             {"/tmp/a/../x", "Z:\\tmp\\x"},
                             {"\\tmp\\x", "Z:\\tmp\\x"},
                             {"C:x", "C:\\x"},
                             {"d:a/..", "d:\\"},
                             {"\\\\h\\s\\a\\..\\b", "\\\\h\\s\\b"},
                             {"", ""}};
  for (const Case& c : kCases) EXPECT_EQ(os::ExpandFileName(c.name), c.full);
  fs::current_path("/");
  EXPECT_EQ(os::CurrentFolder(), "Z:\\");
  fs::current_path(before);
}

}  // namespace
}  // namespace kvshare
