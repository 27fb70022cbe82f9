#include <gtest/gtest.h>

#include <string>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/text/strings.h"

namespace kvshare {
namespace {

const TDateTime kDate = EncodeDate(2003, 7, 15);

TEST(TypedDates, StrToKovraDate) {
  struct Case {
    std::string_view text;
    Word offset;
    bool accepted;
    const char* why;
  };
  const Case kCases[] = {
      {"15/07/2546", 543, true, "four digits"},
      {"15-07-46", 543, true, "dashes, two digits lie in 2500"},
      {"2546/07/15", 543, true, "year first"},
      {"15/07/03", 0, true, "two digits lie in 2000"},
      {"15/7/2003", 0, true, "a one-digit month"},
      {" 5/07/2546", 543, true, "two bytes, a blank among them; below"},
      {"15/$7/2546", 543, true, "hexadecimal is a number of the platform"},
      {"15/07/68082", 543, true, "a year is a 16-bit number"},
      {"5/07/2546", 543, false, "a one-digit day reads as a year"},
      {"31/02/2546", 543, false, "no such day"},
      {"15072546", 543, false, "no separators"},
      {"15/07-2546", 543, false, "slashes win, and one is not enough"},
      {"15/07", 543, false, "two parts"},
      {"15/07/2546 ", 543, false, "a blank behind"},
      {"15/07/2546/1", 543, false, "a fourth part"},
      {"15/07/500", 543, false, "before year 1"},
      {"15/65543/2546", 543, false, "a month is not"},
      {"15/ 7/2546", 543, true, "a blank in front of a digit"},
      {"15/07/254:", 543, false, "the byte behind 9"},
      {"15/07/25/6", 543, false, "a slash among the year's digits"},
      {"//", 543, false, "empty parts"},
      {"", 543, false, "nothing"},
  };
  for (const Case& c : kCases) {
    TDateTime date(1);
    EXPECT_EQ(TKovraDate::StrToKovraDate(c.text, c.offset, date), c.accepted) << c.why;
    EXPECT_EQ(TKovraDate::IsDate(c.text, c.offset), c.accepted) << c.why;
    const TDateTime want = c.text.starts_with(' ') ? EncodeDate(2003, 7, 5) : kDate;
    EXPECT_EQ(date, c.accepted ? want : TDateTime(1)) << c.why;
    EXPECT_EQ(TKovraDate::ActualDate(c.text, c.offset), c.accepted ? want : Date()) << c.why;
  }
  std::string long_text(1 << 20, '9');
  long_text += "/07/2546";
  EXPECT_FALSE(TKovraDate::IsDate(long_text, 543));
}

// A month of three digits leaves the usual form, so that both roads meet on every date and on every
// pair of numbers that is no date.
TEST(TypedDates, TheUsualFormReadsAsAnyOther) {
  for (int n = 0; n < 100 * 100 * 40; ++n) {
    const int year = n / 10'000 * 257 % 10'000;
    const int day = n % 100;
    const int month = n / 100 % 100;
    const std::string text = Format("%.2d/%.2d/%.4d", {day, month, year});
    const std::string other = Format("%.2d/%.3d/%.4d", {day, month, year});
    const Word offset = n % 2 == 0 ? 543 : 0;
    TDateTime date(1);
    TDateTime same(1);
    const bool read = TKovraDate::StrToKovraDate(text, offset, date);
    ASSERT_EQ(TKovraDate::StrToKovraDate(other, offset, same), read) << text;
    ASSERT_EQ(date, same) << text;
  }
}

TEST(TypedDates, ForceStrToKovraDate) {
  struct Case {
    std::string_view text;
    int currentYear;
    bool accepted;
    const char* why;
  };
  const Case kCases[] = {
      {"15/07/2546", 2003, true, "Buddhist era"},
      {"15/07/2003", 2003, true, "Christian"},
      {"15/07/2003", 2103, true, "a hundred years off"},
      {"15/07/3089", 2003, true, "543 added twice"},
      {"15/07/2546", 1546, true, "a thousand years off"},
      {"15/007/02003", 2003, true, "any number of digits"},
      {"15/07/46", 2003, false, "a two-digit year is more than a thousand off"},
      {"15-07-2546", 2003, false, "only slashes"},
      {"2546/07/15", 2003, false, "the day comes first"},
      {"31/02/2546", 2003, false, "no such day"},
      {"15/07/-2147483648", 2003, false, "the least number"},
  };
  for (const Case& c : kCases) {
    TDateTime date(1);
    EXPECT_EQ(TKovraDate::ForceStrToKovraDateAsOf(c.text, c.currentYear, date), c.accepted)
        << c.why;
    EXPECT_EQ(date, c.accepted ? kDate : TDateTime(1)) << c.why;
  }
  TDateTime today;
  EXPECT_TRUE(TKovraDate::ForceStrToKovraDate(TKovraDate::ShowDate(Date(), 543), today));
  EXPECT_EQ(today, Date());
}

TEST(TypedDates, Stamps) {
  EXPECT_EQ(TKovraDate::KovraStrToDateTime("200307151405"),
            JoinDateTime(kDate, EncodeTime(14, 5, 0, 0)));
  EXPECT_EQ(TKovraDate::KovraStrToTime("????????1405"), EncodeTime(14, 5, 0, 0));
  EXPECT_EQ(TKovraDate::KovraStrToDate("20030715 and more"), kDate);
  EXPECT_EQ(TKovraDate::yyyymmddToDate("2003-07/15"), kDate);
  for (const std::string_view bad : {"", "200307", "20030732", "2oo30715", "00000715"}) {
    EXPECT_THROW(TKovraDate::KovraStrToDate(bad), EConvertError) << bad;
  }
  EXPECT_THROW(TKovraDate::KovraStrToTime("200307152405"), EConvertError);
  EXPECT_THROW(TKovraDate::KovraStrToDateTime("20030715"), EConvertError);
  EXPECT_EQ(TKovraDate::BStrPos("/", "15/07/2546", 2), 6);
  EXPECT_EQ(TKovraDate::BStrPos("/", "15/07/2546", 3), 0);
}

TEST(TypedDates, EveryDayReadsBackInBothEras) {
  const TDateTime last = EncodeDate(9456, 12, 31);  // of the last four-digit Buddhist-era year
  for (TDateTime day = EncodeDate(1, 1, 1); day <= last; day = day + 11) {
    for (const Word offset : {Word{0}, Word{543}}) {
      TDateTime read;
      const bool low = DecodeDate(day).Year + offset < 100;  // such a year is one of a century
      ASSERT_TRUE(TKovraDate::StrToKovraDate(TKovraDate::ShowDate(day, offset), offset, read));
      ASSERT_TRUE(low || read == day) << day.Days();
    }
    ASSERT_EQ(TKovraDate::KovraStrToDate(TKovraDate::yyyymmdd19(day)), day);
  }
}

}  // namespace
}  // namespace kvshare
