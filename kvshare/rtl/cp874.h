// Text in code page 874, the Thai code page: one byte a letter, 0x80..0xFF above ASCII.
// Inside the library every text is such bytes; these conversions stand at the edges (terminal, UTF-8
// files, toolkit, database wire).
//
// Source: the Unicode Consortium's table CP874.TXT. Bytes 81-84, 86-90, 98-9F, DB-DE and FC-FF
// stand for no letter.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// The letter of one byte, 0 for the bytes that stand for none (and for byte 0 itself).
constexpr char16_t Cp874ToUnicode(unsigned char byte) {
  if (byte < 0x80) return byte;
  switch (byte) {
    case 0x80:
      return u'\u20AC';
    case 0x85:
      return u'\u2026';
    case 0x91:
      return u'\u2018';
    case 0x92:
      return u'\u2019';
    case 0x93:
      return u'\u201C';
    case 0x94:
      return u'\u201D';
    case 0x95:
      return u'\u2022';
    case 0x96:
      return u'\u2013';
    case 0x97:
      return u'\u2014';
    case 0xA0:
      return u'\u00A0';
    default:
      break;
  }
  const bool thai = (byte >= 0xA1 && byte <= 0xDA) || (byte >= 0xDF && byte <= 0xFB);
  return thai ? static_cast<char16_t>(byte - 0xA0 + 0x0E00) : u'\0';
}

// The byte of a letter, or nothing where the code page lacks it.
constexpr std::optional<unsigned char> UnicodeToCp874(char32_t letter) {
  if (letter < 0x80) return static_cast<unsigned char>(letter);
  if (letter >= 0x0E01 && letter <= 0x0E5B) {
    const auto byte = static_cast<unsigned char>(letter - 0x0E00 + 0xA0);
    if (Cp874ToUnicode(byte) != 0) return byte;
    return std::nullopt;
  }
  for (unsigned byte = 0x80; byte <= 0xA0; ++byte) {
    const auto candidate = static_cast<unsigned char>(byte);
    if (Cp874ToUnicode(candidate) == letter) return candidate;
  }
  return std::nullopt;
}

// Thai and other letters that combine with the one before them and take no column of their own.
constexpr bool IsCombiningCp874(unsigned char byte) {
  return byte == 0xD1 || (byte >= 0xD4 && byte <= 0xDA) || (byte >= 0xE7 && byte <= 0xEE);
}

// Columns that the text takes in a terminal or on a fixed-pitch printer.
KVSHARE_API std::size_t DisplayWidth(std::string_view cp874);

// UTF-8 from code page 874. Throws EConvertError
// `Invalid byte XX at position P for code page 874` for a byte that stands for no letter.
KVSHARE_API std::string Cp874ToUtf8(std::string_view cp874);
KVSHARE_API void AppendUtf8(std::string& out, std::string_view cp874);

// The same for diagnostics: a byte that stands for no letter becomes U+FFFD, nothing throws.
KVSHARE_API std::string Cp874ToUtf8Lossy(std::string_view cp874);

// Code page 874 from UTF-8. Throws EConvertError: `Invalid UTF-8 at byte P` for bytes that are no
// well-formed UTF-8 (overlong forms, surrogates and values past U+10FFFF included),
// `No letter U+XXXX in code page 874, at byte P` for a letter that the code page lacks. P counts
// from 1.
KVSHARE_API std::string Utf8ToCp874(std::string_view utf8);
KVSHARE_API void AppendCp874(std::string& out, std::string_view utf8);

// The same; nothing for a text that the code page cannot hold.
KVSHARE_API std::optional<std::string> TryUtf8ToCp874(std::string_view utf8);

namespace detail {

template <std::size_t N>
struct Utf8Literal {
  char text[N];
  consteval Utf8Literal(const char (&s)[N]) { std::copy_n(s, N, text); }  // NOLINT: a literal
};

template <std::size_t N>
struct Cp874Literal {
  std::array<char, N> bytes{};
  std::size_t size = 0;
};

template <std::size_t N>
consteval Cp874Literal<N> LiteralToCp874(const Utf8Literal<N>& s) {
  Cp874Literal<N> out;
  std::size_t i = 0;
  while (i + 1 < N) {
    const auto lead = static_cast<unsigned char>(s.text[i++]);
    char32_t letter = lead;
    if (lead >= 0x80) {
      const int more = lead >= 0xE0 ? 2 : 1;
      if (lead < 0xC2 || lead >= 0xF0) throw "not in code page 874";
      letter = lead & (more == 2 ? 0x0Fu : 0x1Fu);
      for (int k = 0; k < more; ++k) {
        letter = letter << 6 | (static_cast<unsigned char>(s.text[i++]) & 0x3Fu);
      }
    }
    const auto byte = UnicodeToCp874(letter);
    if (!byte) throw "not in code page 874";
    out.bytes[out.size++] = static_cast<char>(*byte);
  }
  return out;
}

template <Utf8Literal S>
inline constexpr auto kCp874Literal = LiteralToCp874(S);

}  // namespace detail

inline namespace literals {

// A Thai literal, typed in Thai in the source, code page 874 before the program runs. The bytes are
// followed by a zero byte. A letter that the code page lacks stops the compiler.
template <detail::Utf8Literal S>
consteval std::string_view operator""_th() {
  return {detail::kCp874Literal<S>.bytes.data(), detail::kCp874Literal<S>.size};
}

}  // namespace literals

static_assert("5 บาท"_th == "5 \xBA\xD2\xB7");
static_assert("€…“฿”"_th == "\x80\x85\x93\xDF\x94");

}  // namespace kvshare::inline rtl
