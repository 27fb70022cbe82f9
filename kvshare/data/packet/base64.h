// Bytes as letters, four for three (RFC 4648).
// Internal header.
#pragma once

#include <string>
#include <string_view>

namespace kvshare::data {

void AppendBase64(std::string& out, std::string_view bytes);

// Blanks and line ends between the letters are passed over, the `=` at the end may be missing.
// False for any other letter, for a length that no bytes have, and for letters behind a `=`.
bool AppendFromBase64(std::string& out, std::string_view text);

}  // namespace kvshare::data
