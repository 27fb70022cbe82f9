// What is done to files and folders by their names: made, copied, renamed, deleted.
#include "kvshare/os/files.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/copyfile.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/names.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

using posix::Descriptor;
using posix::NativePathOrNone;

constexpr mode_t kWriteBits = 0222;

bool IsFolder(const std::string& path) {
  struct stat facts = {};
  return ::stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool IsLink(const std::string& path) {
  struct stat facts = {};
  return ::lstat(path.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode);
}

std::string WithoutFinalSlash(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

// 0 or the system's error. A folder that is there already by another case is there.
int MakeFolder(const std::string& path) {
  return ::mkdir(path.c_str(), 0777) == 0 ? 0 : errno;
}

// A link to a folder is removed as a folder; what it leads to stays.
int RemoveFolder(const std::string& name) {
  const std::string path = WithoutFinalSlash(name);
  if (IsLink(path) && IsFolder(path)) return ::unlink(path.c_str()) == 0 ? 0 : errno;
  if (::rmdir(path.c_str()) == 0) return 0;
  return errno == EEXIST ? ENOTEMPTY : errno;  // POSIX allows both for a full folder
}

// Between two disks a file is copied to a name that is free.
bool MoveAcross(const std::string& from, const std::string& to) {
  if (IsFolder(from)) return false;
  const Descriptor reserved(to.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (!reserved.IsOpen()) return false;
  struct stat facts = {};
  const bool moved = ::stat(from.c_str(), &facts) == 0 &&
                     posix::CopyFileAt(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str()) == 0 &&
                     ::chmod(to.c_str(), facts.st_mode & 07777u) == 0 &&
                     ::unlink(from.c_str()) == 0;
  if (!moved) ::unlink(to.c_str());
  return moved;
}

// C: is there from the first use on. The folders of other drives come from elsewhere: one that is
// missing is a disk that is not in its drive.
void MakeDriveC(std::string_view drive) {
  const std::string root = WithoutFinalSlash(NativePathOrNone(drive));
  if (root.empty()) return;  // without a home there is no such drive
  std::error_code ignored;
  if (SameText(drive, "C:") && root == HomeFolder() + "/drive_c") {
    std::filesystem::create_directories(root, ignored);
  }
}

// `/` separates too.
std::string WithBackslashes(std::string_view name) {
  std::string path(name);
  std::ranges::replace(path, '/', '\\');
  return path;
}

}  // namespace

bool DirectoryExists(std::string_view name) {
  return IsFolder(NativePathOrNone(name));
}

std::optional<TDateTime> FileAge(std::string_view name) {
  struct stat facts = {};
  const std::string path = NativePathOrNone(name);
  if (::stat(path.c_str(), &facts) != 0 || S_ISDIR(facts.st_mode)) return std::nullopt;
  std::tm local = {};
  if (::localtime_r(&facts.st_mtim.tv_sec, &local) == nullptr) return std::nullopt;
  TDateTime date;
  TDateTime time;
  const int second = std::min(local.tm_sec, 59);  // a leap second
  if (!TryEncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, date) ||
      !TryEncodeTime(local.tm_hour, local.tm_min, second, 0, time)) {
    return std::nullopt;
  }
  return JoinDateTime(date, time);
}

std::int64_t FileSize(std::string_view name) {
  const std::string path = NativePath(name);
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) != 0) posix::ThrowInOut(posix::PlatformCode(path, errno));
  if (S_ISDIR(facts.st_mode)) posix::ThrowInOut(posix::kAccessDenied);
  if (S_ISREG(facts.st_mode)) {  // whose size only its reader may know
    const Descriptor file(path.c_str(), O_RDONLY);
    if (!file.IsOpen()) posix::ThrowInOut(posix::PlatformCode(path, errno));
  }
  return facts.st_size;
}

