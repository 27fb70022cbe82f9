// The arithmetic of the calendar: days and milliseconds as integers, for the routines that take
// moments apart and put them together.
// Internal header.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::inline rtl::calendar {  // NOLINT(modernize-concat-nested-namespaces): it is

inline constexpr std::uint32_t kMsPerDay = 86'400'000;

// The calendar counts 0001-01-01 as day 1; this is day 0 of TDateTime, 1899-12-30, a Saturday.
inline constexpr std::int32_t kDayOfZero = 693'594;

inline constexpr int kDaysPerEra = 146'097;  // 400 years
// Eras begin on 1 March, so that 29 February ends a year; the first on 0000-03-01, day -305.
inline constexpr int kDaysBeforeEras = 305;

constexpr bool IsLeap(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int MonthLength(int year, int month) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return kLengths[month - 1] + (month == 2 && IsLeap(year) ? 1 : 0);
}

// After Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms".
constexpr std::int32_t DayNumber(int year, int month, int day) {  // a valid date, year 1 .. 9999
  const int y = month <= 2 ? year - 1 : year;                     // [0, 9999]
  const int yearOfEra = y % 400;                                  // [0, 399]
  const int marchMonth = (month + 9) % 12;                        // [0, 11]
  const int dayOfYear = (153 * marchMonth + 2) / 5 + day - 1;     // [0, 365]
  const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return y / 400 * kDaysPerEra + dayOfEra - kDaysBeforeEras;  // [1, 3652059]
}

// After Cassio Neri and Lorenz Schneider, "Euclidean affine functions and their application to
// calendar algorithms" (2022): multiplied by 2^32 / 1461, a number of quarter days has the years in
// its high half and the rest of the year in its low one.
constexpr TDateParts DateOfDay(std::int32_t number) {
  if (number <= 0) return {};
  const std::uint64_t quarters =
      4 * (static_cast<std::uint64_t>(number) + kDaysBeforeEras) + 3;       // < 2^33 + 1224
  const auto century = static_cast<std::uint32_t>(quarters / kDaysPerEra);  // [0, 58797]
  const auto dayOfCentury = static_cast<std::uint32_t>(quarters % kDaysPerEra) / 4;  // [0, 36524]
  const std::uint64_t product =
      std::uint64_t{2'939'745} * (4 * dayOfCentury + 3);                 // [8819235, 2^32 * 100)
  const auto yearOfCentury = static_cast<std::uint32_t>(product >> 32);  // [0, 99]
  const std::uint32_t dayOfYear = static_cast<std::uint32_t>(product) / 2'939'745 / 4;  // [0, 365]
  const std::uint32_t months = 2141 * dayOfYear + 197'913;  // month << 16 | rest, March is 3
  const std::uint32_t nextYear = dayOfYear >= 306 ? 1 : 0;  // January and February
  return {static_cast<Word>(100 * century + yearOfCentury + nextYear),
          static_cast<Word>((months >> 16) - 12 * nextYear),
          static_cast<Word>((months & 0xFFFF) / 2141 + 1)};
}

static_assert(DayNumber(1, 1, 1) == 1 && DayNumber(1899, 12, 30) == kDayOfZero);
static_assert(DayNumber(9999, 12, 31) == kDayOfZero + 2'958'465);
static_assert(DateOfDay(kDayOfZero + 36'526) == TDateParts{2000, 1, 1});

constexpr int WeekDayOf(std::int32_t number) {
  const int rest = number % 7;  // [-6, 6]
  return (rest < 0 ? rest + 7 : rest) + 1;
}

// |days| in milliseconds, to the nearest, a tie to the even one. Floating point would round twice:
// 86400000 is 84375 * 2^10, and the significand's 53 bits times 84375 take 70.
constexpr std::uint64_t ExactMilliseconds(double days) {
  const auto bits = std::bit_cast<std::uint64_t>(days);
  const int exponent = static_cast<int>(bits >> 52 & 0x7FF) - 1023;  // |days| < 2^(exponent + 1)
  if (exponent > 36) throw EInvalidOp();                             // NaN and infinity too
  if (exponent < -28) return 0;                                      // below a third of one
  constexpr std::uint64_t kOne = std::uint64_t{1} << 52;
  const UInt128 product = UInt128{(bits & (kOne - 1)) | kOne} * 84'375;  // < 2^70
  const int shift = 42 - exponent;                                       // [6, 70]
  const auto whole = static_cast<std::uint64_t>(product >> shift);       // < 2^64
  const UInt128 rest = product - (UInt128{whole} << shift);
  const UInt128 half = UInt128{1} << (shift - 1);
  const bool up = rest > half || (rest == half && (whole & 1) != 0);
  constexpr std::uint64_t kBeyond = std::uint64_t{1} << 63;
  if (whole >= kBeyond) throw EInvalidOp();
  return whole + (up ? 1 : 0);
}

// The same, faster for what is near a whole millisecond, as every encoded moment is: below 2^22
// days the product is off by less than 2^-4, too little to pass for another's neighbour.
constexpr std::uint64_t Milliseconds(double days) {
  const double magnitude = days < 0 ? -days : days;
  if (!(magnitude < 0x1p22)) return ExactMilliseconds(days);
  const double product = magnitude * kMsPerDay;
  const auto nearest =
      static_cast<std::int64_t>(product + 0.5);  // NOLINT(bugprone-incorrect-roundings): see error
  const double error = product - static_cast<double>(nearest);
  if (error > -0.25 && error < 0.25) return static_cast<std::uint64_t>(nearest);
  return ExactMilliseconds(days);
}
static_assert(Milliseconds(1.25) == 108'000'000 && Milliseconds(-0.0) == 0);
static_assert(Milliseconds(1.0 / 2048) == 42'188 && Milliseconds(-3.0 / 2048) == 126'562);

struct DayAndTime {
  std::int32_t day;    // of the calendar; what it exceeds 32 bits by is lost
  std::uint32_t time;  // milliseconds, [0, kMsPerDay)

  constexpr Word Hour() const { return static_cast<Word>(time / 3'600'000); }
  constexpr Word Minute() const { return static_cast<Word>(time / 60'000 % 60); }
  constexpr Word Second() const { return static_cast<Word>(time / 1000 % 60); }
  constexpr Word MilliSecond() const { return static_cast<Word>(time % 1000); }
};

constexpr DayAndTime Split(TDateTime moment) {
  const std::uint64_t ms = Milliseconds(moment.Days());
  const std::uint64_t days = ms / kMsPerDay;  // < 2^37
  if (days > std::numeric_limits<std::uint32_t>::max()) throw EIntOverflow();
  const auto low = static_cast<std::uint32_t>(days);
  const std::uint32_t number = (moment.Days() < 0 ? 0 - low : low) + kDayOfZero;
  return {static_cast<std::int32_t>(number), static_cast<std::uint32_t>(ms % kMsPerDay)};
}

}  // namespace kvshare::inline rtl::calendar
