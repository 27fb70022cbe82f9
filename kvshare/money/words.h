// What the Thai and the English spelling share.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "kvshare/rtl/currency.h"

namespace kvshare::words {

// Words in a slot of fixed size, so that one copy of known length and one addition append them.
template <std::size_t Size>
struct Slot {
  char text[Size - 1] = {};
  unsigned char length = 0;

  constexpr void Add(std::string_view word) {
    for (const char c : word) text[length++] = c;
  }
};

// Both write at `out` and return the place after the words. Put touches a whole slot: leave its
// size free.
template <std::size_t Size>
inline char* Put(char* out, const Slot<Size>& slot) {
  std::memcpy(out, &slot, Size);
  return out + slot.length;
}
inline char* PutText(char* out, std::string_view text) {
  std::memcpy(out, text.data(), text.size());
  return out + text.size();
}

// The digits that are spelled: those at places 2 to 13 and 15 to 16 of StrZero(amount, 16, 2).
struct Digits {
  std::uint64_t whole = 0;  // below 10^12
  unsigned hundredths = 0;  // below 100
};

// `satang` is rounded to two decimals.
Digits DigitsOf(Currency satang);

}  // namespace kvshare::words
