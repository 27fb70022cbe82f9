// Moments in the Christian calendar.
#pragma once

#include <compare>

#include "kvshare/export.h"
#include "kvshare/rtl/types.h"

namespace kvshare::inline rtl {

// Days since 30 December 1899, 00:00. The integer part is the day, the magnitude of the fraction
// the time of day: -1.25 is 29 December 1899, 06:00, and -0.25 and 0.25 are the same moment. Always
// the Christian calendar; Buddhist-era years exist only in text.
class TDateTime {
 public:
  constexpr TDateTime() = default;
  explicit constexpr TDateTime(double days) : days_(days) {}

  constexpr double Days() const { return days_; }

  // Compares the numbers; before 1899-12-30 a later time of day is a smaller number.
  constexpr auto operator<=>(const TDateTime&) const = default;

  friend constexpr TDateTime operator+(TDateTime a, double days) {
    return TDateTime(a.days_ + days);
  }
  friend constexpr TDateTime operator-(TDateTime a, double days) {
    return TDateTime(a.days_ - days);
  }
  friend constexpr double operator-(TDateTime a, TDateTime b) { return a.days_ - b.days_; }

 private:
  double days_ = 0;
};

// A moment taken apart. Year 0, month 0, day 0 stand for every moment before 0001-01-01.
struct TDateParts {
  Word Year = 0;   // 0, or 1 .. 9999; past 9999-12-31 it goes on to 65535, then from 0 again
  Word Month = 0;  // 1 .. 12
  Word Day = 0;    // 1 .. 31
  bool operator==(const TDateParts&) const = default;
};
struct TTimeParts {
  Word Hour = 0;         // 0 .. 23
  Word Minute = 0;       // 0 .. 59
  Word Second = 0;       // 0 .. 59
  Word MilliSecond = 0;  // 0 .. 999
  bool operator==(const TTimeParts&) const = default;
};

KVSHARE_API bool IsLeapYear(int year);
// Days of a month, 28 .. 31; 0 for a month that is not 1 .. 12.
KVSHARE_API int DaysInMonth(int year, int month);

// Year 1 .. 9999, month 1 .. 12, day 1 .. the month's length.
// EncodeDate throws EConvertError `Invalid argument to date encode`; TryEncodeDate gives false.
KVSHARE_API TDateTime EncodeDate(int year, int month, int day);
KVSHARE_API bool TryEncodeDate(int year, int month, int day, TDateTime& date);

// Hour 0 .. 23, minute and second 0 .. 59, millisecond 0 .. 999; 24:00 is refused.
// EncodeTime throws EConvertError `Invalid argument to time encode`; TryEncodeTime gives false.
KVSHARE_API TDateTime EncodeTime(int hour, int minute, int second, int milliSecond);
KVSHARE_API bool TryEncodeTime(int hour, int minute, int second, int milliSecond, TDateTime& time);

// Decoding rounds to the nearest millisecond, a tie to the even one, before it splits, so that
// 23:59:59.9996 is 00:00:00.000 of the next day for the date and for the time alike.
// All decoders throw EInvalidOp for NaN, infinity and |days| >= 2^63 / 86400000, and EIntOverflow
// for a day number of magnitude 2^32 and more. Smaller ones are counted in 32 bits and wrap; what
// wraps to a day before 0001-01-01 has no date either.
KVSHARE_API TDateParts DecodeDate(TDateTime moment);
KVSHARE_API TTimeParts DecodeTime(TDateTime moment);
struct TDateTimeParts {
  TDateParts Date;
  TTimeParts Time;
  int WeekDay = 0;  // 1 = Sunday .. 7 = Saturday
};
KVSHARE_API TDateTimeParts DecodeDateTime(TDateTime moment);

// 1 = Sunday .. 7 = Saturday, also before 0001-01-01, where the weeks are counted backward.
KVSHARE_API int DayOfWeek(TDateTime moment);

// The local clock: the whole day, the time of day alone, both (milliseconds kept).
KVSHARE_API TDateTime Date();
KVSHARE_API TDateTime Time();
KVSHARE_API TDateTime Now();

// The integer part and the fraction with its sign: of -1.25 they are -1 and -0.25. Of infinity the
// fraction, of NaN both are NaN, which every decoder refuses.
KVSHARE_API TDateTime DateOf(TDateTime moment);
KVSHARE_API TDateTime TimeOf(TDateTime moment);

// A whole day and a time of day put together, the time's magnitude added away from zero before
// 1899-12-30: day -1 and 06:00 are -1.25.
KVSHARE_API TDateTime JoinDateTime(TDateTime date, TDateTime time);

}  // namespace kvshare::inline rtl
