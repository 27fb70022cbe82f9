// A file that is open.
// Internal header.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kvshare::os::posix {

class Descriptor {
 public:
  Descriptor() = default;
  Descriptor(const char* path, int flags, mode_t mode = 0)
      : Descriptor(AT_FDCWD, path, flags, mode) {}
  Descriptor(int folder, const char* path, int flags, mode_t mode = 0)
      : value_(::openat(folder, path, flags | O_CLOEXEC, mode)) {}
  explicit Descriptor(int owned) : value_(owned) {}
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }

  bool IsOpen() const { return value_ >= 0; }
  int Value() const { return value_; }

  // 0 or the error: some file systems report a failed write only here.
  int Close() { return ::close(std::exchange(value_, -1)) == 0 ? 0 : errno; }

 private:
  int value_ = -1;
};

// Which file it is, whatever its name.
struct Identity {
  dev_t device = 0;
  ino_t number = 0;
  bool operator==(const Identity&) const = default;
};

inline Identity IdentityOf(const struct stat& facts) {
  return {facts.st_dev, facts.st_ino};
}

}  // namespace kvshare::os::posix
