#include "kvshare/os/paths.h"

#include <algorithm>
#include <optional>

#include "kvshare/os/files.h"
#include "kvshare/os/win32/drivetable.h"
#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

[[noreturn]] void ThrowInvalidName(std::string_view message = "Invalid filename") {
  throw EInOutError(message, win32::kPathNotFound);
}

std::string Utf8Name(std::string_view name) {
  std::string utf8;
  try {
    utf8 = Cp874ToUtf8(name);
  } catch (const EConvertError&) {
    ThrowInvalidName();
  }
  if (utf8.find('\0') != std::string::npos) ThrowInvalidName();
  std::ranges::replace(utf8, '/', '\\');
  return utf8;
}

// Appends `\name` for each part of a name on a drive; `.` and `..` are resolved as the platform
// resolves them, by the text and never above the drive's root.
void AppendBelowRoot(std::string& native, std::string_view name) {
  const std::size_t root = native.size();
  const bool endsInFolder = name.empty() || name.ends_with('\\');
  while (!name.empty()) {
    const std::size_t end = std::min(name.find('\\'), name.size());
    const std::string_view part = name.substr(0, end);
    if (part == "..") {
      native.resize(std::max(root, std::min(native.rfind('\\'), native.size())));
    } else if (!part.empty() && part != ".") {
      native.append("\\").append(part);
    }
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  if (endsInFolder || native.size() == root) native += '\\';
}

// Only a name that is spelled with two backslashes is on a share; the system would take two
// separators of any kind for one.
void LeaveOneLeadingBackslash(std::string& name) {
  const std::size_t first = std::min(name.find_first_not_of('\\'), name.size());
  if (first > 1) name.erase(0, first - 1);
}

// A drive and where an absolute system's name lies on it, from a `\` on.
struct Place {
  std::string drive;
  std::string rest;
};

Place PlaceOnSystemDrive(std::string_view native) {
  if (win32::IsDeviceName(native)) throw EConvertError("A device has no name on a drive");
  const std::string_view root = win32::RootOf(native);
  const bool share = root.starts_with('\\');
  return {share ? Utf8ToCp874(root) : UpperCase(root), std::string(native.substr(root.size()))};
}

// On the drive of the longest folder.
Place PlaceOnHomeDrive(std::string_view native) {
  std::optional<Place> best;
  std::size_t longest = 0;
  const win32::DriveTable table = win32::CurrentDriveTable();
  for (const Drive& drive : table.drives) {
    if (best && drive.root.size() <= longest) continue;
    if (auto rest = win32::RestBelow(drive.root, native)) {
      best = Place{drive.name, *std::move(rest)};
      longest = drive.root.size();
    }
  }
  // A test's home lies on one of the system's drives; the others have no name there.
  if (!best) throw EConvertError("No drive holds the folder of that name");
  return *std::move(best);
}

// Where a name that begins with one `\` counts from.
std::string RootOfCurrentFolder() {
  const std::string folder = win32::NativeCurrentFolder();
  return WindowsPath(win32::RootOf(folder));
}

}  // namespace

std::string HomeFolder() {
  std::string folder = win32::Variable("KVSHARE_HOME");
  if (folder.empty()) {
    folder = win32::Variable("LOCALAPPDATA");
    if (folder.empty()) ThrowInvalidName("No home folder: set KVSHARE_HOME");
    folder.append("\\KvShare");
  }
  folder = win32::PlainName(folder);
  constexpr std::size_t kDriveRoot = 3;  // of `C:\`, which without its `\` is another folder
  while (folder.size() > kDriveRoot && folder.ends_with('\\')) folder.pop_back();
  return folder;
}

std::string NativePath(std::string_view windowsPath) {
  const std::string_view drive = win32::DriveOf(windowsPath);
  std::string rest = Utf8Name(windowsPath.substr(drive.size()));
  if (drive.empty()) {
    LeaveOneLeadingBackslash(rest);
    return rest;
  }
  std::optional<std::string> native = win32::RootOfDrive(drive);
  if (!native) ThrowInvalidName();
  AppendBelowRoot(*native, rest);
  return *std::move(native);
}

std::string WindowsPath(std::string_view nativePath) {
  const std::string native = win32::PlainName(nativePath);
  if (win32::RootOf(native).empty()) return Utf8ToCp874(native);
  const Place place =
      win32::DrivesAreTheSystems() ? PlaceOnSystemDrive(native) : PlaceOnHomeDrive(native);
  return place.drive + (place.rest.empty() ? "\\" : Utf8ToCp874(place.rest));
}

std::string CurrentFolder() {
  return WindowsPath(win32::NativeCurrentFolder());
}

std::string ExpandFileName(std::string_view name) {
  const std::string_view drive = win32::DriveOf(name);
  std::string path(name);
  std::ranges::replace(path, '/', '\\');
  if (drive.empty()) LeaveOneLeadingBackslash(path);
  if (drive.size() == 2 && path.find('\\', 2) != 2) path.insert(2, 1, '\\');
  if (!drive.empty() || path.empty()) return rtl::ExpandFileName(path, "");
  // A name without a drive stands for itself, from the root of the system's current drive.
  return rtl::ExpandFileName(path,
                             path.starts_with('\\') ? RootOfCurrentFolder() : CurrentFolder());
}

}  // namespace kvshare::os
