// The text form of exact decimals, taken apart in one place: [-]digits[.digits], with a digit on one
// side of the point at least and any number of them.
// Internal header.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "kvshare/rtl/ascii.h"

namespace kvshare::inline rtl {

struct DecimalText {
  bool negative = false;
  std::string_view whole;     // the digits before the point
  std::string_view decimals;  // the digits behind it
};

// The digits as they stand; nothing for another text. With `plus` a + may stand in front as well.
constexpr std::optional<DecimalText> SplitDecimal(std::string_view text, bool plus = false) {
  DecimalText parts;
  parts.negative = text.starts_with('-');
  if (parts.negative || (plus && text.starts_with('+'))) text.remove_prefix(1);
  std::size_t point = 0;
  while (point < text.size() && IsDigit(text[point])) ++point;
  parts.whole = text.substr(0, point);
  if (point < text.size()) {
    if (text[point] != '.') return std::nullopt;
    parts.decimals = text.substr(point + 1);
    if (!AreDigits(parts.decimals)) return std::nullopt;
  }
  if (parts.whole.empty() && parts.decimals.empty()) return std::nullopt;
  return parts;
}

// Without the zeros that leave the value as it is: of -0012.3400 there remain 12 and 34, of zero no
// digits and no sign.
constexpr DecimalText WithoutZeros(DecimalText parts) {
  while (parts.whole.starts_with('0')) parts.whole.remove_prefix(1);
  while (parts.decimals.ends_with('0')) parts.decimals.remove_suffix(1);
  parts.negative = parts.negative && !(parts.whole.empty() && parts.decimals.empty());
  return parts;
}

}  // namespace kvshare::inline rtl
