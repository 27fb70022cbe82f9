#include "companion/arithmetic.h"

#include <gtest/gtest.h>

#include "companion/fraction.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/formatsettings.h"
#include "tests/support.h"

namespace kvshare::companion {
namespace {

TEST(Arithmetic, Answers) {
  struct Case {
    const char* line;
    const char* text;
    int roundedAt;  // -1: exact
    const char* why;
  };
  constexpr Case kCases[] = {
      {"1+2*3-4/2", "5", -1, "* and / first"},
      {"100-50-25", "25", -1, "from left to right"},
      {" ( 1.5 + .5 ) * -2. ", "-4", -1, "brackets, signs, blanks, points at the ends"},
      {"0.1+0.2", "0.3", -1, "decimals are decimals"},
      {"1.10-1.10", "0", -1, "no sign, no zeros"},
      {"1,234,567.89*1", "1234567.89", -1, "thousands"},
      {"10/3", "3.3333", 4, "rounded"},
      {"10/3*3", "10", -1, "but not on the way"},
      {"12345.67*7/107", "807.6607", 4, "the tax that a price contains"},
      {"7/107*12345.67", "807.6607", 4, "in any order"},
      {"1/8/8/8", "0.001953125", -1, "exact where 15 digits hold it"},
      {"35.123456*1.5", "52.685184", -1, "rates"},
      {"0.00005/3*3", "0.00005", -1, "small and exact"},
      {"1/30000", "0", 4, "small and not"},
      {"123456789012345", "123456789012345", -1, "15 digits"},
      {"12345678901.23456", "12345678901.2346", 4, "16 digits"},
      {"123456789012.3456", "123456789012.346", 3, "four decimals are too many"},
      {"999999999999999.4", "999999999999999", 0, "none is left"},
      {"1.23456789012345/10", "0.123456789012345", -1, "15 digits behind the point"},
      {"200+7%", "214", -1, "of what stands before"},
      {"100+100+10%", "220", -1, "of all of it"},
      {"200*7%", "14", -1, "a hundredth"},
      {"200+7%*2", "200.14", -1, "only a percentage that is alone"},
      {"200+(7%)", "200.07", -1, "a bracket takes it for itself"},
      {"200+-7%", "186", -1, "with a sign"},
      {"50%", "0.5", -1, "of nothing"},
      {"(25+25)%", "0.5", -1, "of a bracket"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.line);
    const Answer answer = Calculate(c.line);
    EXPECT_EQ(answer.text, c.text) << c.why;
    EXPECT_EQ(answer.rounded, c.roundedAt >= 0) << c.why;
    if (c.roundedAt >= 0) {
      EXPECT_EQ(answer.decimals, c.roundedAt);
    }
  }
}

TEST(Arithmetic, Refusals) {
  constexpr std::string_view kNothing = "ยังไม่มีตัวเลข"_th;
  constexpr std::string_view kZero = "หารด้วยศูนย์ไม่ได้"_th;
  constexpr std::string_view kLong = "ตัวเลขยาวเกินกว่าจะคำนวณให้ตรงทุกหลัก"_th;
  constexpr std::string_view kDigits = "ผลลัพธ์เกิน 15 หลัก"_th;
  const auto At = [](int place) {
    constexpr std::string_view kAt = "สูตรไม่ถูกต้องที่ตำแหน่ง "_th;
    return std::string(kAt) + std::to_string(place);
  };
  struct Case {
    std::string line;
    std::string message;
  };
  const Case cases[] = {
      {"", std::string(kNothing)},
      {"1+", At(3)},
      {"*2", At(1)},
      {"1 2", At(3)},
      {".", At(2)},
      {"(1", At(3)},
      {"1)", At(2)},
      {"1,5", At(4)},
      {"1234,567", At(5)},
      {"1,2345", At(7)},
      {"\xA1", At(1)},
      {"1/0", std::string(kZero)},
      {"0/(1.5-1.50)", std::string(kZero)},
      {"1000000000000000", std::string(kDigits)},
      {"999999999999999.6", std::string(kDigits)},
      {std::string(40, '9'), std::string(kLong)},
      {"1/" + std::string(40, '7'), std::string(kLong)},
      {"1/3333333333333333333333333333333*1/7777777777777777", std::string(kLong)},
      {"18446744073709551616*-9223372036854775808", std::string(kLong)},
      {"0." + std::string(40, '1'), std::string(kLong)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MessageOf<ECalculation>([&] { Calculate(c.line); }), c.message) << c.line;
  }
  EXPECT_THROW(Calculate(std::string(kLongestLine + 1, '1')), ECalculation);
  EXPECT_THROW(Calculate(std::string(kLongestLine, '(')), ECalculation);
  EXPECT_THROW(Calculate(std::string(kLongestLine, '-')), ECalculation);
}

// Against the suite's own arithmetic, which rounds once in MulDiv, as far as 15 digits go.
TEST(Arithmetic, AgreesWithCurrency) {
  constexpr std::int64_t kRaws[] = {1, 3, 7, 9999, 10'000, 12'345, 1'070'000, 123'456'789};
  constexpr Currency kEnd = Currency::FromRaw(1'000'000'000'000'000);
  const TFormatSettings plain = TFormatSettings::UsEnglish();
  const auto Text = [&](std::int64_t raw) { return CurrToStr(Currency::FromRaw(raw), plain); };
  int compared = 0;
  for (const std::int64_t a : kRaws) {
    for (const std::int64_t b : kRaws) {
      for (const std::int64_t c : kRaws) {
        const std::string line = Text(a) + "*" + Text(-b) + "/" + Text(c);
        const Currency want =
            MulDiv(Currency::FromRaw(a), Currency::FromRaw(-b), Currency::FromRaw(c));
        if (Abs(want) >= kEnd) continue;
        EXPECT_EQ(StrToCurr(Calculate(line).text, plain), want) << line;
        ++compared;
      }
    }
  }
  EXPECT_GT(compared, 450);
}

}  // namespace
}  // namespace kvshare::companion
