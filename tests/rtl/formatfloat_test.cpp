#include "kvshare/rtl/formatfloat.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/support.h"

namespace kvshare {
namespace {

const TFormatSettings kUs = TFormatSettings::UsEnglish();

// Amounts, as the same number in double and as decimal digits: every row must hold for all.
struct Case {
  std::string_view mask;
  Currency amount;
  std::string_view want;
};

TEST(FormatFloat, Masks) {
  constexpr Case kCases[] = {
      // Three sections; a literal section needs no digit places.
      {"0000;1;_", 2003_baht, "2003"},
      {"0000;1;_", 5_baht, "0005"},
      {"0000;1;_", 12345_baht, "12345"},
      {"0000;1;_", -5_baht, "1"},
      {"0000;1;_", 0_baht, "_"},
      {"0000;1;_", 0.3_baht, "_"},
      {"0000;1;_", -0.3_baht, "_"},
      {"0000;1;_", 0.5_baht, "0001"},
      {"00;1;_", 7_baht, "07"},
      {"00;1;_", -3_baht, "1"},
      {"0.00;(0.00);-", -1234.5_baht, "(1234.50)"},
      {"0.00;(0.00);-", 0.001_baht, "-"},
      {"0.00;(0.00);-", -0.001_baht, "-"},
      {"0.00;(0.000)", -0.001_baht, "(0.001)"},
      {"0.00;(0.00)", -0.001_baht, "0.00"},
      {"0;(0)", -5_baht, "(5)"},
      {"0;;z", -5_baht, "-5"},
      {"0;;z", 0_baht, "z"},
      {"0;-0;z;ignored", 0_baht, "z"},
      {"0;'';z", -5_baht, ""},
      // Empty sections: the general format.
      {"", -1234.5_baht, "-1234.5"},
      {";(0)", 1234.5678_baht, "1234.5678"},
      {";(0);", -5_baht, "(5)"},
      {";(0);", -0.3_baht, "0"},
      {";;z", -5_baht, "-5"},
      // Thousands.
      {"###,###,###,##0.00", 1234567.891_baht, "1,234,567.89"},
      {"###,###,###,##0.00", 0_baht, "0.00"},
      {"###,###,###,##0.00", -1234.5_baht, "-1,234.50"},
      {"###,###,###,##0.00%", 12.5_baht, "12.50%"},
      {"0,000", 5_baht, "0,005"},
      {"0.00,", 1234.5_baht, "1,234.50"},
      {"#,", 999_baht, "999"},
      {",#;#", -1000_baht, "1000"},
      // Places without a digit, the point.
      {"#.##", 0.5_baht, ".5"},
      {"#.##", 0_baht, ""},
      {"0.##", 2_baht, "2"},
      {"0.0#", 2_baht, "2.0"},
      {"0.#0#", 2_baht, "2.00"},
      {"#0#", 5_baht, "05"},
      {"###########0.", 12.5_baht, "13"},
      {"0.0.0", 1.25_baht, "1.25"},
      {"0.0000000", 0.0001_baht, "0.0001000"},
      {"0.x0", 1.5_baht, "1x.5"},
      {"#-#", 5_baht, "-5"},
      {".00", 12.5_baht, "12.50"},
      {".00", -0.996_baht, "-1.00"},
      {"000-0000", 1234567_baht, "123-4567"},
      {"0-0", 12345_baht, "1234-5"},
      {"no places", 7_baht, "no places"},
      // Signs and literals.
      {"$0.00", -1.5_baht, "-$1.50"},
      {"-0", -5_baht, "--5"},
      {"'0;0'0\"#\"", 5_baht, "0;05#"},
      {"0'open; 0", 5_baht, "5open; 0"},
      {"\\0% E", 5_baht, "\\5% E"},
      {std::string_view("\0000\0", 3), 5_baht, std::string_view("\0005\0", 3)},
      {"0.00 บาท"_th, 12.5_baht, "12.50 บาท"_th},
      // Exponents.
      {"0.000E+00", 1234.5_baht, "1.235E+03"},
      {"0.00e-0", 1234.5_baht, "1.23e3"},
      {"0.00e-0", 0.0125_baht, "1.25e-2"},
      {"00.0E+0", 999.96_baht, "10.0E+2"},
      {"#.##E-0000", 20_baht, "2E0001"},
      {"0.0E+", 0_baht, "0.0E+0"},
      {"0E+00000", 7_baht, "7E-00010"},
      {"0.0E+0;;z", -0.0001_baht, "-1.0E-4"},
      {"'x'E+0", 7_baht, "x"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(FormatFloat(c.mask, c.amount, kUs), c.want) << c.mask << ' ' << c.amount.Raw();
    EXPECT_EQ(FormatFloat(c.mask, CurrencyToFloat(c.amount), kUs), c.want) << c.mask;
    EXPECT_EQ(FormatDigits(c.mask, CurrToStr(c.amount, kUs), kUs), c.want) << c.mask;
  }
}

TEST(FormatFloat, AmountsHaveAllTheirDigits) {
  EXPECT_EQ(FormatCurr("#,##0.0000", Currency::Min(), kUs), "-922,337,203,685,477.5808");
  EXPECT_EQ(FormatCurr("", Currency::Max(), kUs), "922337203685477.5807");
  EXPECT_EQ(FormatCurr("0.00", 2.345_baht, kUs), "2.35");
}

TEST(FormatFloat, DecimalsOfAnyLengthAreRoundedOnce) {
  struct DigitsCase {
    std::string_view mask;
    std::string_view digits;
    std::string_view want;
    const char* why;
  };
  constexpr DigitsCase kCases[] = {
      {"0.000000", "0.123456", "0.123456", "an amount has 0.1235"},
      {"0.00", "2.34495", "2.34", "an amount has 2.3450, which is the tie"},
      {"0.00", "2.345", "2.35", "the tie itself, away from zero"},
      {"0.00", "-2.345", "-2.35", ""},
      {"#,##0.00", "12345678901234567.89", "12,345,678,901,234,567.89", "a double has 16 digits"},
      {"0.00", "99999999999999999999.995", "100000000000000000000.00", "a digit more"},
      {"", "-00123456789012345678901234567890.1230", "-123456789012345678901234567890.123",
       "exact"},
      {";(0)", "0.00000000000000000001", "0.00000000000000000001", "exact"},
      {"0.00;(0.00);-", "-0.004999999999999999999999", "-", "rounds to zero"},
      {"0.00;(0.00);-", "-0.00500000000000000000000", "(0.01)", ""},
      {"0.000E+00", "12345678901234567890", "1.235E+19", ""},
      {"0.0E+0", "0.00000000000000000996", "1.0E-17", ""},
      {"0.##", "-.5", "-0.5", "no digit before the point"},
      {"0.00", "-0", "0.00", "no sign of zero"},
  };
  for (const DigitsCase& c : kCases) {
    EXPECT_EQ(FormatDigits(c.mask, c.digits, kUs), c.want) << c.mask << ' ' << c.why;
  }
  for (const char* bad : {"", "-", ".", "abc", "1,200.50", "1e5", "+1", " 1", "--1", "1.2.3"}) {
    EXPECT_EQ(MessageOf<EConvertError>([&] { FormatDigits("0.00", bad, kUs); }),
              "'" + std::string(bad) + "' is not a valid floating point value");
  }
}

TEST(FormatFloat, RealsPastTheirDigits) {
  const double infinity = std::numeric_limits<double>::infinity();
  struct RealCase {
    const char* mask;
    double value;
    const char* want;
  };
  const RealCase cases[] = {
      {"", 1.0 / 3, "0.333333333333333"},
      {"#,##0", 999999999999999872.0, "999,999,999,999,999,872"},
      {"#,##0.00;(0)", -1e18, "-1E18"},
      {"0.0E+000", 1.25e300, "1.3E+300"},
      {"0.00", 1e-300, "0.00"},
      {"0;0;z", -infinity, "-INF"},
      {"0", std::numeric_limits<double>::quiet_NaN(), "NAN"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatFloat(c.mask, c.value, kUs), c.want) << c.mask;
  EXPECT_EQ(FormatFloat("0." + std::string(5000, '0'), 0.5, kUs).size(), 5002);
}

TEST(FormatFloat, MarksOfTheSettingsAndTheCallersText) {
  TFormatSettings settings = kUs;
  settings.DecimalSeparator = ',';
  settings.ThousandSeparator = '.';
  std::string out = "= ";
  AppendFormatFloat(out, "#,##0.00", 1234.5_baht, settings);
  settings.DecimalSeparator = settings.ThousandSeparator = '\0';
  AppendFormatFloat(out, " #,##0.00", 1234.5, settings);
  EXPECT_EQ(out, "= 1.234,50 123450");
}

}  // namespace
}  // namespace kvshare
