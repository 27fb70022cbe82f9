// Where the running program lies, system's names.
// Internal header.
#pragma once

#include <string>

namespace kvshare::os::win32 {

std::string RunningProgramFile();    // "" where the system does not tell
std::string RunningProgramFolder();  // without a final `\`; "" where the system does not tell

// The full name of the file `name` of a folder; "" when there is none. The system ignores letter
// case itself.
std::string FileIgnoringCase(const std::string& folder, const std::string& name);

}  // namespace kvshare::os::win32
