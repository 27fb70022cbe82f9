// Dates and times from texts.
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/textcursor.h"

namespace kvshare::inline rtl {

namespace {

enum class DateOrder : std::uint8_t { DayMonthYear, MonthDayYear, YearMonthDay };

DateOrder OrderOf(std::string_view shortDateFormat) {
  for (const char c : shortDateFormat) {
    switch (LowCase(c)) {
      case 'd':
        return DateOrder::DayMonthYear;
      case 'm':
        return DateOrder::MonthDayYear;
      case 'y':
      case 'e':
        return DateOrder::YearMonthDay;
      default:
        break;
    }
  }
  return DateOrder::MonthDayYear;
}

struct Number {
  int value = 0;           // 0 .. 9999
  std::size_t digits = 0;  // leading zeros count
};

// Blanks, then digits until the value has four: what follows is no longer this number's.
std::optional<Number> TakeNumber(TextCursor& cursor) {
  cursor.SkipBlanks();
  const std::string_view rest = cursor.Rest();
  Number number;
  while (number.digits < rest.size() && number.value < 1000 && IsDigit(rest[number.digits])) {
    number.value = number.value * 10 + (rest[number.digits++] - '0');
  }
  if (number.digits == 0) return std::nullopt;
  cursor.Skip(number.digits);
  return number;
}

bool TakeSeparator(TextCursor& cursor, char separator) {
  cursor.SkipBlanks();
  return cursor.Take(separator);
}

// Reads a separator and the number it announces. False for a separator without one; without a
// separator the number stays as it is.
bool TakeOptional(TextCursor& cursor, char separator, std::optional<Number>& number) {
  if (!TakeSeparator(cursor, separator)) return true;
  number = TakeNumber(cursor);
  return number.has_value();
}

// Completes a year of one or two digits.
class Century {
 public:
  Century(std::optional<int> currentYear, const TFormatSettings& settings)
      : currentYear_(currentYear), window_(settings.TwoDigitYearCenturyWindow) {}

  // Asks the clock only when a text leaves a question open.
  std::int64_t CurrentYear() const {
    return currentYear_ ? *currentYear_ : DecodeDate(Date()).Year;
  }

  std::int64_t FullYear(const Number& year) const {
    if (year.digits > 2) return year.value;
    const std::int64_t base = CurrentYear() - window_;
    const std::int64_t full = base / 100 * 100 + year.value;
    return window_ > 0 && full < base ? full + 100 : full;
  }

