#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "kvshare/money/money.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {
namespace {

class QuantityText : public testing::Test {
 protected:
  void SetUp() override { FormatSettings = TFormatSettings::UsEnglish(); }
  void TearDown() override { SetUp(); }
};

// The steps as they are described, each through a pattern.
std::string DescribedStrZero(Currency amount, int width, int decimals) {
  const std::int64_t whole = Trunc(amount);
  const int w = width - decimals - (whole < 0 ? 1 : 0);
  std::string text;
  if (decimals < 1) {
    text = Format(Format("%%%d.%dd", {w, w}), {whole});
  } else {
    text = Format(Format("%%%d.%dd", {w - 1, w - 1}), {whole});
    const std::string fraction =
        Format(Format("%%%d.%df", {decimals, decimals}), {Abs(Frac(amount))});
    text = Format("%s%s", {text, Copy(fraction, 2, decimals + 1)});
  }
  text = Trim(text);
  while (static_cast<int>(text.size()) < width) text.insert(text.begin(), '0');
  return std::string(Copy(text, 1, width));
}

template <class F>
std::string TextOrError(F make) {
  try {
    return make();
  } catch (const EConvertError& error) {
    return "! " + error.Message();
  }
}

TEST_F(QuantityText, StrZeroIsAsDescribedAtEveryWidth) {
  constexpr Currency kAmounts[] = {0_baht,
                                   0.0001_baht,
                                   -0.0001_baht,
                                   0.0005_baht,
                                   0.005_baht,
                                   0.9949_baht,
                                   0.995_baht,
                                   0.9999_baht,
                                   -0.5_baht,
                                   1_baht,
                                   -1_baht,
                                   9.9999_baht,
                                   -9.9999_baht,
                                   10_baht,
                                   99.95_baht,
                                   1234.5_baht,
                                   -1234.5678_baht,
                                   123456789012.05_baht,
                                   -999999999999.9999_baht,
                                   Currency::Max(),
                                   Currency::Min()};
  for (const char separator : {'.', ',', '\0'}) {
    FormatSettings.DecimalSeparator = separator;
    for (const Currency amount : kAmounts) {
      for (int width = -3; width <= 40; ++width) {
        for (int decimals = -3; decimals <= 22; ++decimals) {
          const std::string got =
              TextOrError([&] { return TKovraMoney::StrZero(amount, width, decimals); });
          ASSERT_EQ(got, TextOrError([&] { return DescribedStrZero(amount, width, decimals); }))
              << amount.Raw() << ' ' << width << ' ' << decimals;
        }
      }
    }
  }
}

TEST_F(QuantityText, StrZeroStaysSmallAtAnyWidth) {
  for (const int width : {INT_MIN, -1, 0, 1, 32767, INT_MAX}) {
    for (const int decimals : {INT_MIN, -32768, -1, 0, 2, 32767, INT_MAX}) {
      const std::string text =
          TextOrError([&] { return TKovraMoney::StrZero(-1.5_baht, width, decimals); });
      EXPECT_LE(text.size(), 32767U) << width << ' ' << decimals;
      EXPECT_EQ(text.size() == 32767, width >= 32767 && decimals < 32767) << text.substr(0, 80);
    }
  }
  std::string out = "no. ";
  TKovraMoney::AppendStrZero(out, 7_baht, 4, 0);
  TKovraMoney::AppendStrZero(out, -7_baht, 40, 0);
  out += TKovraMoney::Replicate('=', INT_MIN) + TKovraMoney::Replicate('=', 2);
  EXPECT_EQ(out, "no. 0007" + std::string(38, '0') + "-7==");
}

TEST_F(QuantityText, QuantitiesPastTheirIntegersAreRefused) {
  EXPECT_THROW(TKovraMoney::ReformatQty(0.0001_baht, Currency::Max()), EIntOverflow);
  EXPECT_THROW(TKovraMoney::ReformatQty(-0.0001_baht, Currency::Min()), EIntOverflow);
  EXPECT_THROW(TKovraMoney::ShowQty(9'000'000'000_baht, 8'000'000'000_baht, 2), EIntOverflow);
  EXPECT_THROW(TKovraMoney::ShowQty(0_baht, 1_baht, 9), EZeroDivide);
  EXPECT_EQ(TKovraMoney::ShowSkuQty(1, 2, 0, 0, Currency::Min(), -0.0001_baht, "1"), "");
}

TEST_F(QuantityText, SkuTextOfOddArguments) {
  struct Case {
    Currency qty;
    std::string_view rate;
    int decimals;
    std::string_view want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {29_baht, "0.5", 0, "2+5=14.500000", "the usual"},
      {29_baht, " 5E-1 ", 0, "2+5=14.500000", "a rate with an exponent"},
      {29_baht, "0.123456789012345678", 0, "2+5=3.580247", "more decimals than an amount"},
      {1000_baht, "1E12", 0, "83+4=1,000,000,000,000,000.000000", "past Currency's range"},
      {1000_baht, "900000000000000", 0, "83+4=900,000,000,000,000,000.000000", "the same, written"},
      {-0.0001_baht, "0.001", 0, "0+0=0.000000", "zero has no sign"},
      {29_baht, "1,5", 0, "", "no number"},
      {29_baht, "", 0, "", "no rate"},
      {29_baht, "1", -1, "", "no decimals to show"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(TKovraMoney::ShowSkuQty(2, 0, c.decimals, 6, c.qty, 12_baht, c.rate), c.want)
        << c.why;
  }
  EXPECT_EQ(TKovraMoney::ShowSkuQty(1, 1, 0, 0, 29.5_baht, 12_baht, "1"), "          29")
      << "without decimals the quantity is cut";
  EXPECT_EQ(TKovraMoney::ShowSkuQty(1, 2, 0, 0, 29_baht, 12_baht, ""), "")
      << "the rate is read in every mode";
  FormatSettings.DecimalSeparator = ',';
  FormatSettings.ThousandSeparator = '.';
  EXPECT_EQ(TKovraMoney::ShowSkuQty(2, 0, 1, 6, 12345.5_baht, 12_baht, "1,5"),
            "1.028+9,5=18.518,250000");
  EXPECT_TRUE(TKovraMoney::IsFloat("12,5"));
  EXPECT_FALSE(TKovraMoney::IsFloat("12.5"));
}

}  // namespace
}  // namespace kvshare
