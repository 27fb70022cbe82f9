#include "apps/kvshare/system/descriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace kvshare::app {

namespace {

[[noreturn]] void Throw(const std::string& stream, int error) {
  if (error == EPIPE) throw ReaderGone();
  throw StreamError(stream + ": " + std::generic_category().message(error));
}

}  // namespace

bool IsTerminal(int descriptor) {
  return ::isatty(descriptor) != 0;
}

bool ReadWouldWait(int descriptor) {
  pollfd request{descriptor, POLLIN, 0};
  return ::poll(&request, 1, 0) == 0;
}

std::size_t ReadSome(int descriptor, char* to, std::size_t size) {
  for (;;) {
    const ssize_t n = ::read(descriptor, to, size);
    if (n >= 0) return static_cast<std::size_t>(n);
    if (errno != EINTR) Throw("input", errno);
  }
}

void WriteAll(int descriptor, std::string_view bytes, const std::string& stream) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(descriptor, bytes.data(), bytes.size());
    if (n >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      Throw(stream, errno);
    }
  }
}

InputFile::InputFile(const std::string& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
  struct stat facts = {};
  const bool folder =
      descriptor_ >= 0 && ::fstat(descriptor_, &facts) == 0 && S_ISDIR(facts.st_mode);
  if (descriptor_ >= 0 && !folder) return;
  const int error = folder ? EISDIR : errno;
  if (descriptor_ >= 0) ::close(descriptor_);
  Throw(path, error);
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

std::uint64_t InputFile::Size() const {
  struct stat facts = {};
  if (::fstat(descriptor_, &facts) != 0) Throw("input", errno);
  return static_cast<std::uint64_t>(facts.st_size);
}

void InputFile::SeekTo(std::uint64_t position) const {
  if (::lseek(descriptor_, static_cast<off_t>(position), SEEK_SET) < 0) Throw("input", errno);
}

bool InputFile::WasReplacedAt(const std::string& path) const {
  struct stat own = {};
  struct stat named = {};
  if (::fstat(descriptor_, &own) != 0 || ::stat(path.c_str(), &named) != 0) return false;
  return own.st_dev != named.st_dev || own.st_ino != named.st_ino;
}

}  // namespace kvshare::app