 private:
  std::optional<int> currentYear_;
  std::int64_t window_;
};

bool TryEncode(std::int64_t year, const Number& month, const Number& day, TDateTime& date) {
  return year >= 1 && year <= 9999 &&
         TryEncodeDate(static_cast<int>(year), month.value, day.value, date);
}

// A date and the blanks behind it.
bool TakeDate(TextCursor& cursor, const Century& century, const TFormatSettings& settings,
              TDateTime& date) {
  const char separator = settings.DateSeparator;
  const auto first = TakeNumber(cursor);
  if (!first || !TakeSeparator(cursor, separator)) return false;
  const auto second = TakeNumber(cursor);
  std::optional<Number> third;
  if (!second || !TakeOptional(cursor, separator, third)) return false;
  if (third) TakeSeparator(cursor, separator);
  cursor.SkipBlanks();

  const DateOrder order = OrderOf(settings.ShortDateFormat);
  if (!third) {
    const bool dayFirst = order == DateOrder::DayMonthYear;
    return TryEncode(century.CurrentYear(), dayFirst ? *second : *first,
                     dayFirst ? *first : *second, date);
  }
  switch (order) {
    case DateOrder::DayMonthYear:
      return TryEncode(century.FullYear(*third), *second, *first, date);
    case DateOrder::MonthDayYear:
      return TryEncode(century.FullYear(*third), *first, *second, date);
    case DateOrder::YearMonthDay:
      break;
  }
  return TryEncode(century.FullYear(*first), *second, *third, date);
}

enum class Half : std::uint8_t { Morning, Afternoon };

bool StartsWithIgnoringCase(std::string_view text, std::string_view word) {
  return text.size() >= word.size() &&
         std::ranges::equal(word, text.substr(0, word.size()), {}, LowCase, LowCase);
}

// Blanks, then the longest marker that fits, so that "A" as the user's marker leaves "AM" readable.
std::optional<Half> TakeMarker(TextCursor& cursor, const TFormatSettings& settings) {
  struct Marker {
    std::string_view word;
    Half half;
  };
  const std::array<Marker, 4> markers{{{settings.TimeAMString, Half::Morning},
                                       {"AM", Half::Morning},
                                       {settings.TimePMString, Half::Afternoon},
                                       {"PM", Half::Afternoon}}};
  cursor.SkipBlanks();
  std::size_t length = 0;
  std::optional<Half> half;
  for (const Marker& marker : markers) {
    if (marker.word.size() > length && StartsWithIgnoringCase(cursor.Rest(), marker.word)) {
      length = marker.word.size();
      half = marker.half;
    }
  }
  cursor.Skip(length);
  return half;
}

// The hour of a 24-hour day, or nothing where the clock with markers has no such hour.
std::optional<int> HourOf(int hour, std::optional<Half> half) {
  if (!half) return hour;
  if (hour < 1 || hour > 12) return std::nullopt;
  return hour % 12 + (*half == Half::Afternoon ? 12 : 0);
}

// A time and the blanks behind it.
bool TakeTime(TextCursor& cursor, const TFormatSettings& settings, TDateTime& time) {
  std::optional<Half> half = TakeMarker(cursor, settings);
  const auto hour = TakeNumber(cursor);
  if (!hour) return false;
  std::optional<Number> minute;
  std::optional<Number> second;
  std::optional<Number> milliSecond;
  if (!TakeOptional(cursor, settings.TimeSeparator, minute)) return false;
  if (minute && !TakeOptional(cursor, settings.TimeSeparator, second)) return false;
  if (second && !TakeOptional(cursor, settings.DecimalSeparator, milliSecond)) return false;
  if (!half) half = TakeMarker(cursor, settings);
  cursor.SkipBlanks();
  const auto hour24 = HourOf(hour->value, half);
  return hour24 &&
         TryEncodeTime(*hour24, minute.value_or(Number{}).value, second.value_or(Number{}).value,
                       milliSecond.value_or(Number{}).value, time);
}

bool TryReadDate(std::string_view text, std::optional<int> currentYear,
                 const TFormatSettings& settings, TDateTime& value) {
  TextCursor cursor(text);
  TDateTime date;
  if (!TakeDate(cursor, Century(currentYear, settings), settings, date)) return false;
  if (!cursor.AtEnd()) return false;
  value = date;
  return true;
}

}  // namespace

bool TryStrToDate(std::string_view text, TDateTime& value, const TFormatSettings& settings) {
  return TryReadDate(text, std::nullopt, settings, value);
}

bool TryStrToDateAsOf(std::string_view text, int currentYear, TDateTime& value,
                      const TFormatSettings& settings) {
  return TryReadDate(text, currentYear, settings, value);
}

TDateTime StrToDate(std::string_view text, const TFormatSettings& settings) {
  TDateTime value;
  if (!TryStrToDate(text, value, settings)) ThrowNotValid(text, "date");
  return value;
}

bool TryStrToTime(std::string_view text, TDateTime& value, const TFormatSettings& settings) {
  TextCursor cursor(text);
  TDateTime time;
  if (!TakeTime(cursor, settings, time) || !cursor.AtEnd()) return false;
  value = time;
  return true;
}

TDateTime StrToTime(std::string_view text, const TFormatSettings& settings) {
  TDateTime value;
  if (!TryStrToTime(text, value, settings)) ThrowNotValid(text, "time");
  return value;
}

bool TryStrToDateTime(std::string_view text, TDateTime& value, const TFormatSettings& settings) {
  TextCursor cursor(text);
  TDateTime date;
  TDateTime time;
  if (TakeDate(cursor, Century(std::nullopt, settings), settings, date) &&
      (cursor.AtEnd() || TakeTime(cursor, settings, time))) {
    value = JoinDateTime(date, time);
    return true;
  }
  return TryStrToTime(text, value, settings);
}

TDateTime StrToDateTime(std::string_view text, const TFormatSettings& settings) {
  TDateTime value;
  if (!TryStrToDateTime(text, value, settings)) ThrowNotValid(text, "date and time");
  return value;
}

std::string DateToStr(TDateTime value, const TFormatSettings& settings) {
  return FormatDateTime(settings.ShortDateFormat, value, settings);
}

std::string TimeToStr(TDateTime value, const TFormatSettings& settings) {
  return FormatDateTime(settings.LongTimeFormat, value, settings);
}

std::string DateTimeToStr(TDateTime value, const TFormatSettings& settings) {
  return FormatDateTime("c", value, settings);
}

}  // namespace kvshare::inline rtl
