// The mark that some editors put in front of UTF-8.
// Internal header.
#pragma once

#include <string_view>

namespace kvshare::inline rtl {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

constexpr std::string_view WithoutUtf8Mark(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  return text;
}

}  // namespace kvshare::inline rtl
