#include "drivers/common/forms.h"

#include <array>
#include <charconv>

#include "kvshare/data/driver.h"

namespace kvshare::drivers {
namespace {

void AppendDigits(std::string& out, std::uint64_t value, int digits) {
  std::array<char, 20> text{};
  int at = static_cast<int>(text.size());
  while (value != 0 || digits > 0) {
    text[static_cast<std::size_t>(--at)] = static_cast<char>('0' + value % 10);
    value /= 10;
    --digits;
  }
  out.append(text.data() + at, text.size() - static_cast<std::size_t>(at));
}

template <typename Number>
Number Read(std::string_view digits) {
  Number value{};
  const char* end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, value);
  if (error != std::errc() || rest != end) {
    throw data::DriverError("\"" + std::string(digits) + "\" is no number of its column's kind");
  }
  return value;
}

}  // namespace

void AppendDate(std::string& out, int year, unsigned month, unsigned day) {
  AppendDigits(out, static_cast<std::uint64_t>(year), 4);
  out += '-';
  AppendDigits(out, month, 2);
  out += '-';
  AppendDigits(out, day, 2);
}

void AppendTime(std::string& out, unsigned hour, unsigned minute, unsigned second,
                unsigned milliseconds) {
  AppendDigits(out, hour, 2);
  out += ':';
  AppendDigits(out, minute, 2);
  out += ':';
  AppendDigits(out, second, 2);
  if (milliseconds == 0) return;
  out += '.';
  AppendDigits(out, milliseconds, 3);
}

void AppendScaled(std::string& out, std::int64_t value, int decimals) {
  std::array<char, 40> text{};
  auto at = text.size();
  // The magnitude of the smallest number fits no signed one.
  const auto bits = static_cast<std::uint64_t>(value);
  std::uint64_t rest = value < 0 ? 0 - bits : bits;
  for (int place = 0; rest != 0 || place <= decimals; ++place) {
    if (place == decimals && decimals > 0) text[--at] = '.';
    text[--at] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  }
  if (value < 0) text[--at] = '-';
  out.append(text.data() + at, text.size() - at);
}

std::int64_t ToInteger(std::string_view digits) {
  return Read<std::int64_t>(digits);
}

double ToFloat(std::string_view digits) {
  return Read<double>(digits);
}

std::string FromFloat(double value) {
  std::array<char, 32> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end};
}

std::string_view ToMilliseconds(std::string_view text, std::string& scratch) {
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos) return text;
  const std::size_t digits = text.size() - point - 1;
  if (digits >= 3) return text.substr(0, point + 4);
  scratch.assign(text);
  scratch.append(3 - digits, '0');
  return scratch;
}

std::string_view TrimmedRight(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view FirstCharacters(std::string_view utf8, std::size_t characters) {
  std::size_t at = 0;
  for (; at < utf8.size(); ++at) {
    const bool continues = (static_cast<unsigned char>(utf8[at]) & 0xC0U) == 0x80U;
    if (!continues && characters-- == 0) break;
  }
  return utf8.substr(0, at);
}

void RefuseZeroByte(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    throw data::DriverError("A text with a zero byte cannot be sent to this server");
  }
}

}  // namespace kvshare::drivers
