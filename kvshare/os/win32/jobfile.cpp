#include "kvshare/os/jobfile.h"

#include <io.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/listing.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

using win32::FolderListing;
using win32::SystemError;

// Names in a printer's folder: a job `000042-TITLE.prn`; the mark `.last-000042` that remembers the
// number when the job has been taken away; the file by whose lock processes take turns.
constexpr std::string_view kMark = ".last-";
constexpr std::wstring_view kLock = L".last-lock";
constexpr std::size_t kFewestDigits = 6;
constexpr std::size_t kMostDigits = 9;  // longer ones are somebody else's files
constexpr std::uint32_t kLastNumber = 999'999'999;

std::string Digits(std::uint32_t number) {
  std::string digits = std::to_string(number);
  if (digits.size() < kFewestDigits) digits.insert(0, kFewestDigits - digits.size(), '0');
  return digits;
}

// The number of a job or of a mark, 0 for another file.
std::uint32_t NumberOf(std::string_view name) {
  const bool mark = name.starts_with(kMark);
  if (mark) name.remove_prefix(kMark.size());
  const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
  const bool job = digits < name.size() && name[digits] == '-';
  const bool numbered = digits >= kFewestDigits && digits <= kMostDigits;
  if (!numbered || (mark ? digits != name.size() : !job)) return 0;
  std::uint32_t number = 0;
  std::from_chars(name.data(), name.data() + digits, number);
  return number;
}

// Nothing for a name that no folder can have.
std::wstring CallFolderOrNone(const std::string& folder) {
  try {
    return win32::CallFolder(folder);
  } catch (const EInOutError&) {
    return {};
  } catch (const EConvertError&) {
    return {};
  }
}

// `folder` is a name for calls, with its final `\`.
template <typename Visit>
void ForEachName(const std::wstring& folder, Visit visit) {
  FolderListing listing;
  listing.Read(folder);
  for (const FolderListing::Entry& entry : listing.Entries()) {
    visit(win32::NativeName(listing.Name(entry)), entry);
  }
}

std::uint32_t HighestNumber(const std::wstring& folder) {
  std::uint32_t highest = 0;
  ForEachName(folder, [&highest](const std::string& name, const FolderListing::Entry&) {
    highest = std::max(highest, NumberOf(name));
  });
  return highest;
}

SystemError CreateMark(const std::wstring& folder, std::uint32_t number) {
  const std::wstring name = folder + win32::Wide(std::string(kMark) + Digits(number));
  return win32::OpenEntry(name, {.access = GENERIC_WRITE, .disposition = CREATE_NEW}).error;
}

// Another user's marks may stay where the folder forbids removing them; only the highest counts.
void RemoveMarksBelow(const std::wstring& folder, std::uint32_t number) {
  ForEachName(folder, [&](const std::string& name, const FolderListing::Entry&) {
    if (name.starts_with(kMark) && NumberOf(name) != 0 && NumberOf(name) < number) {
      win32::RemoveFile(folder + win32::Wide(name));
    }
  });
}

// A number of this process alone, 0 when the folder takes none.
std::uint32_t TakeNumber(const std::wstring& folder) {
  std::uint32_t number = HighestNumber(folder);
  while (++number <= kLastNumber) {
    const SystemError error = CreateMark(folder, number);
    if (error == ERROR_SUCCESS) return number;
    if (error != ERROR_FILE_EXISTS) return 0;
  }
  return 0;
}

// Lets one process at a time name its job, so that the jobs appear in the order of their numbers.
// A folder has no lock, a file in it has, which stays there. Where it cannot be made or locked, the
// numbers are still each given once, since a mark has one maker.
class FolderLock {
 public:
  explicit FolderLock(const std::wstring& folder)
      : file_(win32::OpenEntry(folder + std::wstring(kLock),
                               {.access = GENERIC_READ, .disposition = OPEN_ALWAYS})) {
    if (!file_.IsOpen()) return;
    OVERLAPPED place{};
    LockFileEx(file_.handle.Value(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place);
  }

 private:
  win32::OpenedFile file_;  // closing it ends the lock
};

std::wstring TemporaryName() {
  static std::atomic<unsigned> last{0};
  return L".job-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++last) +
         L".tmp";
}

// A new file as the run-time numbers it; negative where there is none, for the reason `error`.
struct NumberedFile {
  int number = -1;
  SystemError error = 0;
};
NumberedFile CreateNumbered(const std::wstring& name) {
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return {-1, GetLastError()};
  const int number = _open_osfhandle(reinterpret_cast<std::intptr_t>(file), 0);
  if (number >= 0) return {number, ERROR_SUCCESS};
  CloseHandle(file);
  win32::RemoveFile(name);
  return {-1, ERROR_TOO_MANY_OPEN_FILES};
}

HANDLE HandleOf(int number) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(number));
}

// Never over another file. A virus scanner may have opened the new one.
bool MoveToNewName(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD kPatience = 2000;  // milliseconds
  const SystemError error = win32::Patiently(kPatience, win32::IsInUse, [&] {
    return win32::ErrorOf(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH));
  });
  return error == ERROR_SUCCESS;
}

}  // namespace

std::vector<std::string> FoldersIn(const std::string& folder) {
  std::vector<std::string> names;
  const std::wstring name = CallFolderOrNone(folder);
  if (name.empty()) return names;
  ForEachName(name, [&](const std::string& entry, const FolderListing::Entry& facts) {
    const bool leads = !facts.isLink || win32::IsFolder(name + win32::Wide(entry));
    if (!entry.starts_with('.') && facts.IsFolder() && leads) names.push_back(entry);
  });
  std::ranges::sort(names);
  return names;
}

JobFile::JobFile(std::string folder) : folder_(std::move(folder)) {
  const std::wstring callFolder = CallFolderOrNone(folder_);
  if (callFolder.empty()) return;
  NumberedFile file;
  std::wstring name;
  do {  // a crashed process of the same number may have left its name behind
    name = callFolder + TemporaryName();
    file = CreateNumbered(name);
  } while (file.number < 0 && file.error == ERROR_FILE_EXISTS);
  if (file.number < 0) return;
  file_ = file.number;
  temporary_ = win32::Utf8(name);
}

JobFile::~JobFile() {
  Close();
  if (!temporary_.empty()) win32::RemoveFile(win32::Wide(temporary_));
}

bool JobFile::Close() {
  if (file_ < 0) return false;
  return _close(std::exchange(file_, -1)) == 0;  // some file systems report a full disk only here
}

bool JobFile::Write(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{16} << 20;  // servers refuse more at once
  while (IsOpen() && !bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    DWORD n = 0;
    if (WriteFile(HandleOf(file_), bytes.data(), size, &n, nullptr) != 0 && n > 0) {
      bytes.remove_prefix(n);
    } else {
      Close();
    }
  }
  return IsOpen();
}

// The move itself is waited for until it is on the disk.
bool JobFile::Publish(std::string_view name) {
  if (!IsOpen()) return false;
  const bool flushed = FlushFileBuffers(HandleOf(file_)) != 0;
  if (!Close() || !flushed) return false;

  const std::wstring from = win32::Wide(temporary_);
  const std::wstring folder(win32::FolderPart(from));
  const FolderLock lock(folder);
  const std::uint32_t number = TakeNumber(folder);
  if (number == 0) return false;
  const std::wstring to = folder + win32::Wide(Digits(number) + "-" + std::string(name));
  if (!MoveToNewName(from, to)) return false;
  temporary_.clear();
  RemoveMarksBelow(folder, number);
  return true;
}

}  // namespace kvshare::os
