#include "kvshare/os/folders.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "kvshare/os/files.h"
#include "kvshare/os/machine.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"

namespace kvshare::os {

namespace {

// The folder's name must not be taken for more than one.
std::string UserFolderName() {
  constexpr std::size_t kLongestName = 256;
  std::string name = LoginName(kLongestName + 1).value_or("Default");
  std::ranges::replace_if(
      name, [](char c) { return c == '\\' || c == '/' || c == ':'; }, '_');
  return name;
}

}  // namespace

std::string SpecialFolder(int id) {
  switch (id) {
    case kUserAppData:
      return R"(C:\Users\)" + UserFolderName() + R"(\AppData\Roaming)";
    case kCommonAppData:
      return R"(C:\ProgramData)";
    case kProgramFiles:
      return R"(C:\Program Files)";
    default:
      return {};
  }
}

std::string WindowsFolder() {
  return R"(C:\Windows)";
}

std::string SystemFolder() {
  return R"(C:\Windows\System32)";
}

std::string TempFolderName() {
  return R"(C:\Temp\)";
}

std::string TempFolder() {
  std::string folder = TempFolderName();
  ForceDirectories(folder);
  return folder;
}

std::string ProgramFile() {
  std::error_code error;
  const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return {};
  try {
    return WindowsPath(file.native());
  } catch (const EConvertError&) {
    return {};
  }
}

std::string ProgramFolder() {
  return std::string(ExtractFilePath(ProgramFile()));
}

}  // namespace kvshare::os
