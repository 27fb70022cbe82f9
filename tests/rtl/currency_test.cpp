#include "kvshare/rtl/currency.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace kvshare {
namespace {

TEST(Currency, ArithmeticRoundsOnceAndTiesToEven) {
  struct Case {
    Currency got, want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {0.0001_baht * 0.5_baht, 0_baht, "half of an even neighbour"},
      {0.0003_baht * 0.5_baht, 0.0002_baht, "half of an odd neighbour"},
      {1_baht / 3_baht, 0.3333_baht, "below half"},
      {2_baht / 3_baht, 0.6667_baht, "above half"},
      {-(1_baht) / 3_baht, -0.3333_baht, "sign kept"},
      {0.0001_baht / -2_baht, 0_baht, "negative tie to even zero"},
      {MulDiv(0.5_baht, 0.0001_baht, 0.1_baht), 0.0005_baht, "no rounding between the steps"},
      {0.5_baht * 0.0001_baht / 0.1_baht, 0_baht, "two steps round twice"},
      {Frac(-1.25_baht), -0.25_baht, "the fraction keeps the sign"},
      {Int(-1.25_baht), -1_baht, "toward zero"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.got.Raw(), c.want.Raw()) << c.why;
  EXPECT_EQ(Round(2.5_baht), 2);
  EXPECT_EQ(Round(-3.5_baht), -4);
  EXPECT_EQ(Currency::Min().Magnitude(), std::uint64_t{1} << 63);
}

TEST(Currency, NothingWraps) {
  const Currency max = Currency::Max();
  const Currency min = Currency::Min();
  EXPECT_THROW(max + 0.0001_baht, EIntOverflow);
  EXPECT_THROW(min - 0.0001_baht, EIntOverflow);
  EXPECT_THROW(-min, EIntOverflow);
  EXPECT_THROW(max * 1.0001_baht, EIntOverflow);
  EXPECT_THROW(max / 0.9999_baht, EIntOverflow);
  EXPECT_THROW(Currency::FromInt(922'337'203'685'478), EIntOverflow);
  EXPECT_EQ(MulDiv(max, max, max), max) << "the product may pass 64 bits on the way";
  EXPECT_THROW(1_baht / 0_baht, EZeroDivide);
  EXPECT_THROW(0_baht / 0_baht, EInvalidOp);
}

TEST(Currency, FromRealTiesToEven) {
  struct Case {
    double value;
    Currency want;
  };
  constexpr Case kCases[] = {
      {0.00005, 0_baht},
      {0.00015, 0.0002_baht},
      {-0.00015, -0.0002_baht},
      {2.00003125, 2_baht},
      {-0.25, -0.25_baht},
      {922337203685477.5, 922337203685477.5_baht},
      {1e-300, 0_baht},
      {4398046511104.001, 4398046511104.001_baht},
      {1.2345678901, 1.2346_baht},
  };
  for (const Case& c : kCases) EXPECT_EQ(FloatToCurrency(c.value).Raw(), c.want.Raw()) << c.value;
  for (const Case& c : kCases) EXPECT_EQ(FloatToCurrency(CurrencyToFloat(c.want)), c.want);
  EXPECT_EQ(CurrencyToFloat(617475130136601_baht), 617475130136601) << "the count passes 2^53";
  EXPECT_THROW(FloatToCurrency(922337203685477.625), EInvalidOp);
  EXPECT_THROW(FloatToCurrency(std::nan("")), EInvalidOp);
}

// The nearest double, as the conversion of the amount's digits finds it, where the count of
// ten-thousandths is no double itself.
TEST(Currency, ToTheNearestReal) {
  std::mt19937_64 random(25691126);
  for (int i = 0; i < 50'000; ++i) {
    const Currency amount =
        Currency::FromRaw(static_cast<std::int64_t>(random() >> (random() % 11)));
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%04d", static_cast<long long>(Trunc(amount)),
                  static_cast<int>(std::abs(Frac(amount).Raw())));
    const std::string digits =
        (amount.Raw() < 0 && Trunc(amount) == 0 ? "-" : "") + std::string(text);
    ASSERT_EQ(CurrencyToFloat(amount), std::strtod(digits.c_str(), nullptr)) << digits;
  }
}

}  // namespace
}  // namespace kvshare
