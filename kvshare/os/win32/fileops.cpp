// What is done to files and folders by their names: made, copied, renamed, deleted.
#include "kvshare/os/files.h"

#include <algorithm>
#include <string>
#include <vector>

#include "kvshare/os/paths.h"
#include "kvshare/os/win32/copyfile.h"
#include "kvshare/os/win32/drivetable.h"
#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/localtime.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

using win32::CallNameOrNone;
using win32::FileFacts;
using win32::SystemError;

// A root keeps its own: `C:` alone is another folder.
std::wstring WithoutFinalSeparator(std::wstring name) {
  while (name.size() > 1 && (name.ends_with(L'\\') || name.ends_with(L'/')) &&
         name[name.size() - 2] != L':') {
    name.pop_back();
  }
  return name;
}

// The system calls a file in the place of a folder by a number that the platform does not know.
int CodeOfFolder(SystemError error) {
  return error == ERROR_DIRECTORY ? win32::kPathNotFound : win32::PlatformCode(error);
}

// A link to a folder is removed as a folder; what it leads to stays.
SystemError RemoveFolderOf(const std::wstring& name) {
  return win32::RemoveFolder(WithoutFinalSeparator(name));
}

// Between two disks a file is copied to a name that is free.
bool MoveAcross(const std::wstring& from, const std::wstring& to) {
  if (win32::CopyWhole(from, to, win32::Place::Free) != ERROR_SUCCESS) return false;
  if (win32::RemoveFile(from) == ERROR_SUCCESS) return true;
  win32::RemoveFile(to);
  return false;
}

// C: of a home folder is there from the first use on. The folders of other drives come from
// elsewhere: one that is missing is a disk that is not in its drive.
void MakeDriveC(std::string_view drive) {
  if (!SameText(drive, "C:") || win32::DrivesAreTheSystems()) return;
  const auto root = win32::RootOfDrive(drive);
  if (root && *root == win32::RootOfDriveC(HomeFolder())) win32::MakeFolders(*root);
}

// `/` separates too.
std::string WithBackslashes(std::string_view name) {
  std::string path(name);
  std::ranges::replace(path, '/', '\\');
  return path;
}

// Whole seconds since 1970, from the system's ticks since 1601.
std::time_t SecondsOf(const FILETIME& time) {
  constexpr int kHalf = 32;
  constexpr std::uint64_t kTicksPerSecond = 10'000'000;
  constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
  const std::uint64_t ticks = std::uint64_t{time.dwHighDateTime} << kHalf | time.dwLowDateTime;
  return static_cast<std::time_t>(static_cast<std::int64_t>(ticks / kTicksPerSecond) -
                                  kSecondsTo1970);
}

}  // namespace

bool DirectoryExists(std::string_view name) {
  const auto folder = CallNameOrNone(name);
  return folder && win32::IsFolder(*folder);
}

std::optional<TDateTime> FileAge(std::string_view name) {
  const auto file = CallNameOrNone(name);
  if (!file) return std::nullopt;
  const FileFacts facts = win32::LookAt(*file);
  if (!facts.IsKnown() || facts.IsFolder()) return std::nullopt;
  const std::tm local = LocalTimeOf(SecondsOf(facts.written));
  TDateTime date;
  TDateTime time;
  if (!TryEncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, date) ||
      !TryEncodeTime(local.tm_hour, local.tm_min, local.tm_sec, 0, time)) {
    return std::nullopt;
  }
  return JoinDateTime(date, time);
}

// Only a reader may know the size. It is known too where another program lets nobody read.
std::int64_t FileSize(std::string_view name) {
  const std::wstring file = win32::CallNameOf(name);
  const FileFacts facts = win32::LookAt(file);
  if (!facts.IsKnown()) win32::ThrowInOut(win32::PlatformCode(facts.error));
  if (facts.IsFolder()) win32::ThrowInOut(win32::kAccessDenied);
  const win32::OpenedFile reader = win32::OpenEntry(file, {});
  if (!reader.IsOpen() && !win32::IsInUse(reader.error)) {
    win32::ThrowInOut(win32::PlatformCode(reader.error));
  }
  return static_cast<std::int64_t>(facts.size);
}

