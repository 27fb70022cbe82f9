// Where the interface's file names lie on this machine.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// The folder that holds everything of the library's own world: $KVSHARE_HOME, else `kvshare` in the
// user's data folder ($XDG_DATA_HOME, ~/.local/share). Without a final `/`. Throws EInOutError
// (code 3) where none of the variables is set.
KVSHARE_API std::string HomeFolder();

// The system's name of a file, in UTF-8, for a name of the interface, in code page 874. `\` and `/`
// separate alike.
//   C:\x.ini           drive_c/x.ini in HomeFolder(); drives.h tells of the drives
//   Z:\tmp\x           /tmp/x
//   \\host\share\x     x in the folder of that share
//   \tmp\x             /tmp/x, a name without a drive stands for itself
//   x                  x in the process's current folder
// A drive counts from its root with and without a separator: C:x is C:\x. A name that does not
// exist as spelled is looked up again without regard to the case of a..z, folder by folder; where
// nothing is found, it stays as spelled from there on. Of several files that differ in case alone,
// the first by bytes is taken. Throws EInOutError (code 3) for a drive or share that is not known,
// for a zero byte and for a byte that stands for no letter.
KVSHARE_API std::string NativePath(std::string_view windowsPath);

// The interface's name for an absolute system's name: on the drive whose folder holds it (the
// longest folder counts), at least Z:. Throws EConvertError for a letter that code page 874 lacks.
KVSHARE_API std::string WindowsPath(std::string_view nativePath);

}  // namespace kvshare::os
