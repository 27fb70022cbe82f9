// The letters and digits of ASCII, whatever the locale.
#pragma once

#include <algorithm>
#include <string_view>

namespace kvshare::inline rtl {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool IsLatinLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// True for "" as well.
constexpr bool AreDigits(std::string_view text) {
  return std::ranges::all_of(text, IsDigit);
}

}  // namespace kvshare::inline rtl
