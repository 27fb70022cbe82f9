#include "kvshare/rtl/currency.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>

namespace kvshare::inline rtl {

namespace {

constexpr Int128 PowerOfTen(int exponent) {  // 0 .. 37
  Int128 power = 1;
  for (int i = 0; i < exponent; ++i) power *= 10;
  return power;
}

// A finite number as the shortest decimal text that stands for it: digits * 10^exponent.
struct ShortDecimal {
  std::int64_t digits = 0;  // at most 17 digits
  int exponent = 0;
};

ShortDecimal ShortestDecimal(double value) {
  char text[32];
  const auto [end, error] =
      std::to_chars(std::begin(text), std::end(text), value, std::chars_format::scientific);
  ShortDecimal result;
  const char* c = text;
  const bool negative = *c == '-';
  if (negative) ++c;
  for (bool afterPoint = false; c != end && *c != 'e'; ++c) {
    if (*c == '.') {
      afterPoint = true;
      continue;
    }
    result.digits = result.digits * 10 + (*c - '0');
    if (afterPoint) --result.exponent;
  }
  if (negative) result.digits = -result.digits;
  int power = 0;
  if (c != end) std::from_chars(c[1] == '+' ? c + 2 : c + 1, end, power);
  result.exponent += power;
  return result;
}

}  // namespace

Currency FloatToCurrency(double value) {
  if (!(std::fabs(value) < 1e15)) throw EInvalidOp();  // NaN too
  const ShortDecimal decimal = ShortestDecimal(value);
  const int shift = decimal.exponent + 4;  // below 19 for a value below 10^15
  if (shift < -18) return {};              // at most 17 digits: below a tenth of the last place
  const Int128 raw = shift >= 0 ? decimal.digits * PowerOfTen(shift)
                                : DivideHalfEven(decimal.digits, PowerOfTen(-shift));
  if (raw < Currency::Min().Raw() || raw > Currency::Max().Raw()) throw EInvalidOp();
  return Currency::FromWide(raw);
}

double CurrencyToFloat(Currency amount) {
  constexpr std::uint64_t kExactCounts = std::uint64_t{1} << 53;
  constexpr auto kScale = static_cast<double>(Currency::kScale);
  if (amount.Magnitude() <= kExactCounts) return static_cast<double>(amount.Raw()) / kScale;
  // The count itself would round; in two parts only the sum does. A part of 0.0001 is never so near
  // to a tie that its own rounding could turn it.
  return static_cast<double>(Trunc(amount)) + static_cast<double>(Frac(amount).Raw()) / kScale;
}

}  // namespace kvshare::inline rtl
