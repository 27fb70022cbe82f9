#include "kvshare/os/posix/copyfile.h"

#include <array>
#include <cstddef>
#include <string>

#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/names.h"
#include "kvshare/os/posix/temporaryfile.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace posix {

namespace {

constexpr mode_t kWriteBits = 0222;

struct Source {
  const Descriptor& file;
  const struct stat& facts;
};

int WriteAll(int to, const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t n = ::write(to, bytes, size);
    if (n < 0 && errno != EINTR) return errno;
    if (n > 0) bytes += n, size -= static_cast<std::size_t>(n);
  }
  return 0;
}

int CopyByHand(int from, int to) {
  std::array<char, 64 << 10> block;
  for (;;) {
    const ssize_t n = ::read(from, block.data(), block.size());
    if (n == 0) return 0;
    if (n < 0 && errno != EINTR) return errno;
    if (n < 0) continue;
    if (const int error = WriteAll(to, block.data(), static_cast<std::size_t>(n)); error != 0) {
      return error;
    }
  }
}

// Large files are left to the system, which may share their blocks; what it cannot do, and what
// comes behind the end that it knew, goes by hand.
int CopyBytes(const Source& source, int to) {
  constexpr off_t kLarge = 128 << 10;
  if (source.facts.st_size >= kLarge) {
    constexpr std::size_t kPart = std::size_t{1} << 30;
    for (;;) {
      const ssize_t n = ::copy_file_range(source.file.Value(), nullptr, to, nullptr, kPart, 0);
      if (n < 0 && errno == EINTR) continue;
      if (n < 0 && (errno == ENOSPC || errno == EDQUOT || errno == EFBIG || errno == EIO)) {
        return errno;
      }
      if (n <= 0) break;
    }
  }
  return CopyByHand(source.file.Value(), to);
}

int Fill(const Source& source, int to) {
  if (const int error = CopyBytes(source, to); error != 0) return error;
  const timespec times[] = {{0, UTIME_OMIT}, source.facts.st_mtim};
  return ::futimens(to, times) == 0 ? 0 : errno;
}

// Under another name until it is whole: a process that is killed leaves no half of it.
int MakeNew(const Source& source, int folder, const char* to) {
  TemporaryFile temporary(folder, to);
  if (const int error = temporary.Create(source.facts.st_mode & 0777u); error != 0) return error;
  if (const int error = Fill(source, temporary.Handle()); error != 0) return error;
  return temporary.TakeFreePlace();
}

int Replace(const Source& source, int folder, const char* to) {
  struct stat earlier = {};
  if (::fstatat(folder, to, &earlier, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  if (IdentityOf(earlier) == IdentityOf(source.facts)) return EBUSY;
  if (const int error = CannotReplace(folder, to, earlier); error != 0) return error;
  if ((earlier.st_mode & kWriteBits) == 0) return EACCES;  // of the superuser too

  const bool readOnly = (source.facts.st_mode & kWriteBits) == 0;
  TemporaryFile temporary(folder, to);
  if (const int error = temporary.Create(0600); error != 0) return error;
  if (const int error = Fill(source, temporary.Handle()); error != 0) return error;
  const mode_t mode = earlier.st_mode & 07777u & (readOnly ? ~kWriteBits : ~mode_t{0});
  if (const int error = temporary.SetMode(mode); error != 0) return error;
  return temporary.TakePlace();
}

bool IsLinkAt(int folder, const char* name) {
  struct stat facts = {};
  return ::fstatat(folder, name, &facts, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(facts.st_mode);
}

int CopyOpened(const Source& source, int folder, const char* to) {
  struct stat earlier = {};
  if (::fstatat(folder, to, &earlier, AT_SYMLINK_NOFOLLOW) != 0) {
    const int error = errno == ENOENT ? MakeNew(source, folder, to) : errno;
    if (error != EEXIST) return error;  // else somebody has made it meanwhile
  }
  if (!IsLinkAt(folder, to)) return Replace(source, folder, to);
  // The link stays; what it leads to is written.
  const std::string way =
      folder == AT_FDCWD ? std::string(to) : "/proc/self/fd/" + std::to_string(folder) + "/" + to;
  try {
    return CopyOpened(source, AT_FDCWD, LinkTarget(way).c_str());
  } catch (const EInOutError&) {
    return ELOOP;
  }
}

}  // namespace

int CopyFileAt(int fromFolder, const char* from, int toFolder, const char* to) {
  // A pipe must not wait for its writer.
  const Descriptor file(fromFolder, from, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file.IsOpen()) return errno;
  struct stat facts = {};
  if (::fstat(file.Value(), &facts) != 0) return errno;
  if (S_ISDIR(facts.st_mode)) return EISDIR;
  if (!S_ISREG(facts.st_mode)) return EACCES;
  return CopyOpened({file, facts}, toFolder, to);
}

}  // namespace posix

bool CopyFile(std::string_view from, std::string_view to) {
  const std::string source = posix::NativePathOrNone(from);
  const std::string target = posix::NativePathOrNone(to);
  if (source.empty() || target.empty()) return false;
  return posix::CopyFileAt(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str()) == 0;
}

}  // namespace kvshare::os
