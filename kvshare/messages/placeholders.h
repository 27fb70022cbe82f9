// The placeholders of a message: where its caller's values go.
// Internal header.
#pragma once

#include <cstddef>
#include <string_view>

namespace kvshare {

inline constexpr char kNoPlaceholder = '?';

// The kind of the next placeholder from `at` on: 's' or 'd', kNoPlaceholder for a `%` that begins
// neither (`%%` and widths are not used in messages), '\0' behind the last. Moves `at` past it.
constexpr char NextPlaceholder(std::string_view text, std::size_t& at) {
  at = text.find('%', at);
  if (at == std::string_view::npos) return '\0';
  const char letter = at + 1 < text.size() ? text[at + 1] : '%';
  at = at + 2 <= text.size() ? at + 2 : text.size();
  if (letter == 's' || letter == 'S') return 's';
  return letter == 'd' || letter == 'D' ? 'd' : kNoPlaceholder;
}

// Whether both texts take the same values in the same order.
constexpr bool SamePlaceholders(std::string_view a, std::string_view b) {
  std::size_t atA = 0;
  std::size_t atB = 0;
  while (true) {
    const char kind = NextPlaceholder(a, atA);
    if (kind != NextPlaceholder(b, atB) || kind == kNoPlaceholder) return false;
    if (kind == '\0') return true;
  }
}

static_assert(SamePlaceholders("%s at %d", "%S: %D"));
static_assert(!SamePlaceholders("%s %d", "%d %s"));
static_assert(!SamePlaceholders("100%", "100%") && !SamePlaceholders("%s", "%5s"));

}  // namespace kvshare
