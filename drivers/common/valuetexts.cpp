#include "drivers/common/valuetexts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "kvshare/data/contract/driver.h"
#include "kvshare/rtl/decimaltext.h"

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

[[noreturn]] void RefuseNumber(std::string_view text) {
  throw data::DriverError("\"" + std::string(text) + "\" is no number of its column's kind");
}

template <typename Number>
Number Read(std::string_view digits) {
  Number value{};
  const char* end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, value);
  if (error != std::errc() || rest != end) RefuseNumber(digits);
  return value;
}

void TrimZeros(std::string& decimal) {
  if (decimal.find('.') == std::string::npos) return;
  decimal.erase(decimal.find_last_not_of('0') + 1);
  if (decimal.ends_with('.')) decimal.pop_back();
}

// `digits` with the point behind the first 1 + `exponent` of them.
std::string WithPoint(std::string digits, int exponent) {
  if (exponent < 0) {
    digits.insert(0, static_cast<std::size_t>(-exponent), '0');
    exponent = 0;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() < whole) digits.append(whole - digits.size(), '0');
  digits.insert(whole, 1, '.');
  TrimZeros(digits);
  return digits;
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

std::optional<std::int64_t> TenThousandthsOf(double value) {
  constexpr double kScale = 10'000;
  constexpr double kSixteenDigits = 1e15;
  const double scaled = std::nearbyint(value * kScale);
  // Then `value` is the real nearest to these at most 15 digits, so that they are its own.
  const bool own = std::fabs(scaled) < kSixteenDigits && scaled / kScale == value;
  return own ? std::optional(static_cast<std::int64_t>(scaled)) : std::nullopt;
}

std::string DecimalOf(double value) {
  if (!std::isfinite(value)) {
    throw data::DriverError(std::isnan(value) ? "NaN is no number" : "Infinity is no number");
  }
  constexpr double kTwoTo53 = 9007199254740992.0;  // below which every whole number is a real
  if (std::fabs(value) < kTwoTo53 && std::nearbyint(value) == value) {
    return std::to_string(static_cast<std::int64_t>(value));
  }
  std::string decimal;
  if (const auto scaled = TenThousandthsOf(value)) {
    AppendScaled(decimal, *scaled, 4);
    TrimZeros(decimal);
    return decimal;
  }
  constexpr int kDecimals = 14;  // of the first digit's
  std::array<char, 32> text{};
  const char* end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                  std::chars_format::scientific, kDecimals)
                        .ptr;
  const std::string_view written(text.data(), static_cast<std::size_t>(end - text.data()));
  const std::size_t mark = written.find('e');
  int exponent = 0;
  const bool below = written[mark + 1] == '-';
  std::from_chars(text.data() + mark + 2, end, exponent);
  decimal = WithPoint(std::string(written.substr(0, 1)).append(written.substr(2, mark - 2)),
                      below ? -exponent : exponent);
  return value < 0 ? "-" + decimal : decimal;
}

std::string_view ToDecimal(std::string_view text, std::string& scratch) {
  const auto parts = SplitDecimal(text, /*plus=*/true);
  if (!parts) RefuseNumber(text);
  const bool inForm = !text.starts_with('+') && !parts->whole.empty() && !text.ends_with('.');
  if (inForm) return text;
  scratch = parts->negative ? "-" : "";
  scratch.append(parts->whole.empty() ? "0" : parts->whole);
  if (!parts->decimals.empty()) scratch.append(".").append(parts->decimals);
  return scratch;
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
