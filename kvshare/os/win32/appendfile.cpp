#include "kvshare/os/appendfile.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "kvshare/os/paths.h"
#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"

namespace kvshare::os {

namespace win32 {

namespace {

[[noreturn]] void Fail(SystemError error) {
  ThrowInOut(PlatformCode(error));
}

OVERLAPPED PlaceAt(std::uint64_t offset) {
  constexpr int kHalf = 32;
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> kHalf);
  return place;
}

// A log may be one that its writers cannot read, or whose text they cannot change. An editor or a
// virus scanner that has the file for itself is waited for, but not for long: the next line would
// wait again.
OpenedFile OpenForAppending(const std::wstring& name, DWORD disposition) {
  constexpr DWORD kPatience = 500;  // milliseconds
  constexpr DWORD kWaysToAppend[] = {GENERIC_READ | GENERIC_WRITE, GENERIC_WRITE, FILE_APPEND_DATA};
  OpenedFile file;
  for (const DWORD access : kWaysToAppend) {
    Patiently(kPatience, IsInUse, [&] {
      file = OpenEntry(name, {.access = access, .disposition = disposition});
      return file.error;
    });
    if (file.error != ERROR_ACCESS_DENIED) break;
  }
  return file;
}

Handle OpenOrCreate(const std::string& path) {
  const std::wstring name = CallName(path);
  OpenedFile file = OpenForAppending(name, OPEN_EXISTING);
  if (TellsMissing(file.error)) {
    const std::size_t folder = path.find_last_of("\\/");
    if (folder != std::string::npos) MakeFolders(path.substr(0, folder + 1));
    file = OpenForAppending(name, OPEN_ALWAYS);  // shows whether that went well
  }
  if (!file.IsOpen()) Fail(file.error);
  return std::move(file.handle);
}

// The lock lies far behind any text: a locked text could not be read meanwhile. False where the
// file system has no locks, and where somebody keeps the file for so long that his process must be
// standing still: a program must not stand still with it.
bool Lock(const Handle& file) {
  constexpr std::uint64_t kPlace = std::uint64_t{1} << 62;
  constexpr ULONGLONG kPatience = 2000;  // milliseconds
  constexpr int kShortTries = 100;       // which give the processor away and nothing more
  const ULONGLONG end = GetTickCount64() + kPatience;
  for (int i = 0; GetTickCount64() < end; ++i) {
    OVERLAPPED place = PlaceAt(kPlace);
    constexpr DWORD kHow = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    if (LockFileEx(file.Value(), kHow, 0, 1, 0, &place) != 0) return true;
    const SystemError error = GetLastError();
    if (error != ERROR_LOCK_VIOLATION && error != ERROR_IO_PENDING) return false;
    Sleep(i < kShortTries ? 0 : 1);
  }
  return false;
}

// 0 where it is not told.
std::uint64_t SizeOf(const Handle& file) {
  LARGE_INTEGER size{};
  return GetFileSizeEx(file.Value(), &size) != 0 ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

SystemError CutOff(const Handle& file, std::uint64_t size) {
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  return ErrorOf(SetFileInformationByHandle(file.Value(), FileEndOfFileInfo, &end, sizeof end));
}

// Where the text ends, after the Ctrl-Z bytes that old editors left behind it were cut off. What
// cannot be read has none.
std::uint64_t EndOfText(const Handle& file) {
  constexpr char kCtrlZ = '\x1A';
  std::array<char, 128> tail{};
  const std::uint64_t size = SizeOf(file);
  const std::uint64_t from = size - std::min<std::uint64_t>(size, tail.size());
  OVERLAPPED place = PlaceAt(from);
  DWORD read = 0;
  if (ReadFile(file.Value(), tail.data(), DWORD{tail.size()}, &read, &place) == 0) return size;
  DWORD text = read;
  while (text > 0 && tail[text - 1] == kCtrlZ) --text;
  if (text == read) return size;
  if (const SystemError error = CutOff(file, from + text); error != ERROR_SUCCESS) Fail(error);
  return from + text;
}

// With the lock nobody else of ours has written since; others may have.
void Undo(const Handle& file, std::uint64_t before, std::size_t written) {
  if (written > 0 && SizeOf(file) == before + written) CutOff(file, before);
}

// At the end as the system sees it in the moment of writing, also without the lock.
SystemError WriteAtEnd(const Handle& file, std::string_view bytes, std::size_t& written) {
  constexpr std::uint64_t kEnd = UINT64_MAX;
  constexpr std::size_t kMost = std::size_t{16} << 20;  // servers refuse more at once
  while (written < bytes.size()) {
    const std::string_view part = bytes.substr(written, kMost);
    OVERLAPPED place = PlaceAt(kEnd);
    DWORD n = 0;
    const auto size = static_cast<DWORD>(part.size());
    if (WriteFile(file.Value(), part.data(), size, &n, &place) == 0) return GetLastError();
    if (n == 0) return ERROR_DISK_FULL;
    written += n;
  }
  return ERROR_SUCCESS;
}

void WriteInOnePiece(const Handle& file, std::string_view bytes) {
  const bool alone = Lock(file);
  const std::uint64_t before = alone ? EndOfText(file) : 0;
  std::size_t written = 0;
  const SystemError error = WriteAtEnd(file, bytes, written);
  if (error == ERROR_SUCCESS) return;
  if (alone) Undo(file, before, written);
  Fail(error);
}

}  // namespace

}  // namespace win32

// Closing ends the lock.
void AppendToFile(std::string_view name, std::string_view bytes) {
  win32::Handle file = win32::OpenOrCreate(NativePath(name));
  win32::WriteInOnePiece(file, bytes);
  if (!file.Close()) win32::Fail(GetLastError());
}

}  // namespace kvshare::os
