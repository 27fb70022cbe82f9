// File names as texts: `\` and `:` delimit, `/` does not. Nothing here touches a disk.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// Up to and including the last `\` or `:`; what follows it.
KVSHARE_API std::string_view ExtractFilePath(std::string_view name);
KVSHARE_API std::string_view ExtractFileName(std::string_view name);
// From the last `.` after the last delimiter, '' if there is none: `.cfg` gives `.cfg`.
KVSHARE_API std::string_view ExtractFileExt(std::string_view name);
// `C:`, `\\host\share` or ''.
KVSHARE_API std::string_view ExtractFileDrive(std::string_view name);
// Replaces the extension by `extension`, which brings its own point, or appends it.
KVSHARE_API std::string ChangeFileExt(std::string_view name, std::string_view extension);

// Adds `\` unless it is the last byte ('' gives `\`); drops one.
KVSHARE_API std::string IncludeTrailingBackslash(std::string_view path);
KVSHARE_API std::string_view ExcludeTrailingBackslash(std::string_view path);

// The full name against `currentFolder` (a full path); `.` and `..` resolved, never above the root,
// `/` becomes `\`, a trailing `\` stays; '' stays ''. `C:x` is taken against the folder when that
// lies on the same drive, else against the drive's root.
KVSHARE_API std::string ExpandFileName(std::string_view name, std::string_view currentFolder);

}  // namespace kvshare::inline rtl
