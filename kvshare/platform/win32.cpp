#include "kvshare/platform/win32.h"

#include "kvshare/os/folders.h"
#include "kvshare/os/locale.h"
#include "kvshare/os/machine.h"
#include "kvshare/platform/win32rules.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"
#include "kvshare/ui/backend.h"

namespace kvshare {

namespace {

constexpr std::size_t kFolderBuffer = 128;
constexpr std::size_t kShellFolderBuffer = 262;  // 261 characters and a zero byte
constexpr std::size_t kComputerNameBuffer = 16;
constexpr std::size_t kLoginNameBuffer = 21;

std::string TrimmedOr(const std::optional<std::string>& name, std::string_view fallback) {
  return std::string(name ? Trim(*name) : fallback);
}

}  // namespace

std::string TKovraWin32::ChangeString(std::string_view text, std::string_view oldText,
                                      std::string_view newText) {
  return TKovraString::ChangeString(text, oldText, newText);
}

std::string TKovraWin32::cdsFullFileName(std::string_view name) {
  return Format(R"(BriefCase\%s.Cds)", {name});
}

std::string TKovraWin32::GetKovraTempFileName(std::string_view prefix, std::string_view extension) {
  std::string bare(extension);
  std::erase(bare, '.');
  std::string name;
  do {
    name = Format("%sT%s.%s", {prefix, FormatDateTime("HHNNSSZZZ", Now()), bare});
  } while (FileExists(name));
  return name;
}

std::string TKovraWin32::GetWindowsTempName(std::string_view extension) {
  return GetKovraTempFileName(GetWindowsTempPath(), extension);
}

std::string TKovraWin32::GetSystemPath() {
  return ThroughBuffer(os::SystemFolder(), kFolderBuffer);
}

std::string TKovraWin32::GetWindowsPath() {
  return ThroughBuffer(os::WindowsFolder(), kFolderBuffer);
}

std::string TKovraWin32::GetWindowsTempPath() {
  return ThroughBuffer(os::TempFolder(), kFolderBuffer);
}

bool TKovraWin32::IsPrinterInstalled() {
  return !UserInterface().Spooler().Printers().empty();
}

std::string TKovraWin32::MyComputerName() {
  return TrimmedOr(os::ComputerName(kComputerNameBuffer), "<<Undefined>>");
}

std::string TKovraWin32::MyLoginName() {
  return TrimmedOr(os::LoginName(kLoginNameBuffer), "<<Not Login>>");
}

int TKovraWin32::SysYearOffset() {
  return YearOffsetOf(os::CalendarType());
}

std::string TKovraWin32::MyIpAddress() {
  return os::HostAddress();
}

void TKovraWin32::SaveScreenImageToFile(std::string_view fileName) {
  WriteFileBytes(fileName, BitmapFileBytes(UserInterface().CaptureScreen()));
}

void TKovraWin32::WaitUntilTickCOUNT(std::uint32_t milliseconds) {
  const std::uint32_t start = os::TickCount();
  while (!TicksElapsed(start, os::TickCount(), milliseconds)) {
  }
}

std::string TKovraWin32::GetSpecialFolderPath(int folderId) {
  return ThroughBuffer(os::SpecialFolder(folderId), kShellFolderBuffer);
}

std::string TKovraWin32::GetAllUserAppDataPath() {
  return GetSpecialFolderPath(os::kCommonAppData);
}

std::string TKovraWin32::GetUserAppDataPath() {
  return GetSpecialFolderPath(os::kUserAppData);
}

std::string TKovraWin32::GetProgramPath() {
  return GetSpecialFolderPath(os::kProgramFiles);
}

}  // namespace kvshare
