// The letters of settings files.
// Internal header.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/cp874.h"

namespace kvshare::os::reg {

// As Windows reads code page 874: also the bytes without a letter have one each there.
constexpr char16_t LetterOf(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  if (const char16_t letter = Cp874ToUnicode(code); letter != 0 || code == 0) return letter;
  if (code < 0xA0) return code;
  const int place = code < 0xFC ? code - 0xDB : code - 0xFC + 4;  // DB..DE, FC..FF
  return static_cast<char16_t>(0xF8C1 + place);
}

constexpr std::optional<char> ByteOf(char16_t letter) {
  if (letter >= 0xF8C1 && letter <= 0xF8C8) {
    const int place = letter - 0xF8C1;
    return static_cast<char>(place < 4 ? 0xDB + place : 0xFC + place - 4);
  }
  if (letter >= 0x80 && letter < 0xA0) {
    const char byte = static_cast<char>(letter);
    return LetterOf(byte) == letter ? std::optional(byte) : std::nullopt;
  }
  const auto byte = UnicodeToCp874(letter);
  return byte ? std::optional(static_cast<char>(*byte)) : std::nullopt;
}

constexpr bool EveryByteIsKept() {
  for (int i = 0; i < 256; ++i) {
    if (ByteOf(LetterOf(static_cast<char>(i))) != static_cast<char>(i)) return false;
  }
  return true;
}
static_assert(EveryByteIsKept());

// The letters of a file in any of the three encodings, told apart by its byte-order mark. Throws
// EConvertError `line N: reason`.
std::u16string Decode(std::string_view file);

// Two bytes a letter, the lower first.
void AppendUtf16(std::string& out, std::string_view cp874);

[[noreturn]] void ThrowAtLine(int line, std::string_view reason);

}  // namespace kvshare::os::reg