bool ForceDirectories(std::string_view name) {
  // The folders that are missing, from the last to the first.
  std::string path = WithBackslashes(name);
  std::vector<std::string> missing;
  for (;;) {
    if (path.empty()) throw EInOutError("Unable to create directory", win32::kPathNotFound);
    if (path.ends_with('\\')) path.pop_back();
    if (path.size() < 3 || DirectoryExists(path)) break;
    missing.push_back(path);
    path = ExtractFilePath(path);
  }
  if (!missing.empty() && path.size() == 2) MakeDriveC(path);
  return std::ranges::all_of(missing.rbegin(), missing.rend(),
                             [](const std::string& folder) { return CreateDir(folder); });
}

bool CreateDir(std::string_view name) {
  const auto folder = CallNameOrNone(name);
  return folder && win32::MakeFolder(*folder) == ERROR_SUCCESS;
}

bool RemoveDir(std::string_view name) {
  const auto folder = CallNameOrNone(name);
  return folder && RemoveFolderOf(*folder) == ERROR_SUCCESS;
}

void MkDir(std::string_view name) {
  const SystemError error = win32::MakeFolder(win32::CallNameOf(name));
  if (error != ERROR_SUCCESS) win32::ThrowInOut(win32::PlatformCode(error));
}

void RmDir(std::string_view name) {
  const SystemError error = RemoveFolderOf(win32::CallNameOf(name));
  if (error != ERROR_SUCCESS) win32::ThrowInOut(CodeOfFolder(error));
}

bool DeleteFile(std::string_view name) {
  const auto file = CallNameOrNone(name);
  if (!file) return false;
  const DWORD attributes = GetFileAttributesW(file->c_str());  // of a link its own
  constexpr DWORD kRefused = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & kRefused) == 0 &&
         DeleteFileW(file->c_str()) != 0;
}

bool RenameFile(std::string_view from, std::string_view to) {
  const auto source = CallNameOrNone(from);
  const auto target = CallNameOrNone(to);
  if (!source || !target) return false;
  const std::wstring earlier = WithoutFinalSeparator(*source);
  const std::wstring later = WithoutFinalSeparator(*target);
  if (MoveFileExW(earlier.c_str(), later.c_str(), 0) != 0) return true;
  return GetLastError() == ERROR_NOT_SAME_DEVICE && MoveAcross(earlier, later);
}

int FileGetAttr(std::string_view name) {
  const auto given = CallNameOrNone(name);
  if (!given) return -1;
  const std::wstring file = WithoutFinalSeparator(*given);
  const FileFacts facts = win32::LookAt(file);
  if (!facts.IsKnown()) return -1;
  const std::size_t folder = win32::FolderPart(file).size();
  return win32::AttributesOf(std::wstring_view(file).substr(folder), facts.attributes);
}

int FileSetAttr(std::string_view name, int attributes) {
  const auto given = CallNameOrNone(name);
  if (!given) return win32::kPathNotFound;
  const FileFacts facts = win32::LookAt(*given);
  if (!facts.IsKnown()) return win32::PlatformCode(facts.error);
  const bool readOnly = (attributes & faReadOnly) != 0;
  if (facts.IsFolder() || readOnly == facts.IsReadOnly()) return 0;
  const DWORD others = facts.attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  const DWORD wanted = readOnly ? others | FILE_ATTRIBUTE_READONLY : others;
  const win32::OpenedFile file = win32::OpenEntry(*given, {.access = FILE_WRITE_ATTRIBUTES});
  if (!file.IsOpen()) return win32::PlatformCode(file.error);
  const SystemError error = win32::SetFacts(file.handle, {}, wanted);
  return error == ERROR_SUCCESS ? 0 : win32::PlatformCode(error);
}

}  // namespace kvshare::os
