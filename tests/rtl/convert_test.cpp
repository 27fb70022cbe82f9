#include "kvshare/rtl/convert.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <span>
#include <string>

#include "formats.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {
namespace {

// Each text is refused with the message that names it, and Try leaves the value as it was.
template <typename Value>
void ExpectRefused(std::span<const std::string_view> texts, std::string_view kind, Value kept,
                   auto convert, auto tryConvert) {
  for (const std::string_view text : texts) {
    Value value = kept;
    EXPECT_FALSE(tryConvert(text, value)) << text;
    EXPECT_EQ(value, kept) << text;
    try {
      convert(text);
      ADD_FAILURE() << text << " is accepted";
    } catch (const EConvertError& e) {
      const std::string want = "'" + std::string(text) + "' is not a valid " + std::string(kind);
      EXPECT_TRUE(e.Message() == want) << e.Message().substr(0, 200);
    }
  }
}

// The conversions with the suite's formats, or others.
auto With(auto convert, const TFormatSettings& formats = SuiteFormats()) {
  return [=](std::string_view text, auto&... value) { return convert(text, value..., formats); };
}

constexpr std::string_view kReal = "floating point value";

// What each conversion refuses.
// clang-format off
constexpr std::string_view kNoIntegers[] = {
    "", " ", "$", "0x", "x", "+", "-", "5 ", "- 5", "--5", "12.5", "1,000", "\t5", "$G", "00x1",
    "$-1", "$100000000", "2147483648", "-2147483649", "99999999999999999999", "1e3",
    std::string_view("5\0", 2), "\xF1"};
constexpr std::string_view kNoNumbers[] = {
    "", " ", "-", "+", "- 1", "E5", "1,000.5", "1 2", "1.5x", "$1F", "1..2", "1.2.3", "\t1", "1\t",
    "1e5.5", "e", "NAN", "INF", "inf", "0x10", "--1", std::string_view("1\0", 2), "1e999999999999",
    "1e400", "-1e309", "\xF1"};
constexpr std::string_view kNoDates[] = {
    "", " ", "15", "15/", "15/07/", "15-07-2003", "31/02/2003", "2003/07/15", "15/07/20033",
    "15/07/2003//", "15/07/2003 x", "/15/07/2003", "15/07//2003", "15 07 2003", "0/7/2003",
    "15/13/2003", "29/02/2003", "15/7/000", "+15/7/2003", "\t15/7/2003", "15/7/2003\xA0"};
constexpr std::string_view kNoTimes[] = {
    "", " ", "pm", "14:", "24:00", "14:60", "14:05:60", "13 pm", "0 am", "2:05 p", "14:05 x",
    "14.5", "14:05:", "14:05:09.", "14:05:09.1000", "am 2 am", "2 am pm", ":05", "-1:00",
    "99999999999", "14:05:09:1"};
// clang-format on

TEST(Convert, Integers) {
  struct Case {
    std::string_view text;
    std::int32_t want;
  };
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  // clang-format off
  constexpr Case kCases[] = {
      {" 5", 5}, {"+5", 5}, {"007", 7}, {"$1F", 31}, {"0x1F", 31}, {"0X1f", 31}, {"x1F", 31},
      {"XfF", 255}, {"-$1F", -31}, {"-0", 0}, {"  -12", -12}, {"$FFFFFFFF", -1}, {"-$1", -1},
      {"0", 0}, {"$80000000", kMin}, {"-$FFFFFFFF", 1}, {"-2147483648", kMin},
      {"2147483647", 2147483647}, {"$0000000000000000000001", 1}
  };
  // clang-format on
  for (const Case& c : kCases) {
    EXPECT_EQ(StrToInt(c.text), c.want) << c.text;
    EXPECT_EQ(StrToIntDef(c.text, 99), c.want) << c.text;
  }
  ExpectRefused(kNoIntegers, "integer value", 7, StrToInt, TryStrToInt);
  EXPECT_EQ(StrToIntDef("5 ", 99), 99);
}

TEST(Convert, Integers64) {
  struct Case {
    std::string_view text;
    std::int64_t want;
  };
  constexpr Case kCases[] = {
      {"$FFFFFFFF", 0xFFFFFFFF},
      {"$FFFFFFFFFFFFFFFF", -1},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
  };
  for (const Case& c : kCases) EXPECT_EQ(StrToInt64(c.text), c.want) << c.text;
  constexpr std::string_view kBeyond[] = {"9223372036854775808", "-9223372036854775809",
                                          "18446744073709551616", "$10000000000000000"};
  ExpectRefused(kBeyond, "integer value", std::int64_t{7}, StrToInt64, TryStrToInt64);
  EXPECT_EQ(StrToInt64Def("$10000000000000000", 99), 99);
  std::int64_t value = 0;
  EXPECT_TRUE(TryStrToInt64(std::string(1 << 20, '0') + "5", value));
  EXPECT_EQ(value, 5);
}

TEST(Convert, RealsAndAmounts) {
  struct Case {
    std::string_view text;
    double real;
    Currency amount;
  };
  // clang-format off
  constexpr Case kCases[] = {
      {"1234.5", 1234.5, 1234.5_baht}, {".5", 0.5, 0.5_baht}, {"5.", 5, 5_baht},
      {"-.5", -0.5, -0.5_baht}, {"1E+3", 1000, 1000_baht}, {" 1.5 ", 1.5, 1.5_baht},
      {".", 0, 0_baht}, {"1e", 1, 1_baht}, {"1e-", 1, 1_baht}, {"5.e2", 500, 500_baht},
      {".e5", 0, 0_baht}, {"-.", 0, 0_baht}, {"+12.5e-1", 1.25, 1.25_baht}, {"-0", 0, 0_baht},
      {"0e999999999999", 0, 0_baht}, {"1e-99999999999999999999", 0, 0_baht},
      {"4.9e-324", 4.9e-324, 0_baht}, {"0.00000000000000000001e21", 10, 10_baht},
      {"12300000000000000000000e-20", 123, 123_baht}
  };
  // clang-format on
  const TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) {
    EXPECT_EQ(StrToFloat(c.text, formats), c.real) << c.text;
    EXPECT_EQ(StrToCurr(c.text, formats), c.amount) << c.text;
  }
  ExpectRefused(kNoNumbers, kReal, 7.0, With(StrToFloat), With(TryStrToFloat));
  ExpectRefused(kNoNumbers, kReal, 7_baht, With(StrToCurr), With(TryStrToCurr));
}

