#include "tests/os/diskcalls.h"

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

[[gnu::visibility("default")]] ssize_t pwrite64(int file, const void* bytes, size_t size,
                                                off64_t offset) {
  auto& calls = kvshare::DiskCalls::Instance();
  ++calls.writes;
  return calls.Fails() ? -1 : ::syscall(SYS_pwrite64, file, bytes, size, offset);
}
}
