#include "kvshare/os/registry/storefile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "kvshare/os/registry/sqlite.h"

namespace kvshare::os::store {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Throw(const std::string& what, int error) {
  if (error == ENOSPC || error == EDQUOT) throw StoreError("the disk is full");
  throw StoreError(what + ": " + std::generic_category().message(error));
}

// What SQLite keeps beside a file; gone when the last connection is closed.
constexpr const char* kCompanions[] = {"-wal", "-shm", "-journal"};

// The file under construction, removed with its companions.
class Draft {
 public:
  explicit Draft(const std::string& target) {
    static std::atomic<unsigned> last{0};
    path_ = target + ".new-" + std::to_string(::getpid()) + "-" + std::to_string(++last);
    ::unlink(path_.c_str());  // a crashed process of the same number may have left it behind
    const int file = ::open(path_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (file < 0) Throw("it cannot be made", errno);
    ::close(file);
  }
  ~Draft() {
    ::unlink(path_.c_str());
    for (const char* companion : kCompanions) ::unlink((path_ + companion).c_str());
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

void FlushFolder(const fs::path& folder) {
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  ::fsync(handle);
  ::close(handle);
}

// A second name where the file system has such, else a renaming that replaces nothing.
void GiveName(const std::string& draft, const std::string& path) {
  if (::link(draft.c_str(), path.c_str()) == 0 || errno == EEXIST) return;
  if (::renameat2(AT_FDCWD, draft.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno != EEXIST) Throw("it cannot be made", errno);
}

void RequireSpace(const std::string& folder) {
  constexpr unsigned long long kLeast = 64 << 10;
  struct statvfs space = {};
  if (::statvfs(folder.c_str(), &space) != 0) return;
  if (space.f_bavail * static_cast<unsigned long long>(space.f_frsize) < kLeast) {
    throw StoreError("the disk is full");
  }
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const std::string& path) {
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) != 0) {
    if (errno == ENOENT) return std::nullopt;
    Throw("it cannot be reached", errno);
  }
  if (!S_ISREG(facts.st_mode)) throw StoreError("it is a folder or a device, not a settings store");
  if (facts.st_size == 0) throw StoreError("it is damaged: the file is empty");
  return FileIdentity{facts.st_dev, facts.st_ino};
}

void CreateWhole(const std::string& path, const std::function<void(const std::string&)>& fill) {
  const fs::path folder = fs::path(path).parent_path();
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) Throw("its folder cannot be made", error.value());
  const Draft draft(path);
  fill(draft.Path());
  GiveName(draft.Path(), path);
  FlushFolder(folder);
}

std::int64_t SizeOf(const std::string& path) {
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) != 0) Throw("it cannot be reached", errno);
  return facts.st_size;
}

bool MayWrite(const std::string& path) {
  return ::access(path.c_str(), W_OK) == 0;
}

bool HasLog(const std::string& path) {
  struct stat facts = {};
  return ::stat((path + kCompanions[0]).c_str(), &facts) == 0 && facts.st_size > 0;
}

bool IsInClosedFolder(const std::string& path) {
  for (const char* companion : kCompanions) {
    if (::access((path + companion).c_str(), F_OK) == 0) return false;
  }
  return ::access(fs::path(path).parent_path().c_str(), W_OK) != 0;
}

void RequireWritable(const std::string& path) {
  if (::access(path.c_str(), F_OK) == 0 && ::access(path.c_str(), W_OK) != 0) {
    throw StoreError("it may only be read");
  }
  fs::path folder = fs::path(path).parent_path();
  std::error_code ignored;
  while (!fs::exists(folder, ignored) && folder.has_relative_path()) folder = folder.parent_path();
  if (!fs::is_directory(folder, ignored)) throw StoreError(folder.string() + " is no folder");
  if (::access(folder.c_str(), W_OK) != 0) {
    throw StoreError("the folder " + folder.string() + " may not be written");
  }
  RequireSpace(folder.string());
}

}  // namespace kvshare::os::store
