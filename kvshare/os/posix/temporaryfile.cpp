#include "kvshare/os/posix/temporaryfile.h"

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "kvshare/os/posix/errors.h"

namespace kvshare::os::posix {

namespace {

std::string UniqueName() {
  static std::atomic<unsigned> last{0};
  return ".kvshare-" + std::to_string(::getpid()) + "-" + std::to_string(++last) + ".tmp";
}

}  // namespace

std::string LinkTarget(std::string path) {
  namespace fs = std::filesystem;
  fs::path target(std::move(path));
  std::error_code error;
  for (int links = 0; fs::is_symlink(target, error); ++links) {
    constexpr int kLongestChain = 40;  // as the system's own limit
    if (links == kLongestChain) ThrowFailed(target, ELOOP);
    const fs::path next = fs::read_symlink(target, error);
    if (error) ThrowFailed(target, error.value());
    target = target.parent_path() / next;
  }
  return target;
}

int CannotReplace(int folder, const char* path, const struct stat& earlier) {
  if (S_ISDIR(earlier.st_mode)) return EISDIR;
  if (!S_ISREG(earlier.st_mode)) return EACCES;
  return ::faccessat(folder, path, W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

int TemporaryFile::Create(mode_t mode) {
  const std::string folder = target_.substr(0, target_.rfind('/') + 1);
  do {  // a crashed process of the same number may have left its name behind
    path_ = folder + UniqueName();
    file_ = Descriptor(folder_, path_.c_str(), O_WRONLY | O_CREAT | O_EXCL, mode);
  } while (!file_.IsOpen() && errno == EEXIST);
  if (file_.IsOpen()) return 0;
  path_.clear();
  return errno;
}

int TemporaryFile::SetMode(mode_t mode) const {
  return ::fchmod(file_.Value(), mode) == 0 ? 0 : errno;
}

int TemporaryFile::Write(std::string_view bytes, const Calls& calls) const {
  while (!bytes.empty()) {
    const ssize_t n = calls.write(file_.Value(), bytes.data(), bytes.size());
    if (n >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// Not every file system can rename without replacing. A link cannot replace either.
int TemporaryFile::TakeFreePlace() {
  if (const int error = file_.Close(); error != 0) return error;
  const char* from = path_.c_str();
  const char* to = target_.c_str();
  if (::renameat2(folder_, from, folder_, to, RENAME_NOREPLACE) == 0) {
    path_.clear();
    return 0;
  }
  if (errno != EINVAL && errno != ENOSYS) return errno;
  return ::linkat(folder_, from, folder_, to, 0) == 0 ? 0 : errno;
}

int TemporaryFile::TakePlace(const Calls& calls) {
  if (calls.sync(file_.Value()) != 0) return errno;
  if (const int error = file_.Close(); error != 0) return error;
  if (calls.rename(folder_, path_.c_str(), folder_, target_.c_str()) != 0) return errno;
  path_.clear();
  return 0;
}

}  // namespace kvshare::os::posix
