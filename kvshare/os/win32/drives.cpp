#include "kvshare/os/drives.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "kvshare/os/paths.h"
#include "kvshare/os/win32/drivetable.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

using win32::CallName;

// An empty drive is an answer here, about which the system must not ask its user.
class QuietErrors {
 public:
  QuietErrors() { SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS, &earlier_); }
  ~QuietErrors() { SetThreadErrorMode(earlier_, nullptr); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  DWORD earlier_ = 0;
};

enum class Presence { Folder, Missing, Other };

Presence Look(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(CallName(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD error = GetLastError();
    const bool missing = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
    return missing ? Presence::Missing : Presence::Other;
  }
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? Presence::Folder : Presence::Other;
}

bool IsMadeOnDemand(std::string_view drive, std::string_view root) {
  return SameText(drive, "C:") && !win32::DrivesAreTheSystems() &&
         root == win32::RootOfDriveC(HomeFolder());
}

// The folder of a drive, with its final `\`. That of C: in the home folder is, until it is made,
// what it is made in.
std::string FolderOfDrive(std::string_view drive, std::string root) {
  if (IsMadeOnDemand(drive, root)) {
    while (Look(root + '\\') == Presence::Missing && root.find('\\') != std::string::npos) {
      root.erase(root.rfind('\\'));
    }
  }
  return root + '\\';
}

DriveKind KindOfSystemDrive(std::string_view drive) {
  const std::optional<std::string> root = win32::RootOfDrive(drive);
  if (!root) return DriveKind::NoRoot;
  return static_cast<DriveKind>(GetDriveTypeW(win32::Wide(*root + '\\').c_str()));
}

DriveKind KindOfHomeDrive(std::string_view drive) {
  const win32::DriveTable table = win32::CurrentDriveTable();
  const Drive* found = table.Find(drive);
  if (found == nullptr) return DriveKind::NoRoot;
  const QuietErrors quiet;
  const bool exists = Look(FolderOfDrive(found->name, found->root)) == Presence::Folder;
  return exists ? found->kind : DriveKind::NoRoot;
}

// `folder` is a name for the call; nullptr is the current drive.
std::int64_t SizeOfDisk(const wchar_t* folder) {
  const QuietErrors quiet;
  ULARGE_INTEGER bytes{};
  if (GetDiskFreeSpaceExW(folder, nullptr, &bytes, nullptr) == 0) return -1;
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(std::min<std::uint64_t>(bytes.QuadPart, kMost));
}

}  // namespace

std::vector<Drive> Drives() {
  return win32::CurrentDriveTable().drives;
}

std::vector<std::string> DriveTableErrors() {
  if (win32::DrivesAreTheSystems()) return {};
  return win32::CurrentDriveTable().errors;
}

DriveKind KindOfDrive(std::string_view name) {
  const std::string_view drive = win32::DriveOf(name);
  return win32::DrivesAreTheSystems() ? KindOfSystemDrive(drive) : KindOfHomeDrive(drive);
}

std::int64_t DiskSize(int drive) {
  constexpr int kLetters = 26;
  if (drive == 0) return SizeOfDisk(nullptr);
  if (drive < 0 || drive > kLetters) return -1;
  const std::string name = {static_cast<char>('A' + drive - 1), ':'};
  const std::optional<std::string> root = win32::RootOfDrive(name);
  if (!root) return -1;
  return SizeOfDisk(CallName(FolderOfDrive(name, *root)).c_str());
}

}  // namespace kvshare::os
