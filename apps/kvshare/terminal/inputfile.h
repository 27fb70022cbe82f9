// A file that a command reads.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "apps/kvshare/terminal/stream.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

// Runs the work on a file; an Exception whose message does not name the file becomes a
// std::runtime_error that does.
template <typename Work>
auto NamingFile(const std::string& file, Work work) {
  try {
    return work();
  } catch (const Exception& e) {
    const std::string message = Cp874ToUtf8Lossy(e.Message());
    if (message.find(file) != std::string::npos) throw;
    throw std::runtime_error(file + ": " + message);
  }
}

// Appends what there is from here to the end. Throws StreamError.
inline void AppendRest(std::string& bytes, int fd) {
  constexpr std::size_t kBlock = std::size_t{1} << 16;
  for (std::size_t n = kBlock; n != 0;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    n = ReadSome(fd, bytes.data() + size, kBlock);
    bytes.resize(size + n);
  }
}

class InputFile {
 public:
  InputFile() = default;  // none
  // Throws StreamError `NAME: reason`.
  explicit InputFile(const std::string& path) : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat facts = {};
    const bool folder = fd_ >= 0 && ::fstat(fd_, &facts) == 0 && S_ISDIR(facts.st_mode);
    if (fd_ >= 0 && !folder) return;
    const int error = folder ? EISDIR : errno;
    if (fd_ >= 0) ::close(fd_);
    throw StreamError(path + ": " + std::generic_category().message(error));
  }
  ~InputFile() {
    if (fd_ >= 0) ::close(fd_);
  }
  InputFile(InputFile&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  InputFile& operator=(InputFile&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }

  bool IsOpen() const { return fd_ >= 0; }
  int Fd() const { return fd_; }

 private:
  int fd_ = -1;
};

}  // namespace kvshare::app
