#include "kvshare/money/words.h"

#include <string>

#include "kvshare/money/money.h"
#include "kvshare/rtl/ascii.h"

namespace kvshare::words {

namespace {

constexpr std::uint64_t kUnit = Currency::kScale;
constexpr std::uint64_t kTwelveDigits = 1'000'000'000'000;

// A text wider than its sixteen places loses its end: its first twelve digits are read as the whole
// part, and a decimal point where hundredths should stand counts as 0.
Digits DigitsOfCutText(Currency satang) {
  const std::string text = TKovraMoney::StrZero(satang, 16, 2);
  const auto digitAt = [&text](std::size_t i) {
    const char c = text[i];
    return IsDigit(c) ? static_cast<unsigned>(c - '0') : 0;
  };
  Digits digits;
  for (std::size_t i = 1; i < 13; ++i) digits.whole = digits.whole * 10 + digitAt(i);
  digits.hundredths = digitAt(14) * 10 + digitAt(15);
  return digits;
}

}  // namespace

Digits DigitsOf(Currency satang) {
  const std::uint64_t magnitude = satang.Magnitude();
  const std::uint64_t whole = magnitude / kUnit;
  const std::uint64_t fits = satang.Raw() < 0 ? kTwelveDigits : 10 * kTwelveDigits;  // or a sign
  if (whole >= fits) return DigitsOfCutText(satang);
  return {whole % kTwelveDigits, static_cast<unsigned>(magnitude % kUnit / 100)};
}

}  // namespace kvshare::words
