#include "kvshare/os/drives.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/os/paths.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

using os::DriveKind;
using ::testing::ElementsAre;

std::vector<std::string> NamesAndRoots() {
  std::vector<std::string> all;
  for (const os::Drive& drive : os::Drives()) all.push_back(drive.name + "=" + drive.root);
  return all;
}

TEST(Drives, TheTable) {
  const TemporaryHome home;
  const std::string ini = (home.Path() / "drives.ini").string();
  const std::string c = "C:=" + home.Drive().string();
  EXPECT_THAT(NamesAndRoots(), ElementsAre(c, "Z:="));
  EXPECT_TRUE(os::DriveTableErrors().empty());

  WriteFileBytes(ini,
                 "; drives\n[\\\\b\\x]\nPath=/mnt/b\n[\\\\A\\x]\nPath=/mnt/a\nKind=FIXED\n"
                 "[e:]\nkind=cdrom\npath=\"/tmp\"\n[D:]\nPath=/none/\nPath=/second\n[z:]\nPath=/\n"
                 "[D:]\nPath=/again\n[DD:]\nPath=/x\n[\\\\host]\nPath=/x\n[\\\\h\\s\\t]\nPath=/x\n"
                 "[F:]\nPath=relative\n[G:]\n[H:]\nPath=/x\nKind=floppy\n[1:]\nPath=/x\n");
  EXPECT_THAT(NamesAndRoots(),
              ElementsAre(c, "D:=/none", "E:=/tmp", "Z:=", "\\\\b\\x=/mnt/b", "\\\\A\\x=/mnt/a"));
  EXPECT_THAT(os::DriveTableErrors(),
              ElementsAre("[D:] stands twice, the first one counts",
                          "[DD:] is no drive (X: or \\\\host\\share)",
                          "[\\\\host] is no drive (X: or \\\\host\\share)",
                          "[\\\\h\\s\\t] is no drive (X: or \\\\host\\share)",
                          "[F:] has no absolute Path", "[G:] has no absolute Path",
                          "[H:] has a Kind other than fixed, removable, remote, cdrom, ram",
                          "[1:] is no drive (X: or \\\\host\\share)"));
  EXPECT_EQ(os::NativePath("\\\\a/X\\f"), "/mnt/a/f") << "letter case and separator";
  EXPECT_EQ(os::NativePath("\\\\a\\x\\..\\..\\f"), "/mnt/a/f");
  EXPECT_EQ(CodeOf([] { os::NativePath("\\\\host\\x\\f"); }), 3);
  struct Kind {
    std::string_view name;
    DriveKind kind;
  };
  constexpr Kind kKinds[] = {{"c:", DriveKind::Fixed},  {"E:\\x", DriveKind::CdRom},
                             {"D:", DriveKind::NoRoot}, {"Q:", DriveKind::NoRoot},
                             {"", DriveKind::NoRoot},   {"\\\\b\\x\\y", DriveKind::NoRoot}};
  for (const Kind& k : kKinds) EXPECT_EQ(os::KindOfDrive(k.name), k.kind) << k.name;

  WriteFileBytes(ini, "[C:]\nPath=/tmp\nKind=ram\n[\\\\b\\x]\nPath=/tmp\n");
  EXPECT_EQ(os::NativePath("C:\\x-none"), "/tmp/x-none") << "a change counts at once";
  EXPECT_EQ(os::KindOfDrive("C:"), DriveKind::RamDisk);
  EXPECT_EQ(os::KindOfDrive("\\\\B\\X"), DriveKind::Remote);
  std::filesystem::remove(ini);
  EXPECT_THAT(NamesAndRoots(), ElementsAre(c, "Z:="));
}

TEST(Drives, TroubleWithTheTable) {
  const TemporaryHome home;
  std::filesystem::create_directory(home.Path() / "drives.ini");
  EXPECT_THAT(os::DriveTableErrors(), ElementsAre("drives.ini: Is a directory"));
  EXPECT_EQ(os::NativePath("C:\\x"), (home.Drive() / "x").string());

  const std::string user = getenv("HOME") == nullptr ? "" : getenv("HOME");
  unsetenv("KVSHARE_HOME");
  unsetenv("HOME");
  EXPECT_THAT(NamesAndRoots(), ElementsAre("Z:=")) << "no home, no C:";
  EXPECT_EQ(MessageOf<EInOutError>([] { os::NativePath("C:\\x"); }),
            "No home folder: set KVSHARE_HOME");
  setenv("HOME", user.c_str(), 1);
}

TEST(Drives, SizeTellsWhetherADiskIsThere) {
  const TemporaryHome home;
  WriteFileBytes((home.Path() / "drives.ini").string(), "[A:]\nPath=/none\nKind=removable\n");
  EXPECT_EQ(os::DiskSize(1), -1);
  EXPECT_EQ(os::DiskSize(2), -1);
  EXPECT_EQ(os::DiskSize(27), -1);
  EXPECT_EQ(os::DiskSize(-1), -1);
  EXPECT_GT(os::DiskSize(0), 0);
  EXPECT_GT(os::DiskSize(3), 1 << 20);
}

}  // namespace
}  // namespace kvshare
