#include "kvshare/rtl/filebytes.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>

#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/wholefile.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/temporaryfile.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

namespace {

void Require(SystemError error) {
  if (error != ERROR_SUCCESS) ThrowFailed(error);
}

Handle OpenForReading(const std::string& path) {
  OpenedFile file = OpenEntry(CallName(path), {.flags = FILE_FLAG_SEQUENTIAL_SCAN});
  Require(file.error);
  return std::move(file.handle);
}

// 0 at the end; a pipe ends where its writer closes it.
std::size_t ReadSome(const Handle& file, char* to, std::size_t size) {
  constexpr std::size_t kMost = std::size_t{16} << 20;  // servers refuse more at once
  DWORD n = 0;
  const auto part = static_cast<DWORD>(std::min(size, kMost));
  if (ReadFile(file.Value(), to, part, &n, nullptr) != 0) return n;
  const SystemError error = GetLastError();
  if (error != ERROR_HANDLE_EOF && error != ERROR_BROKEN_PIPE) ThrowFailed(error);
  return 0;
}

// One byte more than the file holds is asked for, so that the end shows without growing. Stops
// behind `most` bytes.
std::string ReadToEnd(const Handle& file, std::uint64_t size, std::size_t most) {
  constexpr std::uint64_t kLeast = 4096;
  constexpr std::uint64_t kMost = std::uint64_t{1} << 30;  // a file may say that it holds more
  std::string bytes(static_cast<std::size_t>(std::clamp(size + 1, kLeast, kMost)), '\0');
  std::size_t filled = 0;
  while (filled <= most) {
    const std::size_t n = ReadSome(file, bytes.data() + filled, bytes.size() - filled);
    if (n == 0) break;
    filled += n;
    if (filled == bytes.size()) bytes.resize(2 * filled);
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace

// A file on its way to the place of `path`.
class Replacement {
 public:
  explicit Replacement(const std::string& path) {
    const std::wstring name = CallName(path);
    const EarlierFile earlier = FindEarlier(name);
    if (earlier.error == ERROR_FILE_NOT_FOUND) {
      Require(temporary_.emplace(name).Create(0));
    } else {
      Require(earlier.error);
      Require(temporary_.emplace(earlier.name).CreateLike(earlier));
    }
  }

  void Write(std::string_view bytes) { Require(temporary_->Write(bytes)); }
  void Keep() { Require(temporary_->TakePlace()); }

 private:
  std::optional<TemporaryFile> temporary_;
};

}  // namespace kvshare::os::win32

namespace kvshare::os {

class WholeFile::State : public win32::Replacement {
 public:
  explicit State(std::string_view name) : Replacement(NativePath(name)) {}
};

WholeFile::WholeFile(std::string_view name) : state_(std::make_unique<State>(name)) {}
WholeFile::~WholeFile() = default;

void WholeFile::Write(std::string_view bytes) {
  state_->Write(bytes);
}

void WholeFile::Keep() {
  state_->Keep();
}

std::string ReadNativeFile(const std::string& path, std::size_t most) {
  const win32::Handle file = win32::OpenForReading(path);
  const win32::FileFacts facts = win32::FactsOf(file);
  if (!facts.IsKnown()) throw EInOutError("It is no regular file", win32::kAccessDenied);
  const auto tooLong = [most] {
    throw EInOutError("It has more than " + std::to_string(most) + " bytes",
                      win32::kGeneralFailure);
  };
  if (facts.size > most) tooLong();
  std::string bytes = win32::ReadToEnd(file, facts.size, most);
  if (bytes.size() > most) tooLong();
  return bytes;
}

}  // namespace kvshare::os

namespace kvshare::inline rtl {

std::string ReadFileBytes(std::string_view fileName) {
  const os::win32::Handle file = os::win32::OpenForReading(os::NativePath(fileName));
  const os::win32::FileFacts facts = os::win32::FactsOf(file);  // of a pipe none: it is read too
  return os::win32::ReadToEnd(file, facts.size, std::numeric_limits<std::size_t>::max());
}

void WriteFileBytes(std::string_view fileName, std::string_view bytes) {
  os::win32::Replacement file(os::NativePath(fileName));
  file.Write(bytes);
  file.Keep();
}

bool FileExists(std::string_view fileName) {
  const auto name = os::win32::CallNameOrNone(fileName);
  if (!name) return false;
  const os::win32::FileFacts facts = os::win32::LookAt(*name);
  return facts.IsKnown() && !facts.IsFolder();
}

}  // namespace kvshare::inline rtl
