// Environment variables as text; the C run-time's calls give them in the machine's code page.
// Internal header.
#pragma once

#include <string>
#include <string_view>

namespace kvshare::os::win32 {

// The value in UTF-8, "" for a variable that is not set and for a value that is no text (half a
// surrogate pair). The name is ASCII. Safe in every thread.
std::string Variable(std::string_view name);

}  // namespace kvshare::os::win32
