// Texts of anybody, for a line at a terminal.
#pragma once

#include <algorithm>
#include <string>

namespace kvshare::app {

// The text with `instead` for every control character, which would break the line or steer the
// terminal. Code page 874 or UTF-8.
inline std::string Legible(std::string text, char instead = '?') {
  constexpr char kDelete = 127;
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' ' || c == kDelete; }, instead);
  return text;
}

}  // namespace kvshare::app
