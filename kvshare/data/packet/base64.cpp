#include "kvshare/data/packet/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kvshare::data {

namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t kNone = 0xFF;
constexpr std::uint8_t kBlank = 0xFE;
constexpr auto kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNone);
  for (std::size_t i = 0; i < kLetters.size(); ++i) {
    values[static_cast<unsigned char>(kLetters[i])] = static_cast<std::uint8_t>(i);
  }
  for (const char blank : {' ', '\t', '\r', '\n'}) {
    values[static_cast<unsigned char>(blank)] = kBlank;
  }
  return values;
}();

char Letter(std::uint32_t bits, unsigned shift) {
  return kLetters[bits >> shift & 0x3F];
}

}  // namespace

void AppendBase64(std::string& out, std::string_view bytes) {
  out.reserve(out.size() + (bytes.size() + 2) / 3 * 4);
  for (; !bytes.empty(); bytes.remove_prefix(bytes.size() < 3 ? bytes.size() : 3)) {
    const auto byte = [&bytes](std::size_t i) -> std::uint32_t {
      return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const std::uint32_t bits = byte(0) << 16 | byte(1) << 8 | byte(2);
    const char four[] = {Letter(bits, 18), Letter(bits, 12),
                         bytes.size() > 1 ? Letter(bits, 6) : '=',
                         bytes.size() > 2 ? Letter(bits, 0) : '='};
    out.append(four, sizeof four);
  }
}

bool AppendFromBase64(std::string& out, std::string_view text) {
  out.reserve(out.size() + text.size() / 4 * 3);
  std::uint32_t bits = 0;
  unsigned letters = 0;  // of the present four
  std::size_t at = 0;
  for (; at < text.size() && text[at] != '='; ++at) {
    const std::uint8_t value = kValues[static_cast<unsigned char>(text[at])];
    if (value == kBlank) continue;
    if (value == kNone) return false;
    bits = bits << 6 | value;
    if (++letters < 4) continue;
    out.push_back(static_cast<char>(bits >> 16));
    out.push_back(static_cast<char>(bits >> 8));
    out.push_back(static_cast<char>(bits));
    letters = 0;
    bits = 0;
  }
  if (text.find_first_not_of("= \t\r\n", at) != std::string_view::npos) return false;
  if (letters == 1) return false;
  if (letters == 2) out.push_back(static_cast<char>(bits >> 4));
  if (letters == 3) {
    out.push_back(static_cast<char>(bits >> 10));
    out.push_back(static_cast<char>(bits >> 2));
  }
  return true;
}

}  // namespace kvshare::data
