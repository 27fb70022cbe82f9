#include "kvshare/os/folders.h"

#include <algorithm>
#include <array>

#include "kvshare/os/files.h"
#include "kvshare/os/machine.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/drivetable.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/programfolder.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"

// Behind the types that it needs.
#include <shlobj.h>

namespace kvshare::os {

namespace {

static_assert(kUserAppData == CSIDL_APPDATA && kCommonAppData == CSIDL_COMMON_APPDATA &&
              kProgramFiles == CSIDL_PROGRAM_FILES);

std::string NameOnDrive(const std::string& native) {
  try {
    return WindowsPath(native);
  } catch (const EConvertError&) {
    return {};
  }
}

std::wstring ShortName(const std::wstring& name) {
  return win32::TextOfCall(
      [&name](wchar_t* text, DWORD size) { return GetShortPathNameW(name.c_str(), text, size); });
}

// A name with letters that code page 874 lacks has its short form, where the disk keeps one.
std::string NameOfInterface(const std::wstring& systemName) {
  try {
    std::string name = NameOnDrive(win32::NativeOf(systemName));
    if (name.empty()) name = NameOnDrive(win32::NativeOf(ShortName(systemName)));
    return name;
  } catch (const EConvertError&) {
    return {};  // half a surrogate pair
  }
}

// Without asking whether it exists: a folder that lies on a server is not waited for.
std::wstring KnownFolder(int id) {
  std::array<wchar_t, MAX_PATH> path{};
  const HRESULT result = SHGetFolderPathW(nullptr, id | CSIDL_FLAG_DONT_VERIFY, nullptr,
                                          SHGFP_TYPE_CURRENT, path.data());
  return result >= 0 ? path.data() : L"";
}

// The folder's name must not be taken for more than one.
std::string UserFolderName() {
  constexpr std::size_t kLongestName = 256;
  std::string name = LoginName(kLongestName + 1).value_or("Default");
  std::ranges::replace_if(
      name, [](char c) { return c == '\\' || c == '/' || c == ':'; }, '_');
  return name;
}

std::string FixedFolder(int id) {
  switch (id) {
    case kUserAppData:
      return R"(C:\Users\)" + UserFolderName() + R"(\AppData\Roaming)";
    case kCommonAppData:
      return R"(C:\ProgramData)";
    default:
      return R"(C:\Program Files)";
  }
}

}  // namespace

std::string SpecialFolder(int id) {
  if (id != kUserAppData && id != kCommonAppData && id != kProgramFiles) return {};
  return win32::DrivesAreTheSystems() ? NameOfInterface(KnownFolder(id)) : FixedFolder(id);
}

std::string WindowsFolder() {
  if (!win32::DrivesAreTheSystems()) return R"(C:\Windows)";
  return NameOfInterface(win32::TextOfCall(GetWindowsDirectoryW));
}

std::string SystemFolder() {
  if (!win32::DrivesAreTheSystems()) return R"(C:\Windows\System32)";
  return NameOfInterface(win32::TextOfCall(GetSystemDirectoryW));
}

std::string TempFolderName() {
  if (!win32::DrivesAreTheSystems()) return R"(C:\Temp\)";
  return NameOfInterface(
      win32::TextOfCall([](wchar_t* text, DWORD size) { return GetTempPathW(size, text); }));
}

std::string TempFolder() {
  std::string folder = TempFolderName();
  if (!folder.empty()) ForceDirectories(folder);
  return folder;
}

std::string ProgramFile() {
  return NameOfInterface(win32::Wide(win32::RunningProgramFile()));
}

std::string ProgramFolder() {
  return std::string(ExtractFilePath(ProgramFile()));
}

}  // namespace kvshare::os
