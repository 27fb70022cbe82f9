#include "kvshare/os/win32/filefacts.h"

#include "kvshare/os/files.h"
#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/os/win32/quieterrors.h"

namespace kvshare::os::win32 {

namespace {

std::uint64_t Joined(DWORD high, DWORD low) {
  constexpr int kHalf = 32;
  return std::uint64_t{high} << kHalf | low;
}

// Access that no other opener can forbid.
OpenedFile OpenForFacts(const std::wstring& callName) {
  return OpenEntry(callName, {.access = FILE_READ_ATTRIBUTES, .flags = FILE_FLAG_BACKUP_SEMANTICS});
}

}  // namespace

OpenedFile OpenEntry(const std::wstring& callName, const Opening& how) {
  const QuietErrors quiet;
  OpenedFile opened{Handle(CreateFileW(callName.c_str(), how.access, how.share, how.rights,
                                       how.disposition, how.flags, nullptr))};
  if (!opened.IsOpen()) opened.error = GetLastError();
  return opened;
}

FileFacts FactsOf(const Handle& file) {
  if (GetFileType(file.Value()) != FILE_TYPE_DISK) return {.error = ERROR_ACCESS_DENIED};
  BY_HANDLE_FILE_INFORMATION told{};
  if (GetFileInformationByHandle(file.Value(), &told) == 0) return {.error = GetLastError()};
  return {.attributes = told.dwFileAttributes,
          .written = told.ftLastWriteTime,
          .size = Joined(told.nFileSizeHigh, told.nFileSizeLow),
          .identity = {told.dwVolumeSerialNumber, Joined(told.nFileIndexHigh, told.nFileIndexLow)}};
}

FileFacts LookAt(const std::wstring& callName) {
  const OpenedFile file = OpenForFacts(callName);
  if (!file.IsOpen()) return {.error = file.error};
  return FactsOf(file.handle);
}

SystemError SetFacts(const Handle& file, const FILETIME& written, DWORD attributes) {
  constexpr DWORD kSettable = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                              FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                              FILE_ATTRIBUTE_TEMPORARY | FILE_ATTRIBUTE_OFFLINE |
                              FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD settable = attributes & kSettable;
  FILE_BASIC_INFO facts{};
  facts.LastWriteTime.LowPart = written.dwLowDateTime;
  facts.LastWriteTime.HighPart = static_cast<LONG>(written.dwHighDateTime);
  facts.FileAttributes = settable != 0 ? settable : FILE_ATTRIBUTE_NORMAL;
  return ErrorOf(SetFileInformationByHandle(file.Value(), FileBasicInfo, &facts, sizeof facts));
}

bool IsFolder(const std::wstring& callName) {
  const FileFacts facts = LookAt(callName);
  return facts.IsKnown() && facts.IsFolder();
}

bool IsLink(const Handle& entry) {
  FILE_ATTRIBUTE_TAG_INFO told{};
  const BOOL known =
      GetFileInformationByHandleEx(entry.Value(), FileAttributeTagInfo, &told, sizeof told);
  return known != 0 && IsLink(told.FileAttributes, told.ReparseTag);
}

std::wstring FinalName(const std::wstring& callName) {
  const OpenedFile file = OpenForFacts(callName);
  if (!file.IsOpen()) return {};
  return TextOfCall([&file](wchar_t* text, DWORD size) {
    return GetFinalPathNameByHandleW(file.handle.Value(), text, size,
                                     FILE_NAME_OPENED | VOLUME_NAME_DOS);
  });
}

int AttributesOf(std::wstring_view name, DWORD attributes) {
  struct Row {
    DWORD system;
    int bit;
  };
  constexpr Row kRows[] = {{FILE_ATTRIBUTE_HIDDEN, faHidden}, {FILE_ATTRIBUTE_SYSTEM, faSysFile}};
  int bits = name.starts_with(L'.') && name != L"." && name != L".." ? faHidden : 0;
  for (const Row& row : kRows) {
    if ((attributes & row.system) != 0) bits |= row.bit;
  }
  if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return bits | faDirectory;
  return bits | faArchive | ((attributes & FILE_ATTRIBUTE_READONLY) != 0 ? faReadOnly : 0);
}

std::wstring_view FolderPart(std::wstring_view callName) {
  const std::size_t separator = callName.find_last_of(L"\\/");
  if (separator != std::wstring_view::npos) return callName.substr(0, separator + 1);
  const bool onDrive = callName.size() >= 2 && callName[1] == L':';
  return callName.substr(0, onDrive ? 2 : 0);
}

}  // namespace kvshare::os::win32
