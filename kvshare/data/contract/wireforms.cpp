#include "kvshare/data/contract/wireforms.h"

#include "kvshare/data/contract/decimals.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/digits.h"
#include "kvshare/rtl/types.h"

namespace kvshare::data {

namespace {

// The digits times 10^places, rounded half to even, where Int has room for all of them.
template <typename Int>
Int Magnitude(const DecimalText& digits, std::size_t places) {
  Int value = 0;
  for (const char c : digits.whole) value = value * 10 + (c - '0');
  for (std::size_t i = 0; i < places; ++i) {
    value = value * 10 + (i < digits.decimals.size() ? digits.decimals[i] - '0' : 0);
  }
  if (digits.decimals.size() > places) {
    const std::string_view rest = digits.decimals.substr(places);
    const bool tail = rest.find_first_not_of('0', 1) != std::string_view::npos;
    if (rest[0] > '5' || (rest[0] == '5' && (tail || value % 2 != 0))) ++value;
  }
  return value;
}

// Nothing for numbers that are far past every range that is asked for.
std::optional<Int128> Scaled(const DecimalText& digits, std::size_t places) {
  constexpr std::size_t kDigitsOfInt64 = 18;
  constexpr std::size_t kMostDigits = 30;
  const std::size_t count = digits.whole.size() + places;
  if (count > kMostDigits) return std::nullopt;
  const Int128 value = count <= kDigitsOfInt64 ? Magnitude<std::int64_t>(digits, places)
                                               : Magnitude<Int128>(digits, places);
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
  const auto digits = DigitsOf(text);
  if (!digits) return std::nullopt;
  const auto raw = Scaled(*digits, kPlaces);
  if (!raw || *raw > INT64_MAX || *raw < INT64_MIN) return std::nullopt;
  return Currency::FromRaw(static_cast<std::int64_t>(*raw));
}

std::optional<std::int64_t> WholeOfDigits(std::string_view text) {
  const auto digits = DigitsOf(text);
  if (!digits) return std::nullopt;
  const auto whole = Scaled(*digits, 0);
  if (!whole || *whole > INT64_MAX || *whole < INT64_MIN) return std::nullopt;
  return static_cast<std::int64_t>(*whole);
}

std::string DigitsOfCurrency(Currency amount) {
  constexpr std::size_t kPlaces = 4;
  constexpr unsigned kHundred = 100;
  char text[32];
  char* const end = text + sizeof text;
  const auto places = static_cast<unsigned>(amount.Magnitude() % Currency::kScale);
  digits::PutPair(end - 2, places % kHundred);
  digits::PutPair(end - kPlaces, places / kHundred);
  char* begin = end - kPlaces;
  *--begin = '.';
  begin = digits::PutBackward(begin, amount.Magnitude() / Currency::kScale);
  if (amount.Raw() < 0) *--begin = '-';
  return {begin, end};
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

// yyyy-mm-dd; a moment can lie past 9999, in a year of five digits.
void DateText::Append(const TDateParts& date) {
  constexpr unsigned kFiveDigits = 10'000;
  if (date.Year >= kFiveDigits) bytes_[size_++] = static_cast<char>('0' + date.Year / kFiveDigits);
  char text[] = "0000-00-00";
  digits::PutPair(text, date.Year % kFiveDigits / 100U);
  digits::PutPair(text + 2, date.Year % 100U);
  digits::PutPair(text + 5, date.Month);
  digits::PutPair(text + 8, date.Day);
  Append(std::string_view(text, sizeof text - 1));
}

// hh:mm:ss[.fff]
void DateText::Append(const TTimeParts& time) {
  char text[] = "00:00:00.000";
  constexpr std::size_t kSeconds = 8;
  digits::PutPair(text, time.Hour);
  digits::PutPair(text + 3, time.Minute);
  digits::PutPair(text + 6, time.Second);
  text[9] = static_cast<char>('0' + time.MilliSecond / 100);
  digits::PutPair(text + 10, time.MilliSecond % 100U);
  Append(std::string_view(text, time.MilliSecond != 0 ? sizeof text - 1 : kSeconds));
}

DateText DateText::OfDate(TDateTime moment) {
  DateText text;
  text.Append(DecodeDate(moment));
  return text;
}

DateText DateText::OfTime(TDateTime moment) {
  DateText text;
  text.Append(DecodeTime(moment));
  return text;
}

DateText DateText::OfMoment(TDateTime moment) {
  DateText text;
  const TDateTimeParts parts = DecodeDateTime(moment);
  text.Append(parts.Date);
  text.Append(" ");
  text.Append(parts.Time);
  return text;
}

std::string TextOfDate(TDateTime moment) {
  return std::string(DateText::OfDate(moment).View());
}

std::string TextOfTime(TDateTime moment) {
  return std::string(DateText::OfTime(moment).View());
}

std::string TextOfMoment(TDateTime moment) {
  return std::string(DateText::OfMoment(moment).View());
}

}  // namespace kvshare::data
