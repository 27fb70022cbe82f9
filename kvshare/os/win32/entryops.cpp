#include "kvshare/os/win32/entryops.h"

#include <utility>
#include <vector>

#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"

namespace kvshare::os::win32 {

namespace {

using RemovingCall = BOOL(WINAPI*)(const wchar_t*);

// Removes an entry whose read-only attribute has kept the system from it; one that stays gets the
// attribute back.
SystemError RemoveReadOnly(RemovingCall remove, const std::wstring& callName, DWORD attributes) {
  const DWORD others = attributes & ~DWORD{FILE_ATTRIBUTE_READONLY};
  SetFileAttributesW(callName.c_str(), others != 0 ? others : FILE_ATTRIBUTE_NORMAL);
  const SystemError error = ErrorOf(remove(callName.c_str()));
  if (error != ERROR_SUCCESS) SetFileAttributesW(callName.c_str(), attributes);
  return error;
}

SystemError Remove(RemovingCall remove, const std::wstring& callName) {
  const SystemError error = ErrorOf(remove(callName.c_str()));
  if (error != ERROR_ACCESS_DENIED) return error;
  const DWORD attributes = GetFileAttributesW(callName.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const SystemError second = GetLastError();
    return second == ERROR_ACCESS_DENIED || TellsMissing(second) ? ERROR_FILE_NOT_FOUND : error;
  }
  const bool readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  return readOnly ? RemoveReadOnly(remove, callName, attributes) : error;
}

// What leads to a folder, without its final separators; "" for a root and for a name alone.
std::string Above(const std::string& folder) {
  std::string above = folder.substr(0, folder.find_last_not_of("\\/") + 1);
  above.erase(above.find_last_of("\\/") + 1);  // npos + 1 is 0
  return above;
}

}  // namespace

SystemError MakeFolder(const std::wstring& callName) {
  const SystemError error = ErrorOf(CreateDirectoryW(callName.c_str(), nullptr));
  const bool isRoot = error == ERROR_ACCESS_DENIED && IsFolder(callName);
  return isRoot ? ERROR_ALREADY_EXISTS : error;
}

// Those that are missing are found from the last to the first, and made the other way.
SystemError MakeFolders(const std::string& nativeFolder) {
  std::vector<std::wstring> missing;
  for (std::string folder = nativeFolder; !folder.empty(); folder = Above(folder)) {
    std::wstring name = CallName(folder);
    if (IsFolder(name)) break;
    missing.push_back(std::move(name));
  }
  for (; !missing.empty(); missing.pop_back()) {
    const SystemError error = MakeFolder(missing.back());
    const bool madeMeanwhile = error == ERROR_ALREADY_EXISTS && IsFolder(missing.back());
    if (error != ERROR_SUCCESS && !madeMeanwhile) return error;
  }
  return ERROR_SUCCESS;
}

SystemError RemoveFolder(const std::wstring& callName) {
  return Remove(RemoveDirectoryW, callName);
}

SystemError RemoveFile(const std::wstring& callName) {
  return Remove(DeleteFileW, callName);
}

bool IsGoing(const std::wstring& callName) {
  return GetFileAttributesW(callName.c_str()) == INVALID_FILE_ATTRIBUTES &&
         GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace kvshare::os::win32
