#include "kvshare/rtl/datetime.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

#include "kvshare/rtl/exceptions.h"

namespace kvshare {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(DateTime, EveryDayOfTheCalendarThereAndBack) {
  using namespace std::chrono;
  const sys_days zero = year(1899) / 12 / 30;
  const sys_days last = year(9999) / 12 / 31;
  double number = -693593;
  for (sys_days day = year(1) / 1 / 1; day <= last; day += days(1), ++number) {
    const year_month_day ymd = day;
    const TDateParts parts{static_cast<Word>(int(ymd.year())),
                           static_cast<Word>(unsigned(ymd.month())),
                           static_cast<Word>(unsigned(ymd.day()))};
    const TDateTime moment = EncodeDate(parts.Year, parts.Month, parts.Day);
    ASSERT_EQ(moment.Days(), number);
    ASSERT_EQ(DaysInMonth(parts.Year, parts.Month),
              static_cast<int>(unsigned((ymd.year() / ymd.month() / std::chrono::last).day())));
    ASSERT_EQ(IsLeapYear(parts.Year), ymd.year().is_leap());
    ASSERT_EQ((day - zero).count(), number);
    ASSERT_EQ(DecodeDate(moment), parts) << number;
    ASSERT_EQ(DayOfWeek(moment), static_cast<int>(weekday(day).c_encoding()) + 1) << number;
  }
  EXPECT_EQ(number, 2958466);
  EXPECT_EQ(DaysInMonth(2000, 0), 0);
  EXPECT_EQ(DaysInMonth(2000, 13), 0);
}

TEST(DateTime, EncodingRefusesWhatTheCalendarLacks) {
  constexpr int kBadDates[][3] = {{0, 1, 1},     {10000, 1, 1}, {-1, 1, 1},    {2003, 0, 1},
                                  {2003, 13, 1}, {2003, 1, 0},  {2003, 1, 32}, {2003, 2, 29},
                                  {1900, 2, 29}, {2003, 4, 31}, {2003, 1, -1}};
  for (const auto& [y, m, d] : kBadDates) {
    TDateTime kept(7);
    EXPECT_FALSE(TryEncodeDate(y, m, d, kept)) << y << '-' << m << '-' << d;
    EXPECT_EQ(kept, TDateTime(7));
  }
  constexpr int kBadTimes[][4] = {{24, 0, 0, 0}, {-1, 0, 0, 0}, {0, 60, 0, 0},   {0, -1, 0, 0},
                                  {0, 0, 60, 0}, {0, 0, -1, 0}, {0, 0, 0, 1000}, {0, 0, 0, -1}};
  for (const auto& [h, n, s, z] : kBadTimes) {
    TDateTime kept(7);
    EXPECT_FALSE(TryEncodeTime(h, n, s, z, kept)) << h << ':' << n << ':' << s << '.' << z;
    EXPECT_EQ(kept, TDateTime(7));
  }
  const auto says = [](std::string_view text) {
    return testing::ThrowsMessage<EConvertError>(testing::StrEq(text));
  };
  EXPECT_THAT([] { EncodeDate(2003, 2, 29); }, says("Invalid argument to date encode"));
  EXPECT_THAT([] { EncodeTime(24, 0, 0, 0); }, says("Invalid argument to time encode"));
}

TEST(DateTime, Decoding) {
  struct Case {
    double days;
    TDateParts date;
    TTimeParts time;
    int weekDay;
    const char* why;
  };
  constexpr double kMs = 1.0 / 86'400'000;
  constexpr Case kCases[] = {
      {0, {1899, 12, 30}, {}, 7, "a Saturday"},
      {-0.25, {1899, 12, 30}, {6, 0, 0, 0}, 7, "the magnitude of the fraction is the time"},
      {-1.25, {1899, 12, 29}, {6, 0, 0, 0}, 6, "the day is cut toward zero"},
      {37817.75, {2003, 7, 15}, {18, 0, 0, 0}, 3, "a Tuesday"},
      {37818 - 0.6 * kMs, {2003, 7, 15}, {23, 59, 59, 999}, 3, "below half a millisecond"},
      {37818 - 0.4 * kMs, {2003, 7, 16}, {}, 4, "date and time round together"},
      {-1 - (1 - 0.4 * kMs), {1899, 12, 28}, {}, 5, "away from zero before the first day"},
      {1.0 / 2048, {1899, 12, 30}, {0, 0, 42, 188}, 7, "42187.5 ms to the even one above"},
      {3.0 / 2048, {1899, 12, 30}, {0, 2, 6, 562}, 7, "126562.5 ms to the even one below"},
      {0.4 * kMs, {1899, 12, 30}, {}, 7, "nothing"},
      {1e-300, {1899, 12, 30}, {}, 7, "less"},
      {-693593, {1, 1, 1}, {}, 2, "the first day"},
      {-693594, {}, {}, 1, "no date before it"},
      {-693595.5, {}, {12, 0, 0, 0}, 7, "but a time, and the week counted backward"},
      {2958466, {10000, 1, 1}, {}, 7, "years go on"},
      {23936166 - 693594, {65535, 12, 31}, {}, 3, "to the last of 16 bits"},
      {23936167 - 693594, {0, 1, 1}, {}, 4, "and wrap"},
      {2147483647.0 - 693594, {46907, 7, 11}, {}, 2, "the last day of 32 bits"},
      {2147483648.0 - 693594, {}, {}, 6, "wraps to a day without a date"},
      {4294967295.0, {1899, 12, 29}, {}, 6, "wraps all around"},
      {-4294967295.0, {1899, 12, 31}, {}, 1, "and the other way"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    const TDateTimeParts parts = DecodeDateTime(TDateTime(c.days));
    EXPECT_EQ(parts.Date, c.date) << parts.Date.Year << '-' << parts.Date.Month << '-'
                                  << parts.Date.Day;
    EXPECT_EQ(parts.Time, c.time);
    EXPECT_EQ(parts.WeekDay, c.weekDay);
    EXPECT_EQ(DecodeDate(TDateTime(c.days)), c.date);
    EXPECT_EQ(DecodeTime(TDateTime(c.days)), c.time);
    EXPECT_EQ(DayOfWeek(TDateTime(c.days)), c.weekDay);
  }
}

TEST(DateTime, DecodingRefusesWhatIsNoMoment) {
  for (const double bad : {std::nan(""), kInfinity, -kInfinity, 1e300, 0x1p63 / 86'400'000 + 1}) {
    EXPECT_THROW(DecodeDate(TDateTime(bad)), EInvalidOp) << bad;
    EXPECT_THROW(DayOfWeek(TDateTime(-bad)), EInvalidOp) << bad;
  }
  for (const double bad : {4294967296.0, -4294967296.0, 0x1p63 / 86'400'000 - 1}) {
    EXPECT_THROW(DecodeTime(TDateTime(bad)), EIntOverflow) << bad;
  }
}

// 64 bits of significand hold each product here without rounding it, as the factors need 62.
TEST(DateTime, MillisecondsAreRoundedOnce) {
  std::mt19937_64 random(4);
  for (int i = 0; i < 200'000; ++i) {
    const double days = std::ldexp(static_cast<double>(random() >> 19), -24 - i % 20);
    const auto ms = std::llrint(static_cast<long double>(days) * 86'400'000);
    const TDateTime moment(days);
    const TTimeParts time = DecodeTime(moment);
    ASSERT_EQ(((time.Hour * 60 + time.Minute) * 60 + time.Second) * 1000 + time.MilliSecond,
              ms % 86'400'000)
        << days;
    ASSERT_EQ(DayOfWeek(moment), (ms / 86'400'000 + 693'594) % 7 + 1) << days;
  }
}

TEST(DateTime, EveryMillisecondThereAndBack) {
  for (int ms = 0; ms < 86'400'000; ms += 997) {
    const TTimeParts time{static_cast<Word>(ms / 3'600'000), static_cast<Word>(ms / 60'000 % 60),
                          static_cast<Word>(ms / 1000 % 60), static_cast<Word>(ms % 1000)};
    const TDateTime encoded = EncodeTime(time.Hour, time.Minute, time.Second, time.MilliSecond);
    for (const double day : {-693593.0, -1.0, 0.0, 37817.0, 2958465.0}) {
      ASSERT_EQ(DecodeTime(JoinDateTime(TDateTime(day), encoded)), time) << day << ' ' << ms;
    }
  }
}

TEST(DateTime, PartsKeepTheirSign) {
  EXPECT_EQ(DateOf(TDateTime(-1.25)), TDateTime(-1));
  EXPECT_EQ(TimeOf(TDateTime(-1.25)), TDateTime(-0.25));
  EXPECT_EQ(JoinDateTime(TDateTime(-1), TDateTime(0.25)), TDateTime(-1.25));
  EXPECT_EQ(JoinDateTime(TDateTime(-1), TDateTime(-0.25)), TDateTime(-1.25));
  EXPECT_EQ(JoinDateTime(TDateTime(0), TDateTime(0.25)), TDateTime(0.25));
}

TEST(DateTime, ClockIsLocal) {
  ::setenv("TZ", "ICT-7", 1);
  ::tzset();
  const std::chrono::duration<double, std::ratio<86'400>> sinceEpoch =
      std::chrono::system_clock::now().time_since_epoch();
  const TDateTime now = Now();
  EXPECT_NEAR(now.Days(), 25569 + sinceEpoch.count() + 7.0 / 24, 5.0 / 86'400);
  const TDateTime date = Date();
  const TDateTime time = Time();
  if (DateOf(Now()) == DateOf(now)) {
    EXPECT_EQ(date, DateOf(now));
    EXPECT_NEAR(time.Days(), TimeOf(now).Days(), 5.0 / 86'400);
  }
  ::unsetenv("TZ");
  ::tzset();
}

}  // namespace
}  // namespace kvshare
