// Quantities in packs and pieces, and the small texts about numbers.
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/money/money.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

std::int32_t ToInt32(Int128 value) {
  if (value > std::numeric_limits<std::int32_t>::max() ||
      value < std::numeric_limits<std::int32_t>::min()) {
    throw EIntOverflow();
  }
  return static_cast<std::int32_t>(value);
}

// The whole packs, toward zero, and what they leave of the quantity, with its sign.
struct PackSplit {
  Int128 packs;  // past 64 bits for the least amount over -0.0001
  Currency rest;
};

PackSplit SplitPacks(Currency qty, Currency factor) {
  if (factor == 0_baht) {
    if (qty == 0_baht) throw EInvalidOp();
    throw EZeroDivide();
  }
  const Int128 packs = Int128{qty.Raw()} / factor.Raw();
  return {packs, Currency::FromWide(Int128{qty.Raw()} - packs * factor.Raw())};
}

// A quantity as packs and loose units, these with as many digits as the factor.
struct PacksAndLoose {
  std::int32_t packs;
  std::int32_t loose;
  int looseDigits;
};

PacksAndLoose CountPacks(Currency factor, Currency qty) {
  const PackSplit split = SplitPacks(qty, factor);
  const auto digits = static_cast<int>(IntToStr(Trunc(factor)).size());
  return {ToInt32(split.packs), ToInt32(Trunc(split.rest)),
          digits + (Frac(factor) != 0_baht ? 1 : 0)};
}

constexpr std::string_view kIntegerPattern = "%12.0n";
constexpr std::string_view kRatePattern = "%12.6n";

// qty * rate in millionths, half away from zero, from the decimal digits of both: a real number
// would spoil the last digits of a large stock. Nothing for a rate with an exponent.
std::optional<Int128> MillionthsAtRate(Currency qty, std::string_view rate) {
  Int128 divisor = 10'000'000'000'000'000;  // 10^(2 + shift)
  for (int shift = 14; shift >= 0; shift -= 2, divisor /= 100) {
    Currency scaled;  // rate * 10^shift: up to 18 decimals, as far as its range goes
    if (!TryStrToCurr(Format("%sE%d", {Trim(rate), shift}), scaled)) continue;
    const Int128 product = Int128{qty.Raw()} * scaled.Raw();
    return (product + (product < 0 ? -divisor : divisor) / 2) / divisor;
  }
  return std::nullopt;
}

std::string TextAtRate(Currency qty, std::string_view rate) {
  constexpr Int128 kMillion = 1'000'000;
  const std::optional<Int128> exact = MillionthsAtRate(qty, rate);
  const Int128 magnitude = exact ? (*exact < 0 ? -*exact : *exact) : 0;
  if (!exact || magnitude / kMillion > Trunc(Currency::Max())) {
    return std::string(Trim(Format(kRatePattern, {CurrencyToFloat(qty) * StrToFloat(rate)})));
  }
  std::string text = *exact < 0 ? "-" : "";
  AppendFormat(text, "%.0n", {Currency::FromWide(magnitude / kMillion * Currency::kScale)});
  if (FormatSettings.DecimalSeparator != '\0') text += FormatSettings.DecimalSeparator;
  AppendFormat(text, "%.6d", {static_cast<std::int32_t>(magnitude % kMillion)});
  return text;
}

struct SkuTexts {
  std::string plain, packs, rest, factor;
};

SkuTexts MakeSkuTexts(int decimals, Currency qty, Currency factor) {
  const auto trimmed = [](std::string_view pattern, Currency value) {
    return std::string(Trim(Format(pattern, {value})));
  };
  const std::string quantityPattern = Format("%%12.%dn", {decimals});
  const PackSplit split = SplitPacks(qty, factor);
  return {decimals != 0 ? Format(quantityPattern, {qty}) : Format(kIntegerPattern, {Int(qty)}),
          trimmed(kIntegerPattern, Currency::FromWide(split.packs * Currency::kScale)),
          trimmed(quantityPattern, split.rest), trimmed(kIntegerPattern, factor)};
}

std::string SkuLayout(int style, const SkuTexts& texts) {
  switch (style) {
    case 1:
      return texts.plain;
    case 2:
      return Format("%s+%s", {texts.packs, texts.rest});
    case 3:
      return Format("%s*%s+%s", {texts.packs, texts.factor, texts.rest});
    case 4:
      return Format("%s+%s/%s", {texts.packs, texts.rest, texts.factor});
    default:
      return {};
  }
}

}  // namespace

std::string TKovraMoney::ReformatQty(Currency Factor, Currency Qty) {
  const PacksAndLoose count = CountPacks(Factor, Qty);
  const std::string pattern =
      "%12.0n." + Format("%%%d.%dd", {count.looseDigits, count.looseDigits});
  return Format(pattern, {Currency::FromInt(count.packs), count.loose});
}

Currency TKovraMoney::ShowQty(Currency Factor, Currency Qty, int Part) {
  const PacksAndLoose count = CountPacks(Factor, Qty);
  const Currency packs = Currency::FromInt(count.packs);
  Currency fraction = Currency::FromInt(count.loose);
  switch (Part) {
    case 1:
      return packs;
    case 2:
      return fraction;
    case 3:
      // Each step rounds to four decimals, so that loose units of five digits can lose their last.
      for (int i = 0; i < count.looseDigits; ++i) fraction = fraction / 10_baht;
      return packs + fraction;
    default:
      return {};
  }
}

std::string TKovraMoney::ShowSkuQty(int Mode, int Style, int Decimals, int EqStyle, Currency Qty,
                                    Currency Factor, std::string_view Rate) {
  if (Factor == 0_baht || !IsFloat(Rate)) return {};
  try {
    const SkuTexts texts = MakeSkuTexts(Decimals, Qty, Factor);
    if (Mode == 1) return Factor == 1_baht ? texts.plain : SkuLayout(Style, texts);
    if (Mode != 2) return {};
    if (EqStyle < 5) return SkuLayout(EqStyle, texts);
    const std::string layout = SkuLayout(EqStyle - 4, texts);  // 5 .. 8 are 1 .. 4 with the rate
    return layout.empty() ? layout : Format("%s=%s", {layout, TextAtRate(Qty, Rate)});
  } catch (const Exception&) {
    return {};
  }
}

bool TKovraMoney::IsInteger(std::string_view S) {
  std::int64_t value = 0;
  return TryStrToInt64(S, value);
}

bool TKovraMoney::IsFloat(std::string_view S) {
  double value = 0;
  return TryStrToFloat(S, value);
}

std::string TKovraMoney::Replicate(char C, int N) {
  return StringOfChar(C, N);
}

}  // namespace kvshare
