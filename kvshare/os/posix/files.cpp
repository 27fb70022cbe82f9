#include "kvshare/rtl/files.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/calls.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::posix {

namespace {

namespace fs = std::filesystem;

// The platform's numbers for the system's.
struct ErrorRow {
  int system, platform;
};
constexpr int kFileNotFound = 2;
constexpr int kPathNotFound = 3;
constexpr int kGeneralFailure = 31;
constexpr ErrorRow kErrors[] = {
    {ENOENT, kFileNotFound},
    {ENOTDIR, kPathNotFound},
    {ELOOP, kPathNotFound},
    {ENAMETOOLONG, 206},
    {EMFILE, 4},
    {ENFILE, 4},
    {EACCES, 5},
    {EPERM, 5},
    {EROFS, 5},
    {EISDIR, 5},
    {EBUSY, 32},
    {ETXTBSY, 32},
    {ENOSPC, 101},
    {EDQUOT, 101},
    {EFBIG, 101},
};

int PlatformCode(int error) {
  for (const ErrorRow& row : kErrors) {
    if (row.system == error) return row.platform;
  }
  return kGeneralFailure;
}

// The system knows one error for a missing file and a missing folder, the platform two.
[[noreturn]] void ThrowFailed(const fs::path& path, int error) {
  int code = PlatformCode(error);
  std::error_code ignored;
  const fs::path folder = path.parent_path();
  const bool folderMissing = !folder.empty() && !fs::is_directory(folder, ignored);
  if (code == kFileNotFound && (folderMissing || path.empty())) code = kPathNotFound;
  throw EInOutError(std::generic_category().message(error), code);
}

class Descriptor {
 public:
  Descriptor() = default;
  Descriptor(const fs::path& path, int flags) { Open(path, flags); }
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void Open(const fs::path& path, int flags, mode_t mode = 0) {
    value_ = ::open(path.c_str(), flags | O_CLOEXEC, mode);
  }
  bool IsOpen() const { return value_ >= 0; }
  int Value() const { return value_; }

  // 0 or the error: some file systems report a failed write only here.
  int Close() {
    const int result = ::close(value_);
    value_ = -1;
    return result == 0 ? 0 : errno;
  }

 private:
  int value_ = -1;
};

// A file of this process alone, removed again unless it takes another's place.
class TemporaryFile {
 public:
  TemporaryFile(const fs::path& folder, mode_t mode) {
    do {  // a crashed process of the same number may have left its name behind
      path_ = folder / UniqueName();
      file_.Open(path_, O_WRONLY | O_CREAT | O_EXCL, mode);
    } while (!file_.IsOpen() && errno == EEXIST);
    if (!file_.IsOpen()) ThrowFailed(path_, errno);
  }
  ~TemporaryFile() {
    if (!path_.empty()) ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void SetMode(mode_t mode) const {
    if (::fchmod(file_.Value(), mode) != 0) ThrowFailed(path_, errno);
  }

  void Write(std::string_view bytes, const Calls& calls) {
    while (!bytes.empty()) {
      const ssize_t n = calls.write(file_.Value(), bytes.data(), bytes.size());
      if (n >= 0) {
        bytes.remove_prefix(static_cast<std::size_t>(n));
      } else if (errno != EINTR) {
        ThrowFailed(path_, errno);
      }
    }
    if (calls.sync(file_.Value()) != 0) ThrowFailed(path_, errno);
    if (const int error = file_.Close(); error != 0) ThrowFailed(path_, error);
  }

  void TakePlaceOf(const fs::path& target, const Calls& calls) {
    if (calls.rename(path_.c_str(), target.c_str()) != 0) ThrowFailed(target, errno);
    path_.clear();
  }

 private:
  static std::string UniqueName() {
    static std::atomic<unsigned> last{0};
    return ".kvshare-" + std::to_string(::getpid()) + "-" + std::to_string(++last) + ".tmp";
  }

  fs::path path_;
  Descriptor file_;
};

// What the links of a path lead to, whether it exists or not.
fs::path LinkTarget(fs::path path) {
  std::error_code error;
  for (int links = 0; fs::is_symlink(path, error); ++links) {
    constexpr int kLongestChain = 40;  // as the system's own limit
    if (links == kLongestChain) ThrowFailed(path, ELOOP);
    const fs::path next = fs::read_symlink(path, error);
    if (error) ThrowFailed(path, error.value());
    path = path.parent_path() / next;
  }
  return path;
}

// A rename asks for no right on the file that it replaces; a writer needs it all the same.
void RequireReplaceable(const fs::path& path, const struct stat& earlier) {
  if (S_ISDIR(earlier.st_mode)) ThrowFailed(path, EISDIR);
  if (!S_ISREG(earlier.st_mode)) ThrowFailed(path, EACCES);
  if (::access(path.c_str(), W_OK) != 0) ThrowFailed(path, errno);
}

// Makes the new name survive a power cut. The file is whole with or without it, so that a file
// system that cannot do this is no failure.
void FlushFolder(const fs::path& folder) {
  const Descriptor handle(folder, O_RDONLY | O_DIRECTORY);
  if (handle.IsOpen()) ::fsync(handle.Value());
}

std::string ReadWhole(const std::string& path) {
  const Descriptor file(path, O_RDONLY);
  struct stat facts = {};
  if (!file.IsOpen() || ::fstat(file.Value(), &facts) != 0) ThrowFailed(path, errno);
  if (S_ISDIR(facts.st_mode)) ThrowFailed(path, EISDIR);

  // One byte more than the file holds, so that the end shows without growing. Pipes and the files
  // of /proc say 0 and hold more.
  constexpr std::size_t kLeast = 4096;
  std::string bytes(std::max(static_cast<std::size_t>(facts.st_size) + 1, kLeast), '\0');
  std::size_t size = 0;
  for (;;) {
    const ssize_t n = ::read(file.Value(), bytes.data() + size, bytes.size() - size);
    if (n == 0) break;
    if (n > 0) size += static_cast<std::size_t>(n);
    if (n < 0 && errno != EINTR) ThrowFailed(path, errno);
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

void ReplaceFile(const std::string& path, std::string_view bytes, const Calls& calls) {
  const fs::path target = LinkTarget(path);
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  if (!target.has_filename()) ThrowFailed(target, target.empty() ? ENOENT : EISDIR);
  struct stat earlier = {};
  const bool exists = ::stat(target.c_str(), &earlier) == 0;
  if (exists) RequireReplaceable(target, earlier);

  // A new file gets what the process's mask leaves; the text of a private one is never seen.
  TemporaryFile temporary(folder, exists ? 0600 : 0666);
  if (exists) temporary.SetMode(earlier.st_mode & 07777u);
  temporary.Write(bytes, calls);
  temporary.TakePlaceOf(target, calls);
  FlushFolder(folder);
}

}  // namespace kvshare::os::posix

namespace kvshare::inline rtl {

std::string ReadFileBytes(std::string_view fileName) {
  return os::posix::ReadWhole(os::NativePath(fileName));
}

void WriteFileBytes(std::string_view fileName, std::string_view bytes) {
  os::posix::ReplaceFile(os::NativePath(fileName), bytes);
}

bool FileExists(std::string_view fileName) {
  try {
    struct stat facts = {};
    return ::stat(os::NativePath(fileName).c_str(), &facts) == 0 && !S_ISDIR(facts.st_mode);
  } catch (const EInOutError&) {
    return false;  // a name that no file can have
  }
}

}  // namespace kvshare::inline rtl