TEST(Convert, AmountsRoundOnAllDigitsToTheEvenOne) {
  struct Case {
    std::string_view text;
    Currency want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"1.23445", 1.2344_baht, "a tie, even below"},
      {"1.23455", 1.2346_baht, "a tie, even above"},
      {"1.234450000000000000000000000001", 1.2345_baht, "a hair above the tie"},
      {"1.23454999999999999999999999999", 1.2345_baht, "a hair below it"},
      {"-1.23445", -1.2344_baht, "the sign plays no part"},
      {"0.00005", 0_baht, "even zero"},
      {"0.000051", 0.0001_baht, ""},
      {"0.000005e1", 0_baht, "the exponent moves the tie"},
      {"9e-6", 0_baht, "below the first rounded digit"},
      {"922337203685477.5807", Currency::Max(), "the last amount"},
      {"-922337203685477.5808", Currency::Min(), "the first"},
      {"922337203685477.58074999", Currency::Max(), ""},
      {"-922337203685477.58085", Currency::Min(), "a tie that stays in range"},
      {"9223372036854775807e-4", Currency::Max(), ""},
  };
  const TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) EXPECT_EQ(StrToCurr(c.text, formats), c.want) << c.text << c.why;
  constexpr std::string_view kBeyond[] = {"922337203685477.5808",
                                          "922337203685477.58075",
                                          "-922337203685477.58086",
                                          "-922337203685477.5809",
                                          "1e15",
                                          "1844674407370955.1617"};
  ExpectRefused(kBeyond, kReal, 7_baht, With(StrToCurr), With(TryStrToCurr));
}

