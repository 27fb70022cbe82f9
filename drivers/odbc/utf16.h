// The wide texts of ODBC.
#pragma once

#include <string>
#include <string_view>

namespace kvshare::odbc {

// Throw DriverError for what is no well-formed text.
std::u16string ToUtf16(std::string_view utf8);
void AppendUtf8(std::string& out, std::u16string_view utf16);

}  // namespace kvshare::odbc
