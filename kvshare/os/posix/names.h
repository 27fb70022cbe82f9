// A name of the interface on its way to the system's.
// Internal header.
#pragma once

#include <sys/stat.h>

#include <string>
#include <string_view>

namespace kvshare::os::posix {

// As NativePath, but the last part stays as spelled: for a name that is to be given. Throws
// likewise.
std::string NativePathOfNew(std::string_view windowsPath);

// As NativePath; "" for a name that no file can have.
std::string NativePathOrNone(std::string_view windowsPath);

// The attribute bits of files.h, by the name without folder and what the system knows of the file.
int AttributesOf(std::string_view name, const struct stat& facts);

}  // namespace kvshare::os::posix
