// Single steps on files and folders by the names of the wide calls. 0 or the system's error.
// Internal header.
#pragma once

#include <string>

#include "kvshare/os/win32/errors.h"

namespace kvshare::os::win32 {

// ERROR_ALREADY_EXISTS for what is there, a root too.
SystemError MakeFolder(const std::wstring& callName);

// A system's name: the folder with all that lead to it. 0 too where it is there. Throws EInOutError
// (code 3) for a name that no folder can have.
SystemError MakeFolders(const std::string& nativeFolder);

// An empty folder, a read-only one too; of a link to a folder the link. ERROR_FILE_NOT_FOUND also
// for one that is gone as soon as somebody else closes it.
SystemError RemoveFolder(const std::wstring& callName);

// A file, a read-only one too, whose other names (hard links) then lose the attribute; of a link
// the link. ERROR_FILE_NOT_FOUND likewise.
SystemError RemoveFile(const std::wstring& callName);

// Whether an entry has been deleted and stays only until somebody else closes it.
bool IsGoing(const std::wstring& callName);

}  // namespace kvshare::os::win32
