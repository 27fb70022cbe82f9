#include "kvshare/rtl/localtime.h"

#include <cstdint>

#include "kvshare/os/win32/handle.h"
#include "kvshare/rtl/calendar.h"

namespace kvshare::inline rtl {

namespace {

// Of the system's clock, which counts from 1601-01-01.
constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kSecondsTo1970 = 11'644'473'600;
constexpr std::int64_t kLastSecond = INT64_MAX / kTicksPerSecond - kSecondsTo1970;

FILETIME FileTimeOf(std::int64_t moment) {
  const auto ticks = static_cast<std::uint64_t>((moment + kSecondsTo1970) * kTicksPerSecond);
  return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// All zero for a moment that the system's clock does not reach.
SYSTEMTIME LocalSystemTime(std::int64_t moment) {
  if (moment < -kSecondsTo1970 || moment > kLastSecond) return {};
  const FILETIME ticks = FileTimeOf(moment);
  SYSTEMTIME utc{};
  SYSTEMTIME local{};
  const bool known = FileTimeToSystemTime(&ticks, &utc) != 0 &&
                     SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local) != 0;
  return known ? local : SYSTEMTIME{};
}

int DayOfYear(const SYSTEMTIME& date) {  // 0 is 1 January
  int day = date.wDay - 1;
  for (int month = 1; month < date.wMonth; ++month) day += calendar::MonthLength(date.wYear, month);
  return day;
}

}  // namespace

// Not through the C run-time: that takes a variable TZ, which other tools set in their own way, for
// the time zone, and keeps the zone that was in force when the program began. Whether it is summer
// time is not told.
std::tm LocalTimeOf(std::time_t moment) {
  const SYSTEMTIME local = LocalSystemTime(moment);
  std::tm parts{};
  if (local.wYear == 0) return parts;
  parts.tm_year = local.wYear - 1900;
  parts.tm_mon = local.wMonth - 1;
  parts.tm_mday = local.wDay;
  parts.tm_hour = local.wHour;
  parts.tm_min = local.wMinute;
  parts.tm_sec = local.wSecond;
  parts.tm_wday = local.wDayOfWeek;
  parts.tm_yday = DayOfYear(local);
  parts.tm_isdst = -1;
  return parts;
}

}  // namespace kvshare::inline rtl
