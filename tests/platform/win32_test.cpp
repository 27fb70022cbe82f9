#include "kvshare/platform/win32.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "kvshare/os/folders.h"
#include "kvshare/platform/win32rules.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

TEST(Win32, TheCounterMayWrap) {
  struct Case {
    std::uint32_t start, now, milliseconds;
    bool elapsed;
  };
  constexpr Case kCases[] = {
      {100, 100, 0, true},       {100, 109, 10, false},
      {100, 110, 10, true},      {UINT32_MAX, 8, 10, false},
      {UINT32_MAX, 9, 10, true}, {UINT32_MAX - 4, UINT32_MAX, 5, false},
      {1, 0, UINT32_MAX, true},  {1, UINT32_MAX, UINT32_MAX, false},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(TicksElapsed(c.start, c.now, c.milliseconds), c.elapsed) << c.start << " " << c.now;
  }
}

TEST(Win32, WaitsAtLeastThatLong) {
  const auto start = std::chrono::steady_clock::now();
  TKovraWin32::WaitUntilTickCOUNT(0);
  TKovraWin32::WaitUntilTickCOUNT(20);
  // The counter's steps are a millisecond: a wait may begin within one.
  EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(19));
}

TEST(Win32, TemporaryNames) {
  constexpr std::string_view kFolder = "/no such folder/";
  struct Case {
    std::string_view extension, end;
  };
  constexpr Case kCases[] = {{"txt", ".txt"}, {".txt", ".txt"}, {"tar.gz", ".targz"}, {"", "."}};
  for (const Case& c : kCases) {
    const std::string name = TKovraWin32::GetKovraTempFileName(kFolder, c.extension);
    ASSERT_EQ(name.size(), kFolder.size() + 10 + c.end.size()) << name;
    EXPECT_TRUE(name.starts_with("/no such folder/T") && name.ends_with(c.end)) << name;
    const std::string digits = name.substr(kFolder.size() + 1, 9);
    EXPECT_EQ(digits.find_first_not_of("0123456789"), std::string::npos) << digits;
  }
  const TemporaryFolder folder;
  const std::string prefix = folder.File("");
  std::string earlier;
  for (int i = 0; i < 5; ++i) {
    const std::string name = TKovraWin32::GetKovraTempFileName(prefix, "x");
    EXPECT_NE(name, earlier) << "a name whose file exists is not given again";
    WriteFileBytes(name, "");
    earlier = name;
  }
  EXPECT_TRUE(
      TKovraWin32::GetWindowsTempName("x").starts_with(TKovraWin32::GetWindowsTempPath() + "T"));
}

TEST(Win32, FoldersPassThroughBuffers) {
  EXPECT_EQ(ThroughBuffer(std::string(127, 'x'), 128), std::string(127, 'x'));
  EXPECT_EQ(ThroughBuffer(std::string(128, 'x'), 128), "");
  EXPECT_EQ(TKovraWin32::GetSystemPath(), os::SystemFolder());
  EXPECT_EQ(TKovraWin32::GetWindowsPath(), os::WindowsFolder());
  EXPECT_TRUE(TKovraWin32::GetWindowsTempPath().ends_with('\\'));
  EXPECT_EQ(TKovraWin32::GetAllUserAppDataPath(), os::SpecialFolder(35));
  EXPECT_EQ(TKovraWin32::GetUserAppDataPath(), os::SpecialFolder(26));
  EXPECT_EQ(TKovraWin32::GetProgramPath(), os::SpecialFolder(38));
  EXPECT_EQ(TKovraWin32::GetSpecialFolderPath(0), "");
}

TEST(Win32, NamesOfComputerAndUser) {
  struct Case {
    const char* variable;
    std::string (*name)();
    const char* set;
    std::string_view want;
    const char* why;
  };
  constexpr std::string_view kThai = "สมชาย"_th;
  const Case cases[] = {
      {"KVSHARE_COMPUTER", TKovraWin32::MyComputerName, "till-3", "TILL-3", "in upper case"},
      {"KVSHARE_COMPUTER", TKovraWin32::MyComputerName, " a ", "A", "trimmed"},
      {"KVSHARE_COMPUTER", TKovraWin32::MyComputerName, "123456789012345", "123456789012345", "15"},
      {"KVSHARE_COMPUTER", TKovraWin32::MyComputerName, "1234567890123456", "<<Undefined>>", "16"},
      {"KVSHARE_COMPUTER", TKovraWin32::MyComputerName, "日本", "<<Undefined>>", "no such letter"},
      {"KVSHARE_USER", TKovraWin32::MyLoginName, "สมชาย", kThai, "Thai, case stays"},
      {"KVSHARE_USER", TKovraWin32::MyLoginName, "12345678901234567890", "12345678901234567890",
       "20"},
      {"KVSHARE_USER", TKovraWin32::MyLoginName, "123456789012345678901", "<<Not Login>>", "21"},
  };
  for (const Case& c : cases) {
    const WithVariable variable(c.variable, c.set);
    EXPECT_EQ(c.name(), c.want) << c.why;
  }
}

TEST(Win32, TheYearOffsetFollowsTheCalendar) {
  EXPECT_EQ(YearOffsetOf("7"), 543);
  EXPECT_EQ(YearOffsetOf(""), 543) << "a locale that does not tell";
  EXPECT_EQ(YearOffsetOf("1"), 0);
  EXPECT_EQ(YearOffsetOf("77"), 0);
  const WithVariable era("KVSHARE_ERA", "543");
  EXPECT_EQ(TKovraWin32::SysYearOffset(), 543);
  const WithVariable other("KVSHARE_ERA", "0");
  EXPECT_EQ(TKovraWin32::SysYearOffset(), 0);
}

TEST(Win32, TheScreenBecomesABitmapFile) {
  class Screen : public THeadlessInterface {
   public:
    TPicture CaptureScreen() override { return {2, 1, {{1, 2, 3}, {4, 5, 6}}}; }
  };
  const TemporaryFolder folder;
  EXPECT_THROW(TKovraWin32::SaveScreenImageToFile(folder.File("none.bmp")), EOSError);
  EXPECT_FALSE(FileExists(folder.File("none.bmp")));

  Screen screen;
  const TUseInterface use(screen);
  TKovraWin32::SaveScreenImageToFile(folder.File("screen.bmp"));
  EXPECT_EQ(ReadFileBytes(folder.File("screen.bmp")).substr(54),
            std::string("\1\2\3\4\5\6\0\0", 8));
  EXPECT_THROW(TKovraWin32::SaveScreenImageToFile(folder.File("no/x.bmp")), EInOutError);
}

TEST(Win32, PrintersAndNames) {
  const TemporaryFolder folder;
  const WithVariable home("KVSHARE_HOME", folder.Path().c_str());
  EXPECT_FALSE(TKovraWin32::IsPrinterInstalled());
  std::filesystem::create_directories(folder.File("spool/Laser"));
  EXPECT_TRUE(TKovraWin32::IsPrinterInstalled());
  EXPECT_EQ(TKovraWin32::cdsFullFileName("Customer"), "BriefCase\\Customer.Cds");
  EXPECT_EQ(TKovraWin32::ChangeString("a-B-b", "b", "c"), "a-c-c");
}

}  // namespace
}  // namespace kvshare
