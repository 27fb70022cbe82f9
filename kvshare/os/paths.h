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
//   C:\x.ini     drive_c/x.ini in HomeFolder()
//   Z:\tmp\x     /tmp/x
//   \tmp\x       /tmp/x, a name without a drive stands for itself
//   x            x in the process's current folder
// A drive counts from its root with and without a separator: C:x is C:\x. Letter case of names is
// kept, and counts. Throws EInOutError (code 3) for any other drive, for \\host names, for a zero
// byte and for a byte that stands for no letter.
KVSHARE_API std::string NativePath(std::string_view windowsPath);

}  // namespace kvshare::os
