#include "kvshare/data/contract/decimals.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/longdecimal.h"

namespace kvshare::data {

namespace {

constexpr int kMostExponent = 400;

// [sign]digits behind the E; nothing for another text and past kMostExponent.
std::optional<int> ExponentOf(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  int exponent = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, exponent);
  const bool sound = error == std::errc() && last == end && exponent <= kMostExponent &&
                     exponent >= -kMostExponent;
  return sound ? std::optional(exponent) : std::nullopt;
}

std::strong_ordering CompareMagnitudes(const DecimalText& a, const DecimalText& b) {
  if (a.whole.size() != b.whole.size()) return a.whole.size() <=> b.whole.size();
  if (const auto order = a.whole <=> b.whole; std::is_neq(order)) return order;
  return a.decimals <=> b.decimals;
}

// Digits with the point behind `before` of them, which may lie in front of the first or behind the
// last.
void AppendWithPoint(std::string& out, bool negative, std::string_view digits, int before) {
  const auto count = static_cast<int>(digits.size());
  if (negative) out.push_back('-');
  if (before <= 0) {
    out.append("0.").append(static_cast<std::size_t>(-before), '0').append(digits);
    return;
  }
  const auto whole = static_cast<std::size_t>(std::min(before, count));
  out.append(digits.substr(0, whole));
  if (before >= count) {
    out.append(static_cast<std::size_t>(before - count), '0');
  } else {
    out.append(".").append(digits.substr(whole));
  }
}

}  // namespace

std::optional<DecimalText> DigitsOf(std::string_view text) {
  const auto digits = SplitDecimal(text);
  return digits ? std::optional(WithoutZeros(*digits)) : std::nullopt;
}

bool AppendShortest(std::string& out, std::string_view text, char decimalSeparator) {
  const auto digits = DigitsOf(text);
  if (!digits) return false;
  if (digits->negative) out.push_back('-');
  if (digits->whole.empty()) out.push_back('0');
  out.append(digits->whole);
  if (digits->decimals.empty()) return true;
  if (decimalSeparator != '\0') out.push_back(decimalSeparator);
  out.append(digits->decimals);
  return true;
}

std::strong_ordering CompareDecimals(std::string_view a, std::string_view b) {
  const auto left = DigitsOf(a);
  const auto right = DigitsOf(b);
  if (!left && !right) return a <=> b;
  if (!left || !right) return right.has_value() <=> left.has_value();
  if (left->negative != right->negative) return right->negative <=> left->negative;
  return left->negative ? CompareMagnitudes(*right, *left) : CompareMagnitudes(*left, *right);
}

std::optional<double> FloatOfDigits(std::string_view text) {
  const auto digits = DigitsOf(text);
  if (!digits) return std::nullopt;
  double value = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  return digits->whole.empty() ? std::optional(0.0) : std::nullopt;
}

bool AppendDecimal(std::string& out, std::string_view text) {
  if (text.find_first_of("eE+") == std::string_view::npos) return AppendShortest(out, text, '.');
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  int exponent = 0;
  if (const std::size_t e = text.find_first_of("eE"); e != std::string_view::npos) {
    const auto read = ExponentOf(text.substr(e + 1));
    if (!read) return false;
    exponent = *read;
    text = text.substr(0, e);
  }
  const auto digits = text.starts_with('-') ? std::nullopt : DigitsOf(text);
  if (!digits) return false;
  std::string all;
  all.reserve(digits->whole.size() + digits->decimals.size());
  all.append(digits->whole).append(digits->decimals);
  const std::size_t zeros = all.find_first_not_of('0');
  if (zeros == std::string::npos) {
    out.push_back('0');
    return true;
  }
  all.resize(all.find_last_not_of('0') + 1);
  const int before = static_cast<int>(digits->whole.size()) + exponent - static_cast<int>(zeros);
  AppendWithPoint(out, negative, std::string_view{all}.substr(zeros), before);
  return true;
}

std::optional<std::string> DigitsOfTyped(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  text.remove_prefix(first);
  text = text.substr(0, text.find_last_not_of(' ') + 1);
  std::string plain(text);
  const char separator = FormatSettings.DecimalSeparator;
  if (separator != '.') {
    if (plain.find('.') != std::string::npos) return std::nullopt;
    if (separator != '\0') std::ranges::replace(plain, separator, '.');
  }
  std::string digits;
  return AppendDecimal(digits, plain) ? std::optional(std::move(digits)) : std::nullopt;
}

std::string DigitsOfReal(double value) {
  rtl::Decimal number(value);
  number.RoundToSignificant(kGeneralDigits);
  if (number.IsZero()) return "0";
  std::string digits;
  const std::string_view all(number.Digits(), static_cast<std::size_t>(number.Count()));
  AppendWithPoint(digits, number.Negative(), all, number.Point());
  return digits;
}

void RoundDigits(std::string& digits, int decimals) {
  const std::size_t point = digits.find('.');
  const auto places = static_cast<std::size_t>(std::max(decimals, 0));
  if (point == std::string::npos || digits.size() - point - 1 <= places) return;
  auto number = LongDecimal::Read(digits);
  if (!number) return;
  number->RoundToDecimals(static_cast<int>(places));
  digits.clear();
  number->AppendShortest(digits, '.');
}

}  // namespace kvshare::data
