// A file by the system's name.
// Internal header.
#pragma once

#include <string>

namespace kvshare::os::posix {

// All bytes. Throws EInOutError with the system's message and the platform's code.
std::string ReadWhole(const std::string& path);

}  // namespace kvshare::os::posix
