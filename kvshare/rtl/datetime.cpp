#include "kvshare/rtl/datetime.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>

#include "kvshare/rtl/calendar.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/localtime.h"

namespace kvshare::inline rtl {

namespace {

TTimeParts TimeOfDay(const calendar::DayAndTime& split) {
  return {split.Hour(), split.Minute(), split.Second(), split.MilliSecond()};
}

struct LocalClock {
  TDateTime date, time;
};

LocalClock ReadLocalClock() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::floor<milliseconds>(std::chrono::system_clock::now());
  const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
  const std::time_t stamp = std::chrono::system_clock::to_time_t(seconds);
  const std::tm local = LocalTimeOf(stamp);
  const int second = std::min(local.tm_sec, 59);  // a leap second has no place in the day
  return {EncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
          EncodeTime(local.tm_hour, local.tm_min, second,
                     static_cast<int>((now - seconds) / milliseconds(1)))};
}

}  // namespace

bool IsLeapYear(int year) {
  return calendar::IsLeap(year);
}

int DaysInMonth(int year, int month) {
  return calendar::MonthLength(year, month);
}

bool TryEncodeDate(int year, int month, int day, TDateTime& date) {
  if (year < 1 || year > 9999 || day < 1 || day > calendar::MonthLength(year, month)) return false;
  date = TDateTime(calendar::DayNumber(year, month, day) - calendar::kDayOfZero);
  return true;
}

TDateTime EncodeDate(int year, int month, int day) {
  TDateTime date;
  if (!TryEncodeDate(year, month, day, date)) {
    throw EConvertError("Invalid argument to date encode");
  }
  return date;
}

bool TryEncodeTime(int hour, int minute, int second, int milliSecond, TDateTime& time) {
  const auto within = [](int value, int limit) { return value >= 0 && value < limit; };
  if (!within(hour, 24) || !within(minute, 60) || !within(second, 60) ||
      !within(milliSecond, 1000)) {
    return false;
  }
  const int ms = ((hour * 60 + minute) * 60 + second) * 1000 + milliSecond;  // < kMsPerDay
  time = TDateTime(static_cast<double>(ms) / calendar::kMsPerDay);
  return true;
}

TDateTime EncodeTime(int hour, int minute, int second, int milliSecond) {
  TDateTime time;
  if (!TryEncodeTime(hour, minute, second, milliSecond, time)) {
    throw EConvertError("Invalid argument to time encode");
  }
  return time;
}

TDateParts DecodeDate(TDateTime moment) {
  return calendar::DateOfDay(calendar::Split(moment).day);
}

TTimeParts DecodeTime(TDateTime moment) {
  return TimeOfDay(calendar::Split(moment));
}

TDateTimeParts DecodeDateTime(TDateTime moment) {
  const calendar::DayAndTime split = calendar::Split(moment);
  return {calendar::DateOfDay(split.day), TimeOfDay(split), calendar::WeekDayOf(split.day)};
}

int DayOfWeek(TDateTime moment) {
  return calendar::WeekDayOf(calendar::Split(moment).day);
}

TDateTime Date() {
  return ReadLocalClock().date;
}

TDateTime Time() {
  return ReadLocalClock().time;
}

TDateTime Now() {
  const LocalClock clock = ReadLocalClock();
  return JoinDateTime(clock.date, clock.time);
}

TDateTime DateOf(TDateTime moment) {
  return TDateTime(std::trunc(moment.Days()));
}

TDateTime TimeOf(TDateTime moment) {
  return TDateTime(moment.Days() - std::trunc(moment.Days()));
}

TDateTime JoinDateTime(TDateTime date, TDateTime time) {
  const double magnitude = std::fabs(time.Days());
  return date.Days() < 0 ? date - magnitude : date + magnitude;
}

}  // namespace kvshare::inline rtl
