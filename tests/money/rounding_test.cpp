#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "kvshare/money/money.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {
namespace {

// The modes as the accountants' rules describe them, step by step and wide enough for any amount,
// in ten-thousandths of a baht and on the magnitude.
constexpr Int128 kUnit = Currency::kScale;

Int128 Cut(Int128 m, Int128 step) {
  return m / step * step;
}

Int128 DescribedRoundTo(Int128 m, int digits) {
  const std::string text(
      Trim(Format("%15.10f", {Currency::FromRaw(static_cast<std::int64_t>(m % kUnit))})));
  Int128 value = digits == 0 ? 0 : StrToInt(Copy(text, 3, digits));
  if (Copy(text, digits + 3, 1) >= "5") ++value;
  Int128 power = 1;
  for (int i = 0; i < digits; ++i) power *= 10;
  return value * kUnit / power + Cut(m, kUnit);  // six digits carry at most four that are not 0
}

Int128 Near(Int128 m, Int128 step) {
  return Cut(m + step / 2, step);
}

Int128 Up(Int128 m, Int128 near, Int128 step) {
  return m > near ? near + step : near;
}

Int128 UpByFraction(Int128 m, Int128 step) {
  return m % step == 0 ? Cut(m, kUnit) : Cut(m, step) + step;
}

// The twelve modes of 5, 10, 50 and 100 baht: down, near, up.
Int128 DescribedBahtStep(Int128 m, int index) {
  constexpr Int128 kSteps[] = {5 * kUnit, 10 * kUnit, 50 * kUnit, 100 * kUnit};
  const Int128 step = kSteps[index / 3];
  const Int128 near = Near(m, step);
  if (index % 3 == 0) return Cut(m, step);
  if (index % 3 == 1) return near;
  return index / 3 % 2 == 0 ? Up(m, near, step) : UpByFraction(m, step);
}

Int128 Described(Int128 m, TKovraMoneyRound mode) {
  constexpr Int128 kQuarter = kUnit / 4;
  const Int128 near25 = Cut(m, kUnit) + Near(m % kUnit * 4, kUnit) / 4;
  const Int128 near50 = Cut((m + kQuarter) * 2, kUnit) / 2;
  if (mode >= mrDownTo5Baht) return DescribedBahtStep(m, mode - mrDownTo5Baht);
  if (mode >= mrOneDigits) return DescribedRoundTo(m, mode - mrOneDigits + 1);
  const Int128 results[] = {m,
                            Cut(m, kUnit),
                            (m * 100 + 50 * kUnit) / (100 * kUnit) * kUnit,
                            UpByFraction(m, kUnit),
                            m < near25 ? near25 - kQuarter : near25,
                            near25,
                            Up(m, near25, kQuarter),
                            Cut(m * 2, kUnit) / 2,
                            near50,
                            Up(m, near50, kUnit / 2)};
  return results[mode];
}

// Nothing for a result out of range.
template <class F>
std::optional<Currency> InRange(F round) {
  try {
    return round();
  } catch (const EIntOverflow&) {
    return std::nullopt;
  }
}

std::vector<Currency> Amounts() {
  std::vector<std::int64_t> raws = {Currency::Max().Raw()};
  for (std::int64_t step : {1, 10, 100, 1'000, 2'500, 5'000, 10'000, 50'000, 100'000, 1'000'000}) {
    for (std::int64_t multiple : {0, 1, 7, 123'456}) {
      for (std::int64_t d : {-1, 0, 1}) {
        raws.push_back(multiple * step + d);
        raws.push_back(multiple * step + step / 2 + d);
      }
    }
  }
  std::mt19937_64 random(20030715);
  for (int i = 0; i < 20'000; ++i) {
    raws.push_back(static_cast<std::int64_t>(random() >> (random() % 60 + 1)));
    raws.push_back(Currency::Max().Raw() - static_cast<std::int64_t>(random() % 2'000'000));
  }
  std::vector<Currency> amounts = {Currency::Min()};
  for (std::int64_t raw : raws) {
    amounts.push_back(Currency::FromRaw(raw));
    amounts.push_back(Currency::FromRaw(-raw));
  }
  return amounts;
}

TEST(Rounding, EveryModeIsAsDescribed) {
  FormatSettings = TFormatSettings::UsEnglish();
  for (const Currency amount : Amounts()) {
    const Int128 magnitude = amount.Magnitude();
    for (Word code = 0; code < kRoundModes; ++code) {
      const TKovraMoneyRound mode = TKovraMoney::RoundType(code);
      const Int128 described = Described(magnitude, mode);
      ASSERT_EQ(InRange([&] { return TKovraMoney::Round_Baht(amount, code); }), InRange([&] {
                  return Currency::FromWide(amount.Raw() < 0 ? -described : described);
                }))
          << amount.Raw() << ' ' << RoundModeInfo(mode).Name;
    }
  }
}

TEST(Rounding, AModeThatThereIsNotKeepsTheAmount) {
  const Currency amount = Currency::FromRaw(12'3456);
  for (const int mode : {kRoundModes, kRoundModes + 1, 255}) {
    EXPECT_EQ(TKovraMoney::Round_Baht(amount, static_cast<TKovraMoneyRound>(mode)), amount) << mode;
    EXPECT_EQ(TKovraMoney::Round_Baht(amount, static_cast<Word>(mode)), amount) << mode;
  }
}

// On the whole quotient: no step of four decimals in between.
TEST(Rounding, AQuotientIsRoundedOnce) {
  std::mt19937_64 random(25690405);
  for (int i = 0; i < 20'000; ++i) {
    const auto denominator = static_cast<std::int64_t>(random() % 20'000 + 1);
    // Around a multiple of a half step: at it, and less than a ten-thousandth beside it.
    const Int128 near = Int128{random() % 4'000} * 500 * denominator;
    const Int128 magnitude = near + static_cast<std::int64_t>(random() % 5) - (near > 1 ? 2 : 0);
    for (Word code = 0; code < kRoundModes; ++code) {
      const TKovraMoneyRound mode = TKovraMoney::RoundType(code);
      const Int128 whole = magnitude / denominator;
      const bool goesUp = RoundModeInfo(mode).Name.starts_with("mrUp");
      const Int128 lifted = goesUp && magnitude % denominator != 0 ? whole + 1 : whole;
      const bool keepsAll = mode == mrNoRound || (mode >= mrFourDigits && mode <= mrSixDigits);
      const Int128 described =
          keepsAll ? DivideHalfEven(magnitude, denominator) : Described(lifted, mode);
      for (const int sign : {1, -1}) {
        ASSERT_EQ(RoundQuotient(sign * magnitude, denominator, mode),
                  Currency::FromWide(sign * described))
            << RoundModeInfo(mode).Name;
      }
    }
  }
  EXPECT_EQ(RoundQuotient(200'001, 10, mrUpToBaht), 3_baht) << "2.00001 goes up";
  EXPECT_EQ(RoundQuotient(124'999, 10, mrNear25), 1.25_baht) << "and 1.24999 is near";
  EXPECT_EQ(RoundQuotient(-5, 10, TKovraMoneyRound{200}), 0_baht) << "a tie to the even one";
  EXPECT_THROW(RoundQuotient(Int128{1} << 100, 1, mrUpToBaht), EIntOverflow);
}

TEST(Rounding, OddArgumentsHaveAResult) {
  EXPECT_EQ(TKovraMoney::Round_Baht(1.2345_baht, static_cast<TKovraMoneyRound>(200)), 1.2345_baht);
  EXPECT_EQ(TKovraMoney::Round_Baht(1.2345_baht, 28), 1.2345_baht);
  EXPECT_EQ(TKovraMoney::RoundTo(1.2345_baht, 10), 1.2345_baht);
  EXPECT_EQ(TKovraMoney::RoundTo(-1.5_baht, INT_MIN), -2_baht);
  EXPECT_EQ(RoundModeInfo(static_cast<TKovraMoneyRound>(28)).Mode, mrNoRound);
  EXPECT_EQ(FindRoundMode("MRUPTO10BAHT")->Mode, mrUpto10Baht);
  EXPECT_EQ(FindRoundMode("mrNear"), nullptr);
  EXPECT_FALSE(TKovraMoney::IsEqual(1_baht, 1.0001_baht));
}

TEST(ShareValue, LeavesTheResultsAloneOnOverflow) {
  Currency share = 1_baht;
  Currency rest = 2_baht;
  EXPECT_THROW(TKovraMoney::ShareValue(Currency::Max(), 101_baht, share, rest), EIntOverflow);
  EXPECT_THROW(TKovraMoney::ShareValue(Currency::Max(), -1_baht, share, rest), EIntOverflow);
  EXPECT_EQ(share, 1_baht);
  EXPECT_EQ(rest, 2_baht);
}

}  // namespace
}  // namespace kvshare
