// Files and folders by the interface's names. What rtl needs itself stands in rtl/filebytes.h.
//
// A routine that answers with a bool or a code throws nothing; a name that no file can have (an
// unknown drive, a byte that is no letter) is a name without a file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare::os {

KVSHARE_API bool DirectoryExists(std::string_view name);  // a final `\` is allowed

// The local time of the last write, to whole seconds; none for a missing file or a folder.
KVSHARE_API std::optional<TDateTime> FileAge(std::string_view name);

// Bytes of a file. Throws EInOutError: 2 missing, 3 no such folder, 5 denied or a folder.
KVSHARE_API std::int64_t FileSize(std::string_view name);

// Creates a folder and its missing parents, the folder of C: included. True when it exists
// afterwards. One final `\` is dropped; a name shorter than three bytes is taken for a drive and is
// true. Throws EInOutError `Unable to create directory` (code 3) for "" and for a relative name
// whose first folder is missing.
KVSHARE_API bool ForceDirectories(std::string_view name);

// All bytes of a file of at most so many, by the system's own name in UTF-8, which may have letters
// that code page 874 lacks. Throws EInOutError, also for a longer file and for what is no file.
KVSHARE_API std::string ReadNativeFile(const std::string& path, std::size_t most);

KVSHARE_API bool CreateDir(std::string_view name);
KVSHARE_API bool RemoveDir(std::string_view name);   // of a link to a folder the link alone
KVSHARE_API bool DeleteFile(std::string_view name);  // a folder or a read-only file: false
// Never overwrites. The new name may differ in letter case alone; a file may go to another disk.
KVSHARE_API bool RenameFile(std::string_view from, std::string_view to);

// As CreateDir and RemoveDir, but throw EInOutError: 183 existing, 145 not empty (`I/O error 145`),
// 2, 3, 5.
KVSHARE_API void MkDir(std::string_view name);
KVSHARE_API void RmDir(std::string_view name);

// Copies bytes, time and the read-only attribute; overwrites an earlier file, which stays whole
// when the copy fails (a full disk); a read-only one is refused, and so is a copy of a file onto
// itself. Nothing is left of a failed copy.
KVSHARE_API bool CopyFile(std::string_view from, std::string_view to);

// Attribute bits.
inline constexpr int faReadOnly = 1;
inline constexpr int faHidden = 2;
inline constexpr int faSysFile = 4;
inline constexpr int faVolumeID = 8;
inline constexpr int faDirectory = 16;
inline constexpr int faArchive = 32;
inline constexpr int faAnyFile = 63;

// Read-only: nobody may write it (a folder never is). Hidden: its name begins with `.`. Directory,
// else archive. -1 for a missing file.
KVSHARE_API int FileGetAttr(std::string_view name);

// 0 or the platform's error code. Only read-only can be changed here: with the bit nobody may
// write the file, without it its owner may again; other bits are ignored.
KVSHARE_API int FileSetAttr(std::string_view name, int attributes);

// The process's current folder, without a final `\` unless it is a root.
KVSHARE_API std::string CurrentFolder();

// The full name against the current folder, see rtl/filenames.h.
KVSHARE_API std::string ExpandFileName(std::string_view name);

}  // namespace kvshare::os
