#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare {
namespace {

TEST(NumberText, Amounts) {
  struct Case {
    Currency amount;
    const char* want;
  };
  constexpr Case kCases[] = {
      {0_baht, "0"},
      {1234.5_baht, "1234.5"},
      {100_baht, "100"},
      {-0.0001_baht, "-0.0001"},
      {-0.01_baht, "-0.01"},
      {1000000.001_baht, "1000000.001"},
      {Currency::Max(), "922337203685477.5807"},
      {Currency::Min(), "-922337203685477.5808"},
  };
  const TFormatSettings us = TFormatSettings::UsEnglish();
  for (const Case& c : kCases) EXPECT_EQ(CurrToStr(c.amount, us), c.want);

  TFormatSettings comma = us;
  comma.DecimalSeparator = ',';
  std::string out = "x";
  AppendCurrToStr(out, 1.25_baht, comma);
  EXPECT_EQ(out, "x1,25");
}

TEST(NumberText, Reals) {
  struct Case {
    double value;
    const char* want;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {0.1, "0.1"},
      {0.0001, "0.0001"},
      {1e-5, "1E-5"},
      {-1e15, "-1E15"},
      {999999999999999, "999999999999999"},
      {1.0 / 3, "0.333333333333333"},
      {-0.0, "0"},
      {0.1 + 0.2, "0.3"},
      {5e-324, "4.94065645841247E-324"},
      {std::numeric_limits<double>::max(), "1.79769313486232E308"},
      {-infinity, "-INF"},
      {std::numeric_limits<double>::quiet_NaN(), "NAN"},
  };
  for (const Case& c : cases) EXPECT_EQ(FloatToStr(c.value), c.want);
}

TEST(NumberText, IntegersAndBooleans) {
  EXPECT_EQ(IntToStr(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(BoolToStr(true) + BoolToStr(false), "-10");
  EXPECT_EQ(BoolToStr(true, true) + BoolToStr(false, true), "TrueFalse");
}

TEST(FormatSettings, FollowTheUsersLocale) {
  const auto use = [](const char* all, const char* time, const char* lang) {
    setenv("LC_ALL", all, 1);
    setenv("LC_TIME", time, 1);
    setenv("LANG", lang, 1);
    GetFormatSettings();
    return FormatSettings.CurrencyString;
  };
  EXPECT_EQ(use("th_TH.UTF-8", "en_US", "en_US"), "฿"_th);
  EXPECT_EQ(use("", "TH", "C"), "฿"_th);
  EXPECT_EQ(use("", "C", "th_TH"), "$");
  EXPECT_EQ(use("", "", "t"), "$");
  EXPECT_EQ(use("", "", "th"), "฿"_th);

  const TFormatSettings thai = FormatSettings;
  EXPECT_EQ(thai.ShortDateFormat + '|' + thai.LongDateFormat, "d/M/yyyy|d MMMM yyyy");
  EXPECT_EQ(thai.ShortTimeFormat + '|' + thai.LongTimeFormat, "h:mm|h:mm:ss");
  EXPECT_EQ(thai.NegCurrFormat, 1);
  EXPECT_EQ(thai.ShortMonthNames[11] + thai.LongMonthNames[1], "ธ.ค.กุมภาพันธ์"_th);
  EXPECT_EQ(thai.ShortDayNames[4] + thai.LongDayNames[0], "พฤ.อาทิตย์"_th);

  const TFormatSettings us = TFormatSettings::ForLocale("C");
  EXPECT_EQ(us.ShortDateFormat + '|' + us.LongDateFormat, "M/d/yyyy|dddd, MMMM dd, yyyy");
  EXPECT_EQ(us.ShortTimeFormat + '|' + us.LongTimeFormat, "h:mm AMPM|h:mm:ss AMPM");
  EXPECT_EQ(us.ShortMonthNames[11] + us.LongMonthNames[1], "DecFebruary");
  EXPECT_EQ(us.ShortDayNames[4] + us.LongDayNames[0], "ThuSunday");
}

}  // namespace
}  // namespace kvshare