bool ForceDirectories(std::string_view name) {
  // The folders that are missing, from the last to the first.
  std::string path = WithBackslashes(name);
  std::vector<std::string> missing;
  for (;;) {
    if (path.empty()) throw EInOutError("Unable to create directory", posix::kPathNotFound);
    if (path.ends_with('\\')) path.pop_back();
    if (path.size() < 3 || DirectoryExists(path)) break;
    missing.push_back(path);
    path = ExtractFilePath(path);
  }
  if (!missing.empty() && path.size() == 2) MakeDriveC(path);
  return std::ranges::all_of(missing.rbegin(), missing.rend(),
                             [](const std::string& folder) { return CreateDir(folder); });
}

bool CreateDir(std::string_view name) {
  const std::string path = NativePathOrNone(name);
  return !path.empty() && MakeFolder(path) == 0;
}

bool RemoveDir(std::string_view name) {
  const std::string path = NativePathOrNone(name);
  return !path.empty() && RemoveFolder(path) == 0;
}

void MkDir(std::string_view name) {
  const std::string path = WithoutFinalSlash(NativePath(name));
  if (const int error = MakeFolder(path); error != 0) {
    posix::ThrowInOut(posix::PlatformCode(path, error));
  }
}

void RmDir(std::string_view name) {
  const std::string path = WithoutFinalSlash(NativePath(name));
  if (const int error = RemoveFolder(path); error != 0) {
    posix::ThrowInOut(posix::PlatformCode(path, error));
  }
}

bool DeleteFile(std::string_view name) {
  const std::string path = NativePathOrNone(name);
  struct stat facts = {};
  if (path.empty() || ::lstat(path.c_str(), &facts) != 0) return false;
  if (S_ISLNK(facts.st_mode)) return !IsFolder(path) && ::unlink(path.c_str()) == 0;
  const bool readOnly = (facts.st_mode & kWriteBits) == 0;
  return !S_ISDIR(facts.st_mode) && !readOnly && ::unlink(path.c_str()) == 0;
}

bool RenameFile(std::string_view from, std::string_view to) {
  const std::string source = WithoutFinalSlash(NativePathOrNone(from));
  std::string target = WithoutFinalSlash(NativePathOrNone(to));
  if (source.empty() || target.empty()) return false;
  // The same file by another case gets the name as spelled.
  if (source == target) target = WithoutFinalSlash(posix::NativePathOfNew(to));
  struct stat facts = {};
  if (source == target) return ::lstat(source.c_str(), &facts) == 0;
  if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno == EXDEV) return MoveAcross(source, target);
  // A file system that cannot refuse by itself.
  if (errno != EINVAL && errno != ENOSYS) return false;
  if (::lstat(target.c_str(), &facts) == 0) return false;
  return std::rename(source.c_str(), target.c_str()) == 0;
}

int FileGetAttr(std::string_view name) {
  const std::string path = WithoutFinalSlash(NativePathOrNone(name));
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) != 0) return -1;
  return posix::AttributesOf(path.substr(path.rfind('/') + 1), facts);
}

int FileSetAttr(std::string_view name, int attributes) {
  const std::string path = NativePathOrNone(name);
  struct stat facts = {};
  if (path.empty()) return posix::kPathNotFound;
  if (::stat(path.c_str(), &facts) != 0) return posix::PlatformCode(path, errno);
  if (S_ISDIR(facts.st_mode)) return 0;
  const bool wasReadOnly = (facts.st_mode & kWriteBits) == 0;
  const bool readOnly = (attributes & faReadOnly) != 0;
  if (readOnly == wasReadOnly) return 0;
  const mode_t mode = facts.st_mode & 07777u;
  const mode_t wanted = readOnly ? mode & ~kWriteBits : mode | S_IWUSR;
  return ::chmod(path.c_str(), wanted) == 0 ? 0 : posix::PlatformCode(path, errno);
}

}  // namespace kvshare::os

namespace kvshare::os::posix {

int AttributesOf(std::string_view name, const struct stat& facts) {
  const bool hidden = name.starts_with('.') && name != "." && name != "..";
  const int attributes = hidden ? faHidden : 0;
  if (S_ISDIR(facts.st_mode)) return attributes | faDirectory;
  return attributes | faArchive | ((facts.st_mode & kWriteBits) == 0 ? faReadOnly : 0);
}

}  // namespace kvshare::os::posix
