#include "kvshare/rtl/cp874.h"

#include <cstdio>
#include <cstring>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/within.h"

namespace kvshare::inline rtl {

namespace {

// A byte's UTF-8 form, padded to four bytes so that one store writes it whole.
struct Utf8Form {
  char bytes[4] = {};
  std::uint8_t size = 0;  // 0: the byte stands for no letter
};

constexpr auto kUtf8Forms = [] {
  std::array<Utf8Form, 256> forms{};
  for (unsigned i = 0; i < 256; ++i) {
    const char32_t letter = Cp874ToUnicode(static_cast<unsigned char>(i));
    Utf8Form& form = forms[i];
    if (i < 0x80) {
      form = {{static_cast<char>(i)}, 1};
    } else if (letter != 0 && letter < 0x800) {
      form = {{static_cast<char>(0xC0 | letter >> 6), static_cast<char>(0x80 | (letter & 0x3F))},
              2};
    } else if (letter != 0) {
      form = {
          {static_cast<char>(0xE0 | letter >> 12), static_cast<char>(0x80 | (letter >> 6 & 0x3F)),
           static_cast<char>(0x80 | (letter & 0x3F))},
          3};
    }
  }
  return forms;
}();

const Utf8Form& FormOf(char byte) {
  return kUtf8Forms[static_cast<unsigned char>(byte)];
}

[[noreturn]] void ThrowInvalidByte(std::string_view cp874, std::size_t at) {
  char text[80];
  const int n =
      std::snprintf(text, sizeof text, "Invalid byte %02X at position %zu for code page 874",
                    static_cast<unsigned char>(cp874[at]), at + 1);
  throw EConvertError(std::string_view(text, static_cast<std::size_t>(n)));
}

[[noreturn]] void ThrowInvalidUtf8(std::size_t at) {
  throw EConvertError("Invalid UTF-8 at byte " + std::to_string(at + 1));
}

[[noreturn]] void ThrowNoLetter(char32_t letter, std::size_t at) {
  char text[80];
  const int n = std::snprintf(text, sizeof text, "No letter U+%04X in code page 874, at byte %zu",
                              static_cast<unsigned>(letter), at + 1);
  throw EConvertError(std::string_view(text, static_cast<std::size_t>(n)));
}

// One letter of well-formed UTF-8 (Unicode, table 3-7) from `at`, which moves past it.
char32_t TakeLetter(std::string_view utf8, std::size_t& at) {
  const std::size_t start = at;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const unsigned lead = byte(at++);
  if (lead < 0x80) return lead;
  if (lead < 0xC2 || lead > 0xF4) ThrowInvalidUtf8(start);
  const int more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  char32_t letter = lead & (0x3Fu >> more);
  for (int i = 0; i < more; ++i, ++at) {
    if (at == utf8.size() || (byte(at) & 0xC0) != 0x80) ThrowInvalidUtf8(start);
    letter = letter << 6 | (byte(at) & 0x3Fu);
  }
  const bool overlong = (more == 2 && letter < 0x800) || (more == 3 && letter < 0x10000);
  const bool surrogate = letter >= 0xD800 && letter <= 0xDFFF;
  if (overlong || surrogate || letter > 0x10FFFF) ThrowInvalidUtf8(start);
  return letter;
}

// The Thai letters of code page 874 all lie in E0 B8 81 .. E0 B9 9B: the road of nearly every byte.
bool TakeThai(std::string_view utf8, std::size_t at, char& byte) {
  if (utf8.size() - at < 3 || utf8[at] != '\xE0') return false;
  const auto second = static_cast<unsigned char>(utf8[at + 1]);
  const auto third = static_cast<unsigned char>(utf8[at + 2]);
  if ((second != 0xB8 && second != 0xB9) || (third & 0xC0) != 0x80) return false;
  const auto candidate = static_cast<unsigned char>(0xA0u + ((second & 1u) << 6 | (third & 0x3Fu)));
  if (candidate <= 0xA0 || kUtf8Forms[candidate].size != 3) return false;
  byte = static_cast<char>(candidate);
  return true;
}

}  // namespace

std::size_t DisplayWidth(std::string_view cp874) {
  return static_cast<std::size_t>(std::ranges::count_if(
      cp874, [](char c) { return !IsCombiningCp874(static_cast<unsigned char>(c)); }));
}

void AppendUtf8(std::string& out, std::string_view cp874) {
  if (LiesIn(cp874, out)) return AppendUtf8(out, std::string(cp874));
  const std::size_t before = out.size();
  out.resize(before + 3 * cp874.size() + 1);  // one byte more: each store writes four
  char* to = out.data() + before;
  for (std::size_t i = 0; i < cp874.size(); ++i) {
    const Utf8Form& form = FormOf(cp874[i]);
    if (form.size == 0) {
      out.resize(before);
      ThrowInvalidByte(cp874, i);
    }
    std::memcpy(to, form.bytes, sizeof form.bytes);
    to += form.size;
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
}

std::string Cp874ToUtf8(std::string_view cp874) {
  std::string out;
  AppendUtf8(out, cp874);
  return out;
}

std::string Cp874ToUtf8Lossy(std::string_view cp874) {
  std::string out;
  out.reserve(3 * cp874.size());
  for (const char c : cp874) {
    const Utf8Form& form = FormOf(c);
    out.append(form.size != 0 ? std::string_view(form.bytes, form.size) : "\xEF\xBF\xBD");
  }
  return out;
}

void AppendCp874(std::string& out, std::string_view utf8) {
  if (LiesIn(utf8, out)) return AppendCp874(out, std::string(utf8));
  const std::size_t before = out.size();
  out.resize(before + utf8.size());  // no letter has more bytes here than there
  char* to = out.data() + before;
  try {
    for (std::size_t at = 0; at < utf8.size();) {
      char byte = utf8[at];
      if (static_cast<unsigned char>(byte) < 0x80) {
        ++at;
      } else if (TakeThai(utf8, at, byte)) {
        at += 3;
      } else {
        const std::size_t start = at;
        const char32_t letter = TakeLetter(utf8, at);
        const auto known = UnicodeToCp874(letter);
        if (!known) ThrowNoLetter(letter, start);
        byte = static_cast<char>(*known);
      }
      *to++ = byte;
    }
  } catch (...) {
    out.resize(before);
    throw;
  }
  out.resize(static_cast<std::size_t>(to - out.data()));
}

std::string Utf8ToCp874(std::string_view utf8) {
  std::string out;
  AppendCp874(out, utf8);
  return out;
}

std::optional<std::string> TryUtf8ToCp874(std::string_view utf8) {
  try {
    return Utf8ToCp874(utf8);
  } catch (const EConvertError&) {
    return std::nullopt;
  }
}

}  // namespace kvshare::inline rtl
