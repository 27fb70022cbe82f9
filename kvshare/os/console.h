// The program's standard error, for messages to whoever watches it. Inside the library.
#pragma once

#include <string_view>

namespace kvshare::os {

// Writes the bytes with one call where the system takes them at once, so that the messages of
// several programs do not mix. There is nobody to tell of a failure.
void WriteStandardError(std::string_view bytes);

}  // namespace kvshare::os
