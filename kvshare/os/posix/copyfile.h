// One file's way into another folder.
// Internal header.
#pragma once

namespace kvshare::os::posix {

// Copies bytes, time and the read-only attribute of a file; both names are taken from open folders
// or from AT_FDCWD. A new file appears when it is whole; an
// earlier one is replaced by a whole one that was flushed, and keeps its other permissions.
// Refused: what is no file, a file onto itself, a target that is read-only. 0 or the system's
// error.
int CopyFileAt(int fromFolder, const char* from, int toFolder, const char* to);

}  // namespace kvshare::os::posix
