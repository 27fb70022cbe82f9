#include "kvshare/os/registry/regtext.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::os::reg {

namespace {

// Lines that have begun before the end of `text`.
template <typename Text>
int LineAtEnd(const Text& text) {
  return static_cast<int>(std::ranges::count(text, static_cast<typename Text::value_type>('\n'))) +
         1;
}

std::u16string DecodeUtf16(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    text += static_cast<char16_t>(high << 8 | low);
  }
  if (bytes.size() % 2 != 0) ThrowAtLine(LineAtEnd(text), "the file ends within a letter");
  return text;
}

// A letter outside code page 874 stays itself: in a comment it may stand.
std::u16string DecodeUtf8(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[at]);
    const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t letter = size == 1 ? lead : lead & (0x7Fu >> size);
    const std::string_view more = bytes.substr(at + 1, size - 1);
    bool good = more.size() == size - 1 && (lead < 0x80 || (lead >= 0xC2 && lead <= 0xF4));
    for (const char c : more) {
      const auto byte = static_cast<unsigned char>(c);
      good = good && (byte & 0xC0) == 0x80;
      letter = letter << 6 | (byte & 0x3Fu);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (!good || letter < kLeast[size] || letter > 0x10FFFF ||
        (letter >= 0xD800 && letter <= 0xDFFF)) {
      ThrowAtLine(LineAtEnd(text), "the file is no good UTF-8");
    }
    if (letter >= 0x10000) {
      text += static_cast<char16_t>(0xD7C0 + (letter >> 10));
      letter = 0xDC00 | (letter & 0x3FF);
    }
    text += static_cast<char16_t>(letter);
    at += size;
  }
  return text;
}

// Nothing for what is not UTF-8 and for what has no Thai letter. Thai text of code page 874 is
// never UTF-8 throughout: that would need a vowel before each of its letters.
std::optional<std::u16string> DecodeThaiUtf8(std::string_view bytes) {
  constexpr auto isThai = [](char16_t letter) { return letter >= 0x0E01 && letter <= 0x0E5B; };
  try {
    std::u16string text = DecodeUtf8(bytes);
    if (std::ranges::any_of(text, isThai)) return text;
  } catch (const EConvertError&) {
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

std::u16string Decode(std::string_view file) {
  constexpr std::string_view kUtf16 = "\xFF\xFE";
  constexpr std::string_view kUtf16BigEndian = "\xFE\xFF";
  if (file.starts_with(kUtf16)) return DecodeUtf16(file.substr(kUtf16.size()));
  if (file.starts_with(kUtf16BigEndian)) {
    ThrowAtLine(1, "the file is in UTF-16 with the higher byte first; save it as UTF-16LE");
  }
  if (file.starts_with(kUtf8Mark)) return DecodeUtf8(WithoutUtf8Mark(file));
  if (auto text = DecodeThaiUtf8(file)) return std::move(*text);
  std::u16string text(file.size(), u'\0');
  std::ranges::transform(file, text.begin(), LetterOf);
  return text;
}

void AppendUtf16(std::string& out, std::string_view cp874) {
  out.reserve(out.size() + 2 * cp874.size());
  for (const char byte : cp874) {
    const char16_t letter = LetterOf(byte);
    out += static_cast<char>(letter & 0xFF);
    out += static_cast<char>(letter >> 8);
  }
}

void ThrowAtLine(int line, std::string_view reason) {
  throw EConvertError("line " + std::to_string(line) + ": " + std::string(reason));
}

}  // namespace kvshare::os::reg
