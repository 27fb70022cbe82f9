#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

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
    {{mrNoRound, "mrNoRound", 65466}, Way::Down, 1},
    {{mrDownToBaht, "mrDownToBaht", 65467}, Way::Down, kBaht},
    {{mrNearBaht, "mrNearBaht", 65468}, Way::Near, kBaht},
    {{mrUpToBaht, "mrUpToBaht", 65469}, Way::Up, kBaht},
    {{mrDownTo25, "mrDownTo25", 65470}, Way::Down, kBaht / 4},
    {{mrNear25, "mrNear25", 65471}, Way::Near, kBaht / 4},
    {{mrUpTo25, "mrUpTo25", 65440}, Way::Up, kBaht / 4},
    {{mrDownTo50, "mrDownTo50", 65441}, Way::Down, kBaht / 2},
    {{mrNear50, "mrNear50", 65442}, Way::Near, kBaht / 2},
    {{mrUpTo50, "mrUpTo50", 65443}, Way::Up, kBaht / 2},
    {{mrOneDigits, "mrOneDigits", 65424}, Way::Near, kBaht / 10},
    {{mrTwoDigits, "mrTwoDigits", 65425}, Way::Near, kBaht / 100},
    {{mrThreeDigits, "mrThreeDigits", 65426}, Way::Near, kBaht / 1'000},
    {{mrFourDigits, "mrFourDigits", 65427}, Way::Near, 1},
    {{mrFiveDigits, "mrFiveDigits", 65428}, Way::Near, 1},
    {{mrSixDigits, "mrSixDigits", 65429}, Way::Near, 1},
    {{mrDownTo5Baht, "mrDownTo5Baht", 65444}, Way::Down, 5 * kBaht},
    {{mrNear5Baht, "mrNear5Baht", 65445}, Way::Near, 5 * kBaht},
    {{mrUpto5Baht, "mrUpto5Baht", 65446}, Way::Up, 5 * kBaht},
    {{mrDownTo10Baht, "mrDownTo10Baht", 65447}, Way::Down, 10 * kBaht},
    {{mrNear10Baht, "mrNear10Baht", 65448}, Way::Near, 10 * kBaht},
    {{mrUpto10Baht, "mrUpto10Baht", 65449}, Way::Up, 10 * kBaht},
    {{mrDownTo50Baht, "mrDownTo50Baht", 65450}, Way::Down, 50 * kBaht},
    {{mrNear50Baht, "mrNear50Baht", 65451}, Way::Near, 50 * kBaht},
    {{mrUpto50Baht, "mrUpto50Baht", 65452}, Way::Up, 50 * kBaht},
    {{mrDownTo100Baht, "mrDownTo100Baht", 65453}, Way::Down, 100 * kBaht},
    {{mrNear100Baht, "mrNear100Baht", 65454}, Way::Near, 100 * kBaht},
    {{mrUpto100Baht, "mrUpto100Baht", 65455}, Way::Up, 100 * kBaht},
}};

consteval bool RowsStandInOrder() {
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (kModes[i].info.Mode != i) return false;
  }
  return true;
}
static_assert(RowsStandInOrder());

// What is added to a magnitude before its rest is cut off.
constexpr std::uint64_t Bias(const ModeRow& row) {
  switch (row.way) {
    case Way::Down:
      return 0;
    case Way::Near:
      return row.step / 2;  // every step above 1 is even
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
