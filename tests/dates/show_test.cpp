#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {
namespace {

class DateTexts : public testing::Test {
 protected:
  DateTexts() { FormatSettings = TFormatSettings::UsEnglish(); }
  const TDateTime moment_ = JoinDateTime(EncodeDate(2003, 7, 15), EncodeTime(14, 5, 9, 876));
};

TEST_F(DateTexts, OfOneMoment) {
  struct Case {
    std::string got;
    std::string_view want;
  };
  using D = TKovraDate;
  const Case kCases[] = {
      {D::ShowDate(moment_, 543), "15/07/2546"},
      {D::ShowDate(moment_, 0), "15/07/2003"},
      {D::ShowFullDate(moment_, 543), "อ. 15/07/2546"_th},
      {D::ShowFullDate(moment_ + 2, 0), "พฤ 17/07/2003"_th},
      {D::ShowDatetime(moment_, 543), "15/07/2546 14:05"},
      {D::ShowMonthYear(moment_, 543), "July, 2546"},
      {D::ShowFullMonthYear(moment_, 543, 0), "กรกฎาคม, 2546"_th},
      {D::ShowFullMonthYear(moment_, 0, 1), "JULY, 2003"},
      {D::ShowFullMonthYear(moment_, -2003, 7), "JULY, 0"},
      {D::ShowFullMonthYear(TDateTime(-800'000), 543, 0), ", 543"},
      {D::ShowTime(moment_), "14:05"},
      {D::MonthName(12), "December"},
      {D::yymmdd19(moment_), "030715"},
      {D::ddmmyy19(moment_), "150703"},
      {D::yymmdd25(moment_), "460715"},
      {D::yyyymmdd19(moment_), "20030715"},
      {D::yyyymmdd25(moment_), "25460715"},
      {D::ddmmyyyy19(moment_), "15072003"},
      {D::ddmmyyyy25(moment_), "15072546"},
      {D::mmddyyyy19(moment_), "07152003"},
      {D::ddmmyyyysl25(moment_), "15/07/2546"},
      {D::mmddyyyysl19(moment_), "07/15/2003"},
      {D::KovraDateTimeToStr(moment_), "200307151405"},
      {D::KovraTimeStampStr(moment_), "2003071514050987"},
      {D::ShowDate(TDateTime(-800'000), 543), "00/00/0543"},
      {D::ddmmyyyy25(EncodeDate(9999, 12, 31)), "311210542"},
      {D::yymmdd25(EncodeDate(9999, 12, 31)), "541231"},
      {D::yyyymmdd19(EncodeDate(5, 1, 2)), "00050102"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.got, c.want);
  EXPECT_THROW(D::MonthName(13), EConvertError);
  EXPECT_THROW(D::ShowMonthYear(TDateTime(-800'000), 543), EConvertError);
}

TEST_F(DateTexts, SeparatorsAndNamesAreTheSettings) {
  FormatSettings = TFormatSettings::Thai();
  EXPECT_EQ(TKovraDate::ShowMonthYear(moment_, 543), "กรกฎาคม, 2546"_th);
  FormatSettings.DateSeparator = '-';
  FormatSettings.TimeSeparator = '\0';
  EXPECT_EQ(TKovraDate::ShowDatetime(moment_, 543), "15-07-2546 1405");
  EXPECT_EQ(TKovraDate::ddmmyyyysl25(moment_), "15/07/2546") << "a literal slash";
}

TEST_F(DateTexts, WhatCannotBeDecodedShowsToday) {
  for (const double days : {std::nan(""), HUGE_VAL, 1e12, 5e9}) {
    const TDateTime bad(days);
    std::string shown;
    TKovraDate::AppendShowDate(shown, bad, 543);
    EXPECT_EQ(shown, TKovraDate::ShowDate(Date(), 543)) << days;
    EXPECT_THROW(TKovraDate::ShowDatetime(bad, 543), EExternal);
    EXPECT_THROW(TKovraDate::yyyymmdd25(bad), EExternal);
  }
}

// The road of the formatter: its text with the year replaced.
std::string DescribedShowDate(TDateTime moment, int offset) {
  const std::string text = FormatDateTime("dd/mm/yyyy", moment);
  return text.substr(0, 6) + TKovraDate::StrZero(StrToInt(text.substr(6)) + offset, 4, 0);
}

std::string DescribedLayout(TDateTime moment, std::string_view parts, int offset) {
  const TDateParts date = DecodeDate(moment);
  const std::string year = TKovraDate::StrZero(date.Year + offset, 4, 0);
  std::string text;
  for (const char part : parts) {
    if (part == 'd') text += TKovraDate::StrZero(date.Day, 2, 0);
    if (part == 'm') text += TKovraDate::StrZero(date.Month, 2, 0);
    if (part == 'Y') text += year;
    if (part == 'y') text += Copy(year, 3, 2);
  }
  return text;
}

TEST_F(DateTexts, EveryDayIsAsDescribed) {
  using D = TKovraDate;
  const TDateTime last = EncodeDate(9999, 12, 31);
  for (TDateTime day = EncodeDate(1, 1, 1); day <= last; day = day + 37) {
    for (const int offset : {0, 543, 65535}) {
      ASSERT_EQ(D::ShowDate(day, static_cast<Word>(offset)), DescribedShowDate(day, offset));
    }
    ASSERT_EQ(D::yymmdd25(day), DescribedLayout(day, "ymd", 543));
    ASSERT_EQ(D::ddmmyy19(day), DescribedLayout(day, "dmy", 0));
    ASSERT_EQ(D::yyyymmdd25(day), DescribedLayout(day, "Ymd", 543));
    ASSERT_EQ(D::mmddyyyy19(day), DescribedLayout(day, "mdY", 0));
  }
}

TEST_F(DateTexts, EveryMinuteIsAsDescribed) {
  // Every minute of the day, each on another day and a little before and after the full minute.
  for (int minute = 0; minute < 24 * 60; ++minute) {
    for (const double ms : {0.0, 29'999.5, 59'999.4, 59'999.6}) {
      const TDateTime moment(minute * 25.0 + (minute + ms / 60'000) / (24 * 60));
      const std::string time = FormatDateTime("hh:nn", moment);
      ASSERT_EQ(TKovraDate::ShowTime(moment), time);
      ASSERT_EQ(TKovraDate::ShowDatetime(moment, 543), DescribedShowDate(moment, 543) + " " + time);
    }
  }
}

TEST_F(DateTexts, StrZero) {
  struct Case {
    double value;
    int width, decimals;
    std::string_view want;
  };
  const Case kCases[] = {
      {7, 2, 0, "07"},          {12345, 4, 0, "12345"},    {-5, 4, 0, "-005"},
      {12.5, 8, 2, "00012.50"}, {-12.5, 8, 2, "-0012.50"}, {0.999, 5, 2, "00.00"},
      {-0.25, 6, 2, "000.25"},  {2546.9, 4, -1, "02546"},
  };
  for (const Case& c : kCases) EXPECT_EQ(TKovraDate::StrZero(c.value, c.width, c.decimals), c.want);
  EXPECT_THROW(TKovraDate::StrZero(1e19, 4, 0), EInvalidOp);
  EXPECT_THROW(TKovraDate::StrZero(1, -5, 0), EConvertError);
}

}  // namespace
}  // namespace kvshare
