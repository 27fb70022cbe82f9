#include "kvshare/os/folders.h"

#include <gtest/gtest.h>

#include "kvshare/os/files.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

TEST(Folders, WellKnown) {
  const TemporaryHome home;
  struct Case {
    const char *login, *folder;
  };
  constexpr Case kCases[] = {{"somchai", "C:\\Users\\somchai\\AppData\\Roaming"},
                             {"SHOP\\a/b", "C:\\Users\\SHOP_a_b\\AppData\\Roaming"}};
  for (const Case& c : kCases) {
    setenv("KVSHARE_USER", c.login, 1);
    EXPECT_EQ(os::SpecialFolder(os::kUserAppData), c.folder);
  }
  unsetenv("KVSHARE_USER");
  EXPECT_EQ(os::SpecialFolder(os::kCommonAppData), "C:\\ProgramData");
  EXPECT_EQ(os::SpecialFolder(os::kProgramFiles), "C:\\Program Files");
  EXPECT_EQ(os::SpecialFolder(0), "");
  std::filesystem::remove(home.Drive());
  EXPECT_EQ(os::TempFolder(), "C:\\Temp\\");
  EXPECT_TRUE(home.Has("Temp")) << "made with the drive itself";
  EXPECT_TRUE(os::ProgramFile().starts_with("Z:\\"));
  EXPECT_TRUE(os::DirectoryExists(os::ProgramFolder()) && os::ProgramFolder().ends_with('\\'));
}

}  // namespace
}  // namespace kvshare
