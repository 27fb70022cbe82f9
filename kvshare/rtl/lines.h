// Lines of a text, without copying one.
// Internal header.
#pragma once

#include <cstddef>
#include <string_view>

namespace kvshare::inline rtl {

// Takes the first line off a text that is not empty and returns it without its end: CR LF, CR or
// LF, or the end of the text.
inline std::string_view TakeLine(std::string_view& rest) {
  std::size_t end = 0;
  while (end < rest.size() && rest[end] != '\r' && rest[end] != '\n') ++end;
  const std::string_view line = rest.substr(0, end);
  const std::string_view tail = rest.substr(end);
  rest.remove_prefix(end + (tail.starts_with("\r\n") ? 2 : tail.empty() ? 0 : 1));
  return line;
}

}  // namespace kvshare::inline rtl
