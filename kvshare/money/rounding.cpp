// The 28 rounding modes as a table of way and step.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "kvshare/messages/catalogue.h"
#include "kvshare/money/money.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

enum class Way : std::uint8_t { Down, Near, Up };

// A mode, and the multiple of `step` ten-thousandths that it rounds a magnitude to. A step of 1
// changes nothing whatever the way.
struct ModeRow {
  TRoundModeInfo info;
  Way way;
  std::uint64_t step;
};

constexpr std::uint64_t kBaht = Currency::kScale;

constexpr std::array<ModeRow, kRoundModes> kModes = {{
    {{mrNoRound, "mrNoRound", rstrNoRound}, Way::Down, 1},
    {{mrDownToBaht, "mrDownToBaht", rstrDownToBaht}, Way::Down, kBaht},
    {{mrNearBaht, "mrNearBaht", rstrNearBaht}, Way::Near, kBaht},
    {{mrUpToBaht, "mrUpToBaht", rstrUptoBaht}, Way::Up, kBaht},
    {{mrDownTo25, "mrDownTo25", rstrDownto25Stang}, Way::Down, kBaht / 4},
    {{mrNear25, "mrNear25", rstrNear25Stang}, Way::Near, kBaht / 4},
    {{mrUpTo25, "mrUpTo25", rstrUpto25Stang}, Way::Up, kBaht / 4},
    {{mrDownTo50, "mrDownTo50", rstrDownto50Stang}, Way::Down, kBaht / 2},
    {{mrNear50, "mrNear50", rstrNear50Stang}, Way::Near, kBaht / 2},
    {{mrUpTo50, "mrUpTo50", rstrUpto50Stang}, Way::Up, kBaht / 2},
    {{mrOneDigits, "mrOneDigits", rstrOneDigit}, Way::Near, kBaht / 10},
    {{mrTwoDigits, "mrTwoDigits", rstrTwoDigit}, Way::Near, kBaht / 100},
    {{mrThreeDigits, "mrThreeDigits", rstrThreeDigit}, Way::Near, kBaht / 1'000},
    {{mrFourDigits, "mrFourDigits", rstrFourDigit}, Way::Near, 1},
    {{mrFiveDigits, "mrFiveDigits", rstrFiveDigit}, Way::Near, 1},
    {{mrSixDigits, "mrSixDigits", rstrSixDigit}, Way::Near, 1},
    {{mrDownTo5Baht, "mrDownTo5Baht", rstrDownto5Baht}, Way::Down, 5 * kBaht},
    {{mrNear5Baht, "mrNear5Baht", rstrNear5Baht}, Way::Near, 5 * kBaht},
    {{mrUpto5Baht, "mrUpto5Baht", rstrUpto5Baht}, Way::Up, 5 * kBaht},
    {{mrDownTo10Baht, "mrDownTo10Baht", rstrDownto10Baht}, Way::Down, 10 * kBaht},
    {{mrNear10Baht, "mrNear10Baht", rstrNear10Baht}, Way::Near, 10 * kBaht},
    {{mrUpto10Baht, "mrUpto10Baht", rstrUpto10Baht}, Way::Up, 10 * kBaht},
    {{mrDownTo50Baht, "mrDownTo50Baht", rstrDownto50Baht}, Way::Down, 50 * kBaht},
    {{mrNear50Baht, "mrNear50Baht", rstrNear50Baht}, Way::Near, 50 * kBaht},
    {{mrUpto50Baht, "mrUpto50Baht", rstrUpto50Baht}, Way::Up, 50 * kBaht},
    {{mrDownTo100Baht, "mrDownTo100Baht", rstrDownto100Baht}, Way::Down, 100 * kBaht},
    {{mrNear100Baht, "mrNear100Baht", rstrNear100Baht}, Way::Near, 100 * kBaht},
    {{mrUpto100Baht, "mrUpto100Baht", rstrUpto100Baht}, Way::Up, 100 * kBaht},
}};

consteval bool RowsStandInOrder() {
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (kModes[i].info.Mode != i) return false;
  }
  return true;
}
static_assert(RowsStandInOrder());

// Ties of a `near` mode are whole ten-thousandths.
consteval bool StepsHaveAHalf() {
  return std::ranges::all_of(kModes,
                             [](const ModeRow& row) { return row.step == 1 || row.step % 2 == 0; });
}
static_assert(StepsHaveAHalf());

