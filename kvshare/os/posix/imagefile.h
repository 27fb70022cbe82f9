// Programs and libraries as files.
// Internal header.
#pragma once

#include <string>

namespace kvshare::os::posix {

// IsCutShort of a file by its system's name; false for one that cannot be read.
bool FileIsCutShort(const std::string& path);

}  // namespace kvshare::os::posix
