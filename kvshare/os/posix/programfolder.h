// Where the running program lies, the system's own bytes.
// Internal header.
#pragma once

#include <string>

namespace kvshare::os::posix {

std::string RunningProgramFolder();  // without a final `/`; "" where the system does not tell

// The file `name` of a folder, or the first by bytes that differs from it in the case of a..z
// alone;
// "" when there is none.
std::string FileIgnoringCase(const std::string& folder, const std::string& name);

}  // namespace kvshare::os::posix
