#include "kvshare/data/wireforms.h"

#include <algorithm>
#include <cstdio>

#include "kvshare/rtl/format.h"
#include "kvshare/rtl/types.h"

namespace kvshare::data {

namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// [-]digits[.digits] taken apart.
struct Digits {
  bool negative = false;
  std::string_view whole;
  std::string_view decimals;
};

std::optional<Digits> TakeApart(std::string_view text) {
  Digits digits;
  if (!text.empty() && text.front() == '-') {
    digits.negative = true;
    text.remove_prefix(1);
  }
  const std::size_t point = text.find('.');
  digits.whole = text.substr(0, point);
  if (point != std::string_view::npos) digits.decimals = text.substr(point + 1);
  const bool sound = std::ranges::all_of(digits.whole, IsDigit) &&
                     std::ranges::all_of(digits.decimals, IsDigit) &&
                     (!digits.whole.empty() || !digits.decimals.empty());
  return sound ? std::optional(digits) : std::nullopt;
}

// The number times 10^places, rounded half to even; nothing past 2^64.
std::optional<Int128> Scaled(const Digits& digits, std::size_t places) {
  constexpr Int128 kMost = Int128{1} << 64;
  Int128 value = 0;
  for (const char c : digits.whole) {
    value = value * 10 + (c - '0');
    if (value > kMost) return std::nullopt;
  }
  for (std::size_t i = 0; i < places; ++i) {
    value = value * 10 + (i < digits.decimals.size() ? digits.decimals[i] - '0' : 0);
    if (value > kMost) return std::nullopt;
  }
  if (digits.decimals.size() > places) {
    const std::string_view rest = digits.decimals.substr(places);
    const bool tail = rest.find_first_not_of('0', 1) != std::string_view::npos;
    if (rest[0] > '5' || (rest[0] == '5' && (tail || value % 2 != 0))) ++value;
  }
  return digits.negative ? -value : value;
}

// `count` digits at `at`, or -1.
constexpr int Number(std::string_view text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (!IsDigit(text[i])) return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

constexpr bool Has(std::string_view text, std::size_t at, char c) {
  return at < text.size() && text[at] == c;
}

// .fff and further digits as milliseconds, or -1.
constexpr int MilliSeconds(std::string_view fraction) {
  if (fraction.empty()) return 0;
  if (fraction[0] != '.' || fraction.size() < 2) return -1;
  int value = 0;
  int scale = 100;
  for (const char c : fraction.substr(1)) {
    if (!IsDigit(c)) return -1;
    value += (c - '0') * scale;
    scale /= 10;
  }
  return value;
}

}  // namespace

std::optional<Currency> CurrencyOfDigits(std::string_view text) {
  constexpr std::size_t kPlaces = 4;
  const auto digits = TakeApart(text);
  if (!digits) return std::nullopt;
  const auto raw = Scaled(*digits, kPlaces);
  if (!raw || *raw > INT64_MAX || *raw < INT64_MIN) return std::nullopt;
  return Currency::FromRaw(static_cast<std::int64_t>(*raw));
}

std::optional<std::int64_t> WholeOfDigits(std::string_view text) {
  const auto digits = TakeApart(text);
  if (!digits) return std::nullopt;
  const auto whole = Scaled(*digits, 0);
  if (!whole || *whole > INT64_MAX || *whole < INT64_MIN) return std::nullopt;
  return static_cast<std::int64_t>(*whole);
}

void AppendShortest(std::string& out, std::string_view digits, char decimalSeparator) {
  std::size_t point = digits.find('.');
  if (point != std::string_view::npos) {
    digits = digits.substr(0, digits.find_last_not_of('0') + 1);
    if (digits.ends_with('.')) digits.remove_suffix(1);
    point = digits.find('.');
  }
  const bool zero = digits.find_first_not_of("-0.") == std::string_view::npos;
  if (zero) {
    out.push_back('0');
    return;
  }
  out.append(digits.substr(0, point));
  if (point == std::string_view::npos) return;
  if (decimalSeparator != '\0') out.push_back(decimalSeparator);
  out.append(digits.substr(point + 1));
}

std::string DigitsOfCurrency(Currency amount) {
  constexpr std::uint64_t kScale = Currency::kScale;
  char text[32];
  const int size = std::snprintf(text, sizeof text, "%s%llu.%04llu", amount.Raw() < 0 ? "-" : "",
                                 static_cast<unsigned long long>(amount.Magnitude() / kScale),
                                 static_cast<unsigned long long>(amount.Magnitude() % kScale));
  return {text, static_cast<std::size_t>(size)};
}

std::optional<TDateTime> DateOfText(std::string_view text) {
  TDateTime date;
  const bool read = text.size() == 10 && Has(text, 4, '-') && Has(text, 7, '-') &&
                    TryEncodeDate(Number(text, 0, 4), Number(text, 5, 2), Number(text, 8, 2), date);
  return read ? std::optional(date) : std::nullopt;
}

std::optional<TDateTime> TimeOfText(std::string_view text) {
  constexpr std::size_t kSeconds = 8;
  TDateTime time;
  const bool read = text.size() >= kSeconds && Has(text, 2, ':') && Has(text, 5, ':') &&
                    TryEncodeTime(Number(text, 0, 2), Number(text, 3, 2), Number(text, 6, 2),
                                  MilliSeconds(text.substr(kSeconds)), time);
  return read ? std::optional(time) : std::nullopt;
}

std::optional<TDateTime> MomentOfText(std::string_view text) {
  constexpr std::size_t kDate = 10;
  const auto date = DateOfText(text.substr(0, kDate));
  if (!date || text.size() <= kDate) return date;
  if (text[kDate] != ' ' && text[kDate] != 'T') return std::nullopt;
  const auto time = TimeOfText(text.substr(kDate + 1));
  return time ? std::optional(JoinDateTime(*date, *time)) : std::nullopt;
}

std::string TextOfDate(TDateTime moment) {
  const TDateParts date = DecodeDate(moment);
  return Format("%.4d-%.2d-%.2d", {int{date.Year}, int{date.Month}, int{date.Day}});
}

std::string TextOfTime(TDateTime moment) {
  const TTimeParts time = DecodeTime(moment);
  std::string text = Format("%.2d:%.2d:%.2d", {int{time.Hour}, int{time.Minute}, int{time.Second}});
  if (time.MilliSecond != 0) AppendFormat(text, ".%.3d", {int{time.MilliSecond}});
  return text;
}

std::string TextOfMoment(TDateTime moment) {
  return TextOfDate(moment) + " " + TextOfTime(moment);
}

}  // namespace kvshare::data
