#include "tests/os/diskcalls.h"

#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace kvshare {

DiskCalls& DiskCalls::Instance() {
  static DiskCalls calls;
  return calls;
}

bool DiskCalls::Fails() {
  if (left < 0) return false;
  if (left > 0) {
    --left;
    return false;
  }
  errno = error;
  return true;
}

}  // namespace kvshare

extern "C" {

[[gnu::visibility("default")]] int fdatasync(int file) {
  auto& calls = kvshare::DiskCalls::Instance();
  ++calls.flushes;
  return calls.Fails() ? -1 : static_cast<int>(::syscall(SYS_fdatasync, file));
}

[[gnu::visibility("default")]] int fsync(int file) {
  auto& calls = kvshare::DiskCalls::Instance();
  ++calls.flushes;
  return calls.Fails() ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}

// A full disk says that nothing is left.
[[gnu::visibility("default")]] int statvfs(const char* path, struct statvfs* space) {
  auto& calls = kvshare::DiskCalls::Instance();
  struct statfs facts = {};
  if (::statfs(path, &facts) != 0) return -1;
  *space = {};
  space->f_frsize = static_cast<unsigned long>(facts.f_frsize);
  space->f_bsize = static_cast<unsigned long>(facts.f_bsize);
  space->f_blocks = facts.f_blocks;
  space->f_bfree = facts.f_bfree;
  space->f_bavail = calls.left == 0 && calls.error == ENOSPC ? 0 : facts.f_bavail;
  return 0;
}

[[gnu::visibility("default")]] ssize_t pwrite64(int file, const void* bytes, size_t size,
                                                off64_t offset) {
  auto& calls = kvshare::DiskCalls::Instance();
  ++calls.writes;
  return calls.Fails() ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}
}
