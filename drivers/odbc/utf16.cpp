#include "drivers/odbc/utf16.h"

#include <cstdint>

#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {
namespace {

[[noreturn]] void Refuse() {
  throw data::DriverError("A text is not well-formed Unicode");
}

bool IsHigh(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLow(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The character at `at`, which moves behind it.
char32_t Decode(std::string_view utf8, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(utf8[at++]);
  if (lead < 0x80) return lead;
  const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  if (lead < 0xC2 || lead > 0xF4 || utf8.size() - at < static_cast<std::size_t>(more)) Refuse();
  char32_t c = lead & (0x3FU >> static_cast<unsigned>(more));
  for (int i = 0; i < more; ++i) {
    const auto next = static_cast<unsigned char>(utf8[at++]);
    if ((next & 0xC0U) != 0x80U) Refuse();
    c = c << 6U | (next & 0x3FU);
  }
  constexpr char32_t kLeast[] = {0x80, 0x800, 0x10000};
  if (c < kLeast[more - 1] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) Refuse();
  return c;
}

void Append(std::string& out, char32_t c) {
  const auto part = [c](unsigned shift) { return static_cast<char>(0x80U | (c >> shift & 0x3FU)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += {static_cast<char>(0xC0U | c >> 6U), part(0)};
  } else if (c < 0x10000) {
    out += {static_cast<char>(0xE0U | c >> 12U), part(6), part(0)};
  } else {
    out += {static_cast<char>(0xF0U | c >> 18U), part(12), part(6), part(0)};
  }
}

}  // namespace

std::u16string ToUtf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t c = Decode(utf8, at);
    if (c < 0x10000) {
      out += static_cast<char16_t>(c);
    } else {
      out += static_cast<char16_t>(0xD7C0U + (c >> 10U));
      out += static_cast<char16_t>(0xDC00U | (c & 0x3FFU));
    }
  }
  return out;
}

void AppendUtf8(std::string& out, std::u16string_view utf16) {
  for (std::size_t at = 0; at < utf16.size(); ++at) {
    const char16_t unit = utf16[at];
    if (IsLow(unit)) Refuse();
    if (!IsHigh(unit)) {
      Append(out, unit);
      continue;
    }
    if (++at == utf16.size() || !IsLow(utf16[at])) Refuse();
    Append(out, 0x10000U + ((unit & 0x3FFU) << 10U) + (utf16[at] & 0x3FFU));
  }
}

}  // namespace kvshare::odbc