// The described steps taken literally: a 128-bit fraction of ten to the ninth, divided once.
TEST(Convert, AmountsMatchAFractionRoundedOnce) {
  const TFormatSettings formats = SuiteFormats();
  std::mt19937_64 random(5);
  for (int i = 0; i < 200'000; ++i) {
    const std::uint64_t whole = random() % 900'000'000'000'000 >> i % 50;
    const std::string decimals = std::to_string(1'000'000'000 + random() % 1'000'000'000);
    const std::string kept = decimals.substr(1, static_cast<std::size_t>(i % 10));
    Int128 billionths = whole;
    for (std::size_t k = 0; k < 9; ++k) {
      billionths = billionths * 10 + (k < kept.size() ? kept[k] - '0' : 0);
    }
    const Currency want = Currency::FromWide(DivideHalfEven(billionths, 100'000));
    ASSERT_EQ(StrToCurr(std::to_string(whole) + "." + kept, formats), want);
    ASSERT_EQ(
        StrToCurr("-" + std::to_string(whole) + kept + "e-" + std::to_string(kept.size()), formats),
        -want);
  }
}

TEST(Convert, AMegabyteOfDigitsIsReadOnce) {
  const TFormatSettings formats = SuiteFormats();
  const std::string zeros(1 << 20, '0');
  EXPECT_EQ(StrToCurr(zeros + "1.5" + zeros, formats), 1.5_baht);
  EXPECT_EQ(StrToCurr("0." + zeros + "15e1048577", formats), 1.5_baht);
  EXPECT_EQ(StrToFloat(zeros + "1.5" + zeros, formats), 1.5);
  EXPECT_EQ(StrToFloat("0." + zeros + "1", formats), 0);
  const std::string beyond = "1" + zeros;
  ExpectRefused({{beyond}}, kReal, 7.0, With(StrToFloat), With(TryStrToFloat));
  TDateTime date;
  EXPECT_TRUE(TryStrToDate(zeros + "15/7/2003", date, formats));
  EXPECT_EQ(date, EncodeDate(2003, 7, 15));
}

TEST(Convert, DecimalSeparatorIsTheSettings) {
  TFormatSettings formats = SuiteFormats();
  formats.DecimalSeparator = ',';
  EXPECT_EQ(StrToFloat("-1,5e1", formats), -15);
  EXPECT_EQ(StrToCurr("1,5", formats), 1.5_baht);
  double real = 7;
  EXPECT_FALSE(TryStrToFloat("1.5", real, formats));
  formats.DecimalSeparator = '\0';
  EXPECT_EQ(StrToFloat("15", formats), 15);
  EXPECT_FALSE(TryStrToFloat(std::string_view("1\0005", 3), real, formats));
}

TEST(Convert, Dates) {
  struct Case {
    std::string_view text;
    int year, month, day;
  };
  // clang-format off
  constexpr Case kCases[] = {
      {"15/7/2003", 2003, 7, 15}, {" 15 / 7 / 2003 ", 2003, 7, 15}, {"15/07/2003/", 2003, 7, 15},
      {"15/7/03", 2003, 7, 15}, {"15/07", 2026, 7, 15}, {"15/07 ", 2026, 7, 15},
      {"15/7/75", 2075, 7, 15}, {"15/7/76", 1976, 7, 15}, {"15/7/003", 3, 7, 15},
      {"15/7/0075", 75, 7, 15}, {"1/1/1", 2001, 1, 1}, {"31/12/9999", 9999, 12, 31},
      {"29/2/2004", 2004, 2, 29}, {"00000015/7/2003", 2003, 7, 15}, {"15/7/2003 / ", 2003, 7, 15}
  };
  // clang-format on
  const TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) {
    TDateTime date;
    ASSERT_TRUE(TryStrToDateAsOf(c.text, 2026, date, formats)) << c.text;
    EXPECT_EQ(date, EncodeDate(c.year, c.month, c.day)) << c.text;
  }
  ExpectRefused(kNoDates, "date", TDateTime(7), With(StrToDate), With(TryStrToDate));
}

TEST(Convert, DateOrderFollowsTheFormat) {
  struct Case {
    std::string_view format, text;
    int year, month, day;
  };
  constexpr Case kCases[] = {
      {"M/d/yyyy", "7/15/2003", 2003, 7, 15}, {"yyyy/MM/dd", "03/7/15", 2003, 7, 15},
      {"yyyy/MM/dd", "7/15", 2026, 7, 15},    {"M/d/yyyy", "7/15", 2026, 7, 15},
      {"e/m/d", "2003/7/15", 2003, 7, 15},    {"'--'D/M/Y", "15/7/2003", 2003, 7, 15},
      {"", "7/15/2003", 2003, 7, 15},
  };
  TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) {
    formats.ShortDateFormat = c.format;
    TDateTime date;
    ASSERT_TRUE(TryStrToDateAsOf(c.text, 2026, date, formats)) << c.format << ' ' << c.text;
    EXPECT_EQ(date, EncodeDate(c.year, c.month, c.day)) << c.format << ' ' << c.text;
  }
}

