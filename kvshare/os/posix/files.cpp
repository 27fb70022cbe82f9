#include "kvshare/rtl/filebytes.h"

#include <algorithm>
#include <limits>

#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/calls.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/readwhole.h"
#include "kvshare/os/posix/temporaryfile.h"
#include "kvshare/os/wholefile.h"
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

// One byte more than the file holds is asked for, so that the end shows without growing. Pipes and
// the files of /proc say 0 and hold more. Stops behind `most` bytes.
std::string ReadToEnd(const Descriptor& file, const std::string& path, const struct stat& facts,
                      std::size_t most) {
  constexpr std::size_t kLeast = 4096;
  std::string bytes(std::max(static_cast<std::size_t>(facts.st_size) + 1, kLeast), '\0');
  std::size_t size = 0;
  while (size <= most) {
    const ssize_t n = ::read(file.Value(), bytes.data() + size, bytes.size() - size);
    if (n == 0) break;
    if (n > 0) size += static_cast<std::size_t>(n);
    if (n < 0 && errno != EINTR) ThrowFailed(path, errno);
    if (size == bytes.size()) bytes.resize(2 * size);
  }
  bytes.resize(size);
  return bytes;
}

struct stat FactsOf(const Descriptor& file, const std::string& path) {
  struct stat facts = {};
  if (!file.IsOpen() || ::fstat(file.Value(), &facts) != 0) ThrowFailed(path, errno);
  if (S_ISDIR(facts.st_mode)) ThrowFailed(path, EISDIR);
  return facts;
}

}  // namespace

std::string ReadWhole(const std::string& path) {
  const Descriptor file(path.c_str(), O_RDONLY);
  const struct stat facts = FactsOf(file, path);
  return ReadToEnd(file, path, facts, std::numeric_limits<std::size_t>::max());
}

// A file on its way to the place of `path`.
class Replacement {
 public:
  Replacement(const std::string& path, const Calls& calls)
      : calls_(calls), target_(LinkTarget(path)), temporary_(AT_FDCWD, target_) {
    if (target_.empty()) ThrowFailed(target_, ENOENT);
    if (target_.ends_with('/')) ThrowFailed(target_, EISDIR);
    struct stat earlier = {};
    const bool exists = ::stat(target_.c_str(), &earlier) == 0;
    if (exists) Require(target_, CannotReplace(AT_FDCWD, target_.c_str(), earlier));
    // A new file gets what the process's mask leaves; the text of a private one is never seen.
    Require(target_, temporary_.Create(exists ? 0600 : 0666));
    if (exists) Require(target_, temporary_.SetMode(earlier.st_mode & 07777u));
  }

  void Write(std::string_view bytes) { Require(target_, temporary_.Write(bytes, calls_)); }
  void Keep() {
    Require(target_, temporary_.TakePlace(calls_));
    FlushFolder(target_);
  }

 private:
  Calls calls_;
  std::string target_;
  TemporaryFile temporary_;
};

void ReplaceFile(const std::string& path, std::string_view bytes, const Calls& calls) {
  Replacement file(path, calls);
  file.Write(bytes);
  file.Keep();
}

}  // namespace kvshare::os::posix

namespace kvshare::os {

class WholeFile::State : public posix::Replacement {
 public:
  explicit State(std::string_view name) : Replacement(NativePath(name), {}) {}
};

WholeFile::WholeFile(std::string_view name) : state_(std::make_unique<State>(name)) {}
WholeFile::~WholeFile() = default;

void WholeFile::Write(std::string_view bytes) {
  state_->Write(bytes);
}

void WholeFile::Keep() {
  state_->Keep();
}

// Without O_NONBLOCK a pipe that nobody writes to would be waited for.
std::string ReadNativeFile(const std::string& path, std::size_t most) {
  const posix::Descriptor file(path.c_str(), O_RDONLY | O_NONBLOCK);
  const struct stat facts = posix::FactsOf(file, path);
  if (!S_ISREG(facts.st_mode)) throw EInOutError("It is no regular file", posix::kAccessDenied);
  const auto tooLong = [most] {
    throw EInOutError("It has more than " + std::to_string(most) + " bytes",
                      posix::kGeneralFailure);
  };
  if (static_cast<std::uint64_t>(facts.st_size) > most) tooLong();
  std::string bytes = posix::ReadToEnd(file, path, facts, most);
  if (bytes.size() > most) tooLong();
  return bytes;
}

}  // namespace kvshare::os

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
