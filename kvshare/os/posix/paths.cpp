#include "kvshare/os/paths.h"

#include <algorithm>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

[[noreturn]] void ThrowInvalidName(std::string_view message = "Invalid filename") {
  constexpr int kPathNotFound = 3;
  throw EInOutError(message, kPathNotFound);
}

std::string DriveRoot(char letter) {
  switch (UpCase(letter)) {
    case 'C':
      return HomeFolder() + "/drive_c";
    case 'Z':
      return {};
    default:
      ThrowInvalidName();
  }
}

std::string Utf8Name(std::string_view name) {
  std::string utf8;
  try {
    utf8 = Cp874ToUtf8(name);
  } catch (const EConvertError&) {
    ThrowInvalidName();
  }
  if (utf8.find('\0') != std::string::npos) ThrowInvalidName();
  std::ranges::replace(utf8, '\\', '/');
  return utf8;
}

}  // namespace

std::string HomeFolder() {
  std::string folder(Environment("KVSHARE_HOME"));
  if (folder.empty()) {
    const std::string_view data = Environment("XDG_DATA_HOME");
    const std::string_view user = Environment("HOME");
    if (data.starts_with('/')) {  // a relative one is ignored, as the XDG base directories want it
      folder.assign(data).append("/kvshare");
    } else if (!user.empty()) {
      folder.assign(user).append("/.local/share/kvshare");
    } else {
      ThrowInvalidName("No home folder: set KVSHARE_HOME");
    }
  }
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

std::string NativePath(std::string_view windowsPath) {
  if (windowsPath.starts_with("\\\\")) ThrowInvalidName();
  const bool hasDrive = windowsPath.size() >= 2 && windowsPath[1] == ':';
  if (!hasDrive) return Utf8Name(windowsPath);
  std::string native = DriveRoot(windowsPath[0]);
  const std::string name = Utf8Name(windowsPath.substr(2));
  if (!name.starts_with('/')) native += '/';
  return native += name;
}

}  // namespace kvshare::os