TEST(Convert, CenturyWindow) {
  struct Case {
    int currentYear, window;
    std::string_view year;
    int want;  // 0: refused
  };
  // clang-format off
  constexpr Case kCases[] = {
      {2026, 50, "75", 2075}, {2026, 50, "76", 1976}, {2026, 50, "00", 2000},
      {1999, 50, "48", 2048}, {1999, 50, "49", 1949}, {2026, 0, "75", 2075}, {2026, 0, "25", 2025},
      {2026, 26, "99", 2099}, {2026, 27, "98", 2098}, {2026, 27, "99", 1999}, {30, 50, "12", 12},
      {std::numeric_limits<int>::max(), 50, "1", 0}, {std::numeric_limits<int>::min(), 50, "1", 0}
  };
  // clang-format on
  TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) {
    formats.TwoDigitYearCenturyWindow = c.window;
    TDateTime date;
    const bool read = TryStrToDateAsOf("15/7/" + std::string(c.year), c.currentYear, date, formats);
    EXPECT_EQ(read ? DecodeDate(date).Year : 0, c.want) << c.currentYear << ' ' << c.year;
  }
  formats.TwoDigitYearCenturyWindow = 50;
  const int thisYear = DecodeDate(Date()).Year;
  EXPECT_EQ(DecodeDate(StrToDate("15/7", formats)).Year, thisYear) << "the clock's year";
}

TEST(Convert, Times) {
  struct Case {
    std::string_view text;
    TTimeParts want;
  };
  // clang-format off
  constexpr Case kCases[] = {
      {"14", {14, 0, 0, 0}}, {"14:05", {14, 5, 0, 0}}, {"14:05:09", {14, 5, 9, 0}},
      {" 14 : 05 ", {14, 5, 0, 0}}, {"2pm", {14, 0, 0, 0}}, {"pm 2:05", {14, 5, 0, 0}},
      {"02:05 PM", {14, 5, 0, 0}}, {"14:05:09.5", {14, 5, 9, 5}}, {"0:0:0 . 999", {0, 0, 0, 999}},
      {"12 am", {0, 0, 0, 0}}, {"12:30 Pm", {12, 30, 0, 0}}, {"AM1", {1, 0, 0, 0}},
      {"2:05:09.007 pm ", {14, 5, 9, 7}}, {"23:59:59.999", {23, 59, 59, 999}}
  };
  // clang-format on
  const TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) {
    EXPECT_EQ(DecodeTime(StrToTime(c.text, formats)), c.want) << c.text;
    EXPECT_EQ(StrToDateTime(c.text, formats), StrToTime(c.text, formats)) << c.text;
  }
  ExpectRefused(kNoTimes, "time", TDateTime(7), With(StrToTime), With(TryStrToTime));
}

TEST(Convert, MarkersAreTheSettings) {
  TFormatSettings formats = SuiteFormats();
  formats.TimeAMString = "A";
  formats.TimePMString = "";
  formats.TimeSeparator = '.';
  EXPECT_EQ(StrToTime("2.05 a", formats), EncodeTime(2, 5, 0, 0));
  EXPECT_EQ(StrToTime("2.05.09.5am", formats), EncodeTime(2, 5, 9, 5)) << "the longer word";
  EXPECT_EQ(StrToTime("2 pm", formats), EncodeTime(14, 0, 0, 0)) << "an empty word matches nothing";
}

TEST(Convert, DatesWithTimes) {
  struct Case {
    std::string_view text;
    double days;
  };
  // clang-format off
  constexpr Case kCases[] = {
      {"15/07/2003", 37817}, {"15/07/2003 18:00", 37817.75}, {"15/07/2003 6pm", 37817.75},
      {"18:00", 0.75}, {"29/12/1899 06:00", -1.25}, {"15/7/2003 18:00 rest", 37817.75},
      {"15/7/2003/ pm 6:00", 37817.75}
  };
  // clang-format on
  const TFormatSettings formats = SuiteFormats();
  for (const Case& c : kCases) EXPECT_EQ(StrToDateTime(c.text, formats).Days(), c.days) << c.text;
  constexpr std::string_view kNeither[] = {"",        "15/07/2003 x", "15/07/2003 25:00",
                                           "18:00 x", "31/02/2003",   "15/07/2003 18:"};
  ExpectRefused(kNeither, "date and time", TDateTime(7), With(StrToDateTime),
                With(TryStrToDateTime));
}

TEST(Convert, DatesToText) {
  const TFormatSettings formats = SuiteFormats();
  const TDateTime moment = JoinDateTime(EncodeDate(2003, 7, 15), EncodeTime(14, 5, 9, 0));
  EXPECT_EQ(DateToStr(moment, formats), "15/07/2003");
  EXPECT_EQ(TimeToStr(moment, formats), "02:05:09 pm");
  EXPECT_EQ(DateTimeToStr(moment, formats), "15/07/2003 02:05:09 pm");
  EXPECT_EQ(DateTimeToStr(DateOf(moment), formats), "15/07/2003");
}

}  // namespace
}  // namespace kvshare
