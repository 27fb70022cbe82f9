// Files that are opened, and what the system knows of them. Names are those of the wide calls.
// Internal header.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct OpenedFile {
  Handle handle;
  SystemError error = 0;  // why it is not open

  bool IsOpen() const { return handle.IsOpen(); }
};

struct Opening {
  DWORD access = GENERIC_READ;
  DWORD share = kShareAll;
  DWORD disposition = OPEN_EXISTING;
  DWORD flags = FILE_ATTRIBUTE_NORMAL;
  SECURITY_ATTRIBUTES* rights = nullptr;
};

// Never asks the user for a disk.
OpenedFile OpenEntry(const std::wstring& callName, const Opening& how);

// Which file it is, whatever its name. A file system that numbers no files gives 0 for each.
struct FileIdentity {
  std::uint64_t volume = 0;
  std::uint64_t number = 0;
};

// False where the files have no numbers.
constexpr bool IsSameFile(const FileIdentity& a, const FileIdentity& b) {
  return a.number != 0 && a.number == b.number && a.volume == b.volume;
}

struct FileFacts {
  SystemError error = 0;  // why the others are not known
  DWORD attributes = 0;
  FILETIME written{};
  std::uint64_t size = 0;  // bytes
  FileIdentity identity{};

  bool IsKnown() const { return error == 0; }
  bool IsFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
  bool IsReadOnly() const { return !IsFolder() && (attributes & FILE_ATTRIBUTE_READONLY) != 0; }
};

// Of an open file or folder. A device or a pipe has none: access denied.
FileFacts FactsOf(const Handle& file);

// Of what the links of the name lead to.
FileFacts LookAt(const std::wstring& callName);

// Gives an open file those of these attributes that can be set, and a time of the last write unless
// that is 0. Later writes change the time again. 0 or the system's error.
SystemError SetFacts(const Handle& file, const FILETIME& written, DWORD attributes);

// Whether a folder, or a link to one, is there.
bool IsFolder(const std::wstring& callName);

// Whether nothing is there.
constexpr bool TellsMissing(SystemError error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

// Whether an entry of these attributes stands for another name: a symbolic link, a junction, a
// mounted disk. Other reparse points are files and folders that are stored in another way (on a
// server, without their doubles).
constexpr bool IsLink(DWORD attributes, DWORD reparseTag) {
  constexpr DWORD kStandsForAnother = 0x20000000;
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && (reparseTag & kStandsForAnother) != 0;
}

// The same of an open entry.
bool IsLink(const Handle& entry);

// The full name, behind all links, of a file that is there; "" where the system does not tell.
std::wstring FinalName(const std::wstring& callName);

// The attribute bits of os/files.h, by the name without folder and the system's attributes.
int AttributesOf(std::wstring_view name, DWORD attributes);

// The folder in front of a name, with its separator or `X:`; "" for a name alone.
std::wstring_view FolderPart(std::wstring_view callName);

}  // namespace kvshare::os::win32
