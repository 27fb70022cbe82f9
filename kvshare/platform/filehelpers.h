// Files and folders: lists, copies, names. A folder argument ends in a backslash, since names are
// joined by plain concatenation.
//
// Trees are walked alike everywhere: entries whose name begins with `.` are left out; a link to a
// folder is a folder, but a link that leads back into its own way is not entered again. The mask is
// the top folder's alone: below it everything counts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// Clears the list, then adds the bare name of every match (folder + mask, attribute bits of
// os/files.h), in the system's order, `.` and hidden-style names included.
KVSHARE_API void GetFileName(std::string_view mask, int attributes, TStrings& list);

// Appends the full name of every matching file; with `recurse` the subfolders' files first.
KVSHARE_API void GetFileNames(std::string_view folder, TStrings& list, std::string_view mask,
                              bool recurse);

// The matching files; with `recurse` also all files below the subfolders that match.
KVSHARE_API int CountFileName(std::string_view folder, std::string_view mask, bool recurse);

// Creates the target with all that lead to it and copies the matching files over those that are
// there; a file that cannot be copied is left out. Throws EInOutError when the target cannot be
// created.
KVSHARE_API void CopyDir(std::string_view source, std::string_view target, std::string_view mask,
                         bool recurse);
KVSHARE_API void CopyAllFiles(std::string_view source, std::string_view target);  // '*.*', flat

// Deletes the matching files, read-only ones too; with `recurse` the matching subfolders and the
// folder itself. A link is removed, never what it leads to. A missing folder is fine. Throws
// EInOutError (`I/O error 145`) when a folder is not empty afterwards.
KVSHARE_API void DeleteDir(std::string_view folder, std::string_view mask, bool recurse);
KVSHARE_API void DeleteDirContent(std::string_view folder);  // '*.*', flat

// Removes a folder without files and says whether it is gone; with `recurse` its empty subfolders
// before it. A missing folder is gone. Throws EInOutError when a folder without files is not empty
// after all (without `recurse`: it has subfolders).
KVSHARE_API bool RemoveEmptyDir(std::string_view folder, bool recurse);

// The file name without folder and extension; the whole name without extension. The extension's
// first occurrence goes, wherever it stands, by contract: 'C:\a.txt.d\x.txt' gives 'C:\a.d\x.txt'.
KVSHARE_API std::string ExtractFileNameOnly(std::string_view path);
KVSHARE_API std::string FileNameWoExt(std::string_view path);

// The folder above the path's folder: 'C:\A\B\file.txt' and 'C:\A\B\' give 'C:\A\', 'file.txt' ''.
KVSHARE_API std::string ParentPath(std::string_view path);

// A name with a drive or share as it is; else its full name where such a file exists, else base +
// name.
KVSHARE_API std::string KovraExpandFileName(std::string_view base, std::string_view name);

// The text before a folder that is a GUID in braces; else the path with a final backslash.
//   D:\Data\{01234567-89AB-CDEF-0123-456789ABCDEF}\Sub   D:\Data\   .
KVSHARE_API std::string TrimGuid(std::string_view path);

// Whether a disk is in the drive. Throws EConvertError `Not a valid drive ID` for a letter that is
// none of A..Z, a..z.
KVSHARE_API bool DriveReady(char letter);

// The kind of the path's drive: 0 unknown, 1 no root, 2 removable, 3 fixed, 4 remote, 5 CD-ROM, 6
// RAM disk.
KVSHARE_API int GetDriveTypeE(std::string_view path);
KVSHARE_API bool IsLocalHardDisk(std::string_view path);  // 3
KVSHARE_API bool IsWriteableDisk(std::string_view path);  // 3, 2, 4, 6

// Bytes, the low 32 bits of larger files; 0 for a missing file. Throws EInOutError when it cannot
// be read.
KVSHARE_API std::int32_t KovraGetFileSize(std::string_view fileName);

// The time of the last write; now for a missing file.
KVSHARE_API TDateTime GetFileDateTime(std::string_view fileName);

// Runs the system's dialog that formats drive A:. Shows why when it does not.
KVSHARE_API bool FormatDriveA();

// Sends the bytes of a file to the default printer as the document "MyDocument". Nothing happens
// without a printer or when it refuses. Throws EInOutError when the file cannot be read.
KVSHARE_API void PrintFile(std::string_view fileName);

}  // namespace kvshare