// What is added to a magnitude before its rest is cut off.
constexpr std::uint64_t Bias(const ModeRow& row) {
  switch (row.way) {
    case Way::Down:
      return 0;
    case Way::Near:
      return row.step / 2;
    case Way::Up:
      return row.step - 1;
  }
  return 0;
}

constexpr Currency FromMagnitude(std::uint64_t magnitude, bool negative) {
  if (magnitude > std::uint64_t{std::numeric_limits<std::int64_t>::max()} + (negative ? 1 : 0)) {
    throw EIntOverflow();
  }
  return Currency::FromRaw(static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude));
}

// One function a mode: with its step a constant, the compiler divides by multiplying.
template <std::size_t Mode>
Currency RoundBy(Currency amount) {
  constexpr std::uint64_t step = kModes[Mode].step;
  constexpr std::uint64_t bias = Bias(kModes[Mode]);
  if constexpr (step == 1) return amount;
  const std::uint64_t rounded = (amount.Magnitude() + bias) / step * step;  // below 2^63 + 10^6
  return FromMagnitude(rounded, amount.Raw() < 0);
}

using Rounder = Currency (*)(Currency);

constexpr auto kRounders = []<std::size_t... Mode>(std::index_sequence<Mode...>) {
  return std::array<Rounder, kRoundModes>{&RoundBy<Mode>...};
}
(std::make_index_sequence<kRoundModes>{});

}  // namespace

Currency TKovraMoney::Round_Baht(Currency Amount, TKovraMoneyRound Mode) {
  if (Mode >= kRounders.size()) return Amount;
  return kRounders[Mode](Amount);
}

Currency TKovraMoney::Round_Baht(Currency Amount, Word Code) {
  return Round_Baht(Amount, RoundType(Code));
}

TKovraMoneyRound TKovraMoney::RoundType(Word Code) {
  return Code < kRoundModes ? static_cast<TKovraMoneyRound>(Code) : mrNoRound;
}

TKovraMoneyRound TKovraMoney::PrRoundType(Word Code) {
  constexpr std::array kPriceModes = {
      mrNoRound,   mrDownToBaht, mrNearBaht,    mrUpToBaht,   mrDownTo25,   mrNear25,   mrUpTo25,
      mrOneDigits, mrTwoDigits,  mrThreeDigits, mrFourDigits, mrFiveDigits, mrSixDigits};
  static_assert(kPriceModes.size() == kPriceRoundCodes);
  return Code < kPriceModes.size() ? kPriceModes[Code] : mrNoRound;
}

Currency TKovraMoney::RoundTo(Currency Amount, int Digits) {
  if (Digits <= 0) return RoundBy<mrNearBaht>(Amount);
  switch (Digits) {
    case 1:
      return RoundBy<mrOneDigits>(Amount);
    case 2:
      return RoundBy<mrTwoDigits>(Amount);
    case 3:
      return RoundBy<mrThreeDigits>(Amount);
    default:
      return Amount;  // an amount has no further digits
  }
}

// The comparison is one of texts with eight decimals; an amount has four, so it is exact equality.
bool TKovraMoney::IsEqual(Currency A, Currency B) {
  return A == B;
}

void TKovraMoney::ShareValue(Currency Amount, Currency Percent, Currency& Share, Currency& Rest) {
  const Currency share = RoundTo(MulDiv(Amount, Percent, Currency::FromInt(100)), 2);
  Rest = Amount - share;
  Share = share;
}

// A rest behind the fourth decimal decides only upwards: steps and their halves are whole
// ten-thousandths.
Currency RoundQuotient(Int128 Numerator, Int128 Denominator, TKovraMoneyRound Mode) {
  const ModeRow& row = kModes[Mode < kModes.size() ? Mode : mrNoRound];
  if (row.step == 1) return Currency::FromWide(DivideHalfEven(Numerator, Denominator));
  Int128 whole = Numerator / Denominator;
  if (row.way == Way::Up && Numerator % Denominator != 0) whole += Numerator < 0 ? -1 : 1;
  return TKovraMoney::Round_Baht(Currency::FromWide(whole), Mode);
}

const TRoundModeInfo& RoundModeInfo(TKovraMoneyRound Mode) {
  return kModes[Mode < kModes.size() ? Mode : mrNoRound].info;
}

const TRoundModeInfo* FindRoundMode(std::string_view Name) {
  for (const ModeRow& row : kModes) {
    if (SameText(row.info.Name, Name)) return &row.info;
  }
  return nullptr;
}

}  // namespace kvshare
