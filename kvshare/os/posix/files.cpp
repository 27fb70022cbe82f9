#include "kvshare/rtl/files.h"

#include <algorithm>

#include "kvshare/os/paths.h"
#include "kvshare/os/posix/calls.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/readwhole.h"
#include "kvshare/os/posix/temporaryfile.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::posix {

namespace {

void Require(const std::string& path, int error) {
  if (error != 0) ThrowFailed(path, error);
}

// Makes the new name survive a power cut. The file is whole with or without it, so that a file
// system that cannot do this is no failure.
void FlushFolder(const std::string& file) {
  const std::string folder = file.substr(0, file.rfind('/') + 1);
  const Descriptor handle(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (handle.IsOpen()) ::fsync(handle.Value());
}

}  // namespace

std::string ReadWhole(const std::string& path) {
  const Descriptor file(path.c_str(), O_RDONLY);
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

void ReplaceFile(const std::string& path, std::string_view bytes, const Calls& calls) {
  const std::string target = LinkTarget(path);
  if (target.empty()) ThrowFailed(target, ENOENT);
  if (target.ends_with('/')) ThrowFailed(target, EISDIR);
  struct stat earlier = {};
  const bool exists = ::stat(target.c_str(), &earlier) == 0;
  if (exists) Require(target, CannotReplace(AT_FDCWD, target.c_str(), earlier));

  // A new file gets what the process's mask leaves; the text of a private one is never seen.
  TemporaryFile temporary(AT_FDCWD, target);
  Require(target, temporary.Create(exists ? 0600 : 0666));
  if (exists) Require(target, temporary.SetMode(earlier.st_mode & 07777u));
  Require(target, temporary.Write(bytes, calls));
  Require(target, temporary.TakePlace(calls));
  FlushFolder(target);
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
