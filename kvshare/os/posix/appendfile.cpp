#include "kvshare/os/appendfile.h"

#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace posix {

namespace {

[[noreturn]] void Fail(const std::string& path, int error) {
  ThrowInOut(PlatformCode(path, error));
}

// A log may be one that its writers cannot read.
Descriptor OpenForAppending(const std::string& path, int flags) {
  constexpr mode_t kWhatTheMaskLeaves = 0666;
  Descriptor file(path.c_str(), O_RDWR | O_APPEND | flags, kWhatTheMaskLeaves);
  if (file.IsOpen() || errno != EACCES) return file;
  return {path.c_str(), O_WRONLY | O_APPEND | flags, kWhatTheMaskLeaves};
}

Descriptor OpenOrCreate(const std::string& path) {
  Descriptor file = OpenForAppending(path, 0);
  if (!file.IsOpen() && errno == ENOENT) {
    std::error_code shownByTheOpening;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(),
                                        shownByTheOpening);
    file = OpenForAppending(path, O_CREAT);
  }
  if (!file.IsOpen()) Fail(path, errno);
  return file;
}

// False where the file system has no locks, and where somebody keeps the file for so long that his
// process must be standing still: a program must not stand still with it.
bool Lock(const Descriptor& file) {
  constexpr timespec kPause{0, 200'000};
  constexpr int kTries = 10'000;  // two seconds
  for (int i = 0; i < kTries; ++i) {
    if (::flock(file.Value(), LOCK_EX | LOCK_NB) == 0) return true;
    if (errno != EWOULDBLOCK && errno != EINTR) return false;
    ::nanosleep(&kPause, nullptr);
  }
  return false;
}

off_t SizeOf(const Descriptor& file) {
  return ::lseek(file.Value(), 0, SEEK_END);
}

// Where the text ends, after the Ctrl-Z bytes that old editors left behind it were cut off. What
// cannot be read has none.
off_t EndOfText(const Descriptor& file, const std::string& path) {
  constexpr char kCtrlZ = '\x1A';
  char tail[128];
  const off_t size = SizeOf(file);
  const off_t from = std::max<off_t>(size - static_cast<off_t>(sizeof tail), 0);
  const ssize_t read = ::pread(file.Value(), tail, sizeof tail, from);
  ssize_t text = read;
  while (text > 0 && tail[text - 1] == kCtrlZ) --text;
  if (text >= read) return size;
  if (::ftruncate(file.Value(), from + text) != 0) Fail(path, errno);
  return from + text;
}

// With the lock nobody else of ours has written since; others may have.
void Undo(const Descriptor& file, off_t before, std::size_t written) {
  if (written > 0 && SizeOf(file) == before + static_cast<off_t>(written)) {
    [[maybe_unused]] const int ignored = ::ftruncate(file.Value(), before);
  }
}

void WriteInOnePiece(const Descriptor& file, const std::string& path, std::string_view bytes) {
  const bool alone = Lock(file);
  const off_t before = alone ? EndOfText(file, path) : 0;
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t n = ::write(file.Value(), bytes.data() + written, bytes.size() - written);
    if (n >= 0) {
      written += static_cast<std::size_t>(n);
    } else if (errno != EINTR) {
      const int error = errno;
      if (alone) Undo(file, before, written);
      Fail(path, error);
    }
  }
}

}  // namespace

}  // namespace posix

void AppendToFile(std::string_view name, std::string_view bytes) {
  const std::string path = NativePath(name);
  posix::Descriptor file = posix::OpenOrCreate(path);
  posix::WriteInOnePiece(file, path, bytes);
  if (const int error = file.Close(); error != 0) posix::Fail(path, error);
}

}  // namespace kvshare::os
