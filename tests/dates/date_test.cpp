#include "kvshare/dates/date.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "kvshare/os/locale.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare {
namespace {

TDateTime Day(int year, int month, int day) {
  return EncodeDate(year, month, day);
}

TEST(Date, ScratchFieldsHoldWhatWasDecodedLast) {
  TKovraDate date;
  EXPECT_EQ(date.Year() + date.Month() + date.Day(), 0);
  EXPECT_EQ(date.Month(Day(2003, 7, 15)), 7);
  EXPECT_EQ(date.Year(), 2003);
  EXPECT_THROW(date.SetKovraDate(TDateTime(std::nan(""))), EInvalidOp);
  EXPECT_EQ(date.Day(), 15) << "a failure leaves them as they were";
  EXPECT_EQ(date.Day(TDateTime(-800'000)), 0) << "before year 1";
}

TEST(Date, ChangeMonth) {
  struct Case {
    TDateTime from;
    std::int8_t delta;
    TDateTime want;
    const char* why;
  };
  const Case kCases[] = {
      {Day(2004, 1, 31), 1, Day(2004, 2, 29), "clamped, leap year"},
      {Day(2003, 1, 31), 1, Day(2003, 2, 28), "clamped"},
      {Day(2003, 3, 31), -1, Day(2003, 2, 28), "back"},
      {Day(2003, 12, 31), 1, Day(2004, 1, 31), "over the year"},
      {Day(2003, 1, 1), -1, Day(2002, 12, 1), "back over the year"},
      {Day(2003, 1, 15), 2, Day(2003, 2, 15), "only the sign counts"},
      {Day(2003, 1, 15), 27, Day(2003, 2, 15), "up to 27"},
      {Day(2003, 1, 15), 29, Day(2003, 3, 15), "29 days from the end of January are in March"},
      {Day(2003, 5, 15), -128, Day(2002, 12, 15), "the greatest step back"},
      {Day(2003, 7, 15) + 0.75, 0, Day(2003, 7, 15), "the time of day is dropped"},
  };
  for (const Case& c : kCases) EXPECT_EQ(TKovraDate::ChangeMonth(c.from, c.delta), c.want) << c.why;
  EXPECT_EQ(TKovraDate::NextMonth(Day(2003, 1, 31)), Day(2003, 2, 28));
  EXPECT_EQ(TKovraDate::PrevMonth(Day(2003, 3, 30)), Day(2003, 2, 28));
  EXPECT_THROW(TKovraDate::NextMonth(Day(9999, 12, 1)), EConvertError);
  EXPECT_THROW(TKovraDate::PrevMonth(Day(1, 1, 1)), EConvertError);
  EXPECT_THROW(TKovraDate::ChangeMonth(TDateTime(-800'000), 0), EConvertError);
}

TEST(Date, Calendar) {
  struct Case {
    int year;
    bool leap;
  };
  for (const Case& c : {Case{1900, false}, Case{2000, true}, Case{2003, false}, Case{2004, true}}) {
    EXPECT_EQ(TKovraDate::IsLeapYear(Day(c.year, 5, 5)), c.leap) << c.year;
    EXPECT_EQ(TKovraDate::DaysOfYear(Day(c.year, 5, 5)), c.leap ? 366 : 365);
    EXPECT_EQ(TKovraDate::DaysOfMonth(Day(c.year, 2, 1)), c.leap ? 29 : 28);
  }
  EXPECT_EQ(TKovraDate::Encodedatedd(2004, 2, 31), Day(2004, 2, 29));
  EXPECT_THROW(TKovraDate::Encodedatedd(2004, 13, 1), EConvertError);
  EXPECT_THROW(TKovraDate::Encodedatedd(2004, 2, 0), EConvertError);
  const int year = DecodeDate(Date()).Year;
  EXPECT_EQ(TKovraDate::FirstOfJanThisYear(), Day(year, 1, 1));
  EXPECT_EQ(TKovraDate::EndYearFromFirstOfJan(), Day(year + 20, 12, 31));
}

TEST(Date, TheEraOfTheMachine) {
  struct Case {
    const char *era, *locale;
    int offset;
  };
  const Case kCases[] = {{"", "th_TH.UTF-8", 543},
                         {"", "en_US.UTF-8", 0},
                         {"543", "C", 543},
                         {"0", "th_TH", 0},
                         {"buddhist", "C", 0}};
  for (const Case& c : kCases) {
    setenv("KVSHARE_ERA", c.era, 1);
    setenv("LC_ALL", c.locale, 1);
    EXPECT_EQ(TKovraDate::YearOffset(), c.offset) << c.era << ' ' << c.locale;
    EXPECT_EQ(os::EraText(), c.offset == 0 ? "" : "พ.ศ."_th);
  }
  unsetenv("KVSHARE_ERA");
  unsetenv("LC_ALL");
}

}  // namespace
}  // namespace kvshare
