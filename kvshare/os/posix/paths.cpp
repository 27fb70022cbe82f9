#include "kvshare/os/paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "kvshare/os/files.h"
#include "kvshare/os/posix/drivetable.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/foldednames.h"
#include "kvshare/os/posix/names.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"

namespace kvshare::os {

namespace posix {

namespace {

[[noreturn]] void ThrowInvalidName(std::string_view message = "Invalid filename") {
  throw EInOutError(message, kPathNotFound);
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

// Appends `/name` for each part of a name on a drive; `.` and `..` are resolved as the platform
// resolves them, by the text and never above the drive's root.
void AppendBelowRoot(std::string& native, std::string_view name) {
  const std::size_t root = native.size();
  const bool endsInFolder = name.empty() || name.ends_with('/');
  while (!name.empty()) {
    const std::size_t end = std::min(name.find('/'), name.size());
    const std::string_view part = name.substr(0, end);
    if (part == "..") {
      native.resize(std::max(root, std::min(native.rfind('/'), native.size())));
    } else if (!part.empty() && part != ".") {
      native.append("/").append(part);
    }
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  if (endsInFolder || native.size() == root) native += '/';
}

// A system's name and how much of its front is not looked at again.
struct Spelled {
  std::string path;
  std::size_t fixed = 0;
};

Spelled AsSpelled(std::string_view windowsPath) {
  const std::string_view drive = DriveOf(windowsPath);
  if (drive.empty()) return {Utf8Name(windowsPath), 0};
  const auto table = CurrentDriveTable();
  const Drive* found = table->Find(drive);
  if (found == nullptr) {
    HomeFolder();  // its error says more, where C: is missing for want of a home
    ThrowInvalidName();
  }
  Spelled spelled{found->root, found->root.size()};
  AppendBelowRoot(spelled.path, Utf8Name(windowsPath.substr(drive.size())));
  return spelled;
}

enum class Presence { There, Missing, Unknown };

Presence Look(const std::string& path) {
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) == 0) return Presence::There;
  // A link that leads nowhere is there; a folder that may not be read tells nothing.
  if (errno == ENOENT || errno == ENOTDIR) {
    return ::lstat(path.c_str(), &facts) == 0 ? Presence::There : Presence::Missing;
  }
  return Presence::Unknown;
}

// Replaces the part of `path` from `begin` to `end` by the name that is there.
bool CorrectPart(std::string& path, std::size_t begin, std::size_t end) {
  const auto found = FindInFolder(path.substr(0, begin), path.substr(begin, end - begin));
  if (!found) return false;
  path.replace(begin, end - begin, *found);  // of the same length
  return true;
}

// Where a part is not there as spelled, its folder is searched; what lies below a part that is not
// there at all stays.
void LookAgain(Spelled& name, std::size_t end) {
  std::string& path = name.path;
  std::size_t begin = name.fixed;
  while (begin < end) {
    while (begin < end && path[begin] == '/') ++begin;
    const std::size_t partEnd = std::min(path.find('/', begin), end);
    if (begin == partEnd) return;
    const Presence presence = Look(path.substr(0, partEnd));
    if (presence == Presence::Unknown) return;
    if (presence == Presence::Missing && !CorrectPart(path, begin, partEnd)) return;
    begin = partEnd;
  }
}

// The end of the folder that holds the last part of a path.
std::size_t FolderEnd(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path.rfind('/') + 1;
}

std::string Corrected(Spelled name) {
  if (Look(name.path) != Presence::Missing) return std::move(name.path);
  // Most often a new file in a folder that is there: the way to it need not be walked.
  const std::size_t folderEnd = std::max(FolderEnd(name.path), name.fixed);
  if (folderEnd > 0 && Look(name.path.substr(0, folderEnd)) == Presence::There) {
    name.fixed = folderEnd;
  }
  LookAgain(name, name.path.size());
  return std::move(name.path);
}

bool Holds(std::string_view root, std::string_view path) {
  return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

}  // namespace

std::string NativePathOfNew(std::string_view windowsPath) {
  Spelled name = AsSpelled(windowsPath);
  LookAgain(name, std::max(FolderEnd(name.path), name.fixed));
  return std::move(name.path);
}

std::string NativePathOrNone(std::string_view windowsPath) {
  try {
    return NativePath(windowsPath);
  } catch (const EInOutError&) {
    return {};
  }
}

}  // namespace posix

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
      posix::ThrowInvalidName("No home folder: set KVSHARE_HOME");
    }
  }
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

std::string NativePath(std::string_view windowsPath) {
  return posix::Corrected(posix::AsSpelled(windowsPath));
}

std::string WindowsPath(std::string_view nativePath) {
  if (nativePath.find('\\') != std::string_view::npos) {
    throw EConvertError("A name with a backslash has no name on a drive");
  }
  const auto table = posix::CurrentDriveTable();
  const Drive* best = nullptr;
  for (const Drive& drive : table->drives) {
    if (!posix::Holds(drive.root, nativePath)) continue;
    if (best == nullptr || drive.root.size() > best->root.size()) best = &drive;
  }
  std::string name(best != nullptr ? nativePath.substr(best->root.size()) : nativePath);
  if (name.empty()) name = "/";
  std::ranges::replace(name, '/', '\\');
  return (best != nullptr ? best->name : std::string()) + Utf8ToCp874(name);
}

std::string CurrentFolder() {
  std::error_code error;
  const std::filesystem::path folder = std::filesystem::current_path(error);
  if (error) posix::ThrowFailed(".", error.value());
  return WindowsPath(folder.native());
}

std::string ExpandFileName(std::string_view name) {
  std::string path(name);
  std::ranges::replace(path, '/', '\\');
  if (name.starts_with("//")) path.erase(0, 1);  // no share: only backslashes begin one
  const std::string_view drive = ExtractFileDrive(path);
  if (drive.size() == 2 && !path.substr(2).starts_with('\\')) path.insert(2, 1, '\\');
  if (!drive.empty() || path.empty()) return rtl::ExpandFileName(path, "");
  // A name without a drive stands for itself, from the system's root.
  return rtl::ExpandFileName(path, path.starts_with('\\') ? WindowsPath("/") : CurrentFolder());
}

}  // namespace kvshare::os
