// Decimal digits without a detour, for the routines that make a million texts.
// Internal header.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace kvshare::inline rtl::digits {  // NOLINT(modernize-concat-nested-namespaces): it is

// "00" .. "99".
inline constexpr auto kPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// Writes value (0 .. 99) as two digits at `out`.
inline void PutPair(char* out, unsigned value) {
  std::memcpy(out, &kPairs[std::size_t{2} * value], 2);
}

// Writes the digits of `value` so that they end before `end`; returns the first. At most 20 bytes.
inline char* PutBackward(char* end, std::uint64_t value) {
  while (value >= 100) {
    end -= 2;
    PutPair(end, static_cast<unsigned>(value % 100));
    value /= 100;
  }
  if (value >= 10) {
    end -= 2;
    PutPair(end, static_cast<unsigned>(value));
    return end;
  }
  *--end = static_cast<char>('0' + value);
  return end;
}

}  // namespace kvshare::inline rtl::digits
