// Exact money and quantities.
#pragma once

#include <compare>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kvshare/export.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/types.h"

namespace kvshare::inline rtl {

// Divides and rounds a tie to the even neighbour. `divisor` is not 0; the magnitudes of both stay
// below 2^126, so that doubling the remainder cannot overflow.
constexpr Int128 DivideHalfEven(Int128 dividend, Int128 divisor) {
  const bool negative = (dividend < 0) != (divisor < 0);
  const Int128 n = dividend < 0 ? -dividend : dividend;
  const Int128 d = divisor < 0 ? -divisor : divisor;
  Int128 quotient = n / d;
  const Int128 twice = 2 * (n % d);
  if (twice > d || (twice == d && (quotient & 1) != 0)) ++quotient;
  return negative ? -quotient : quotient;
}

// A signed count of ten-thousandths of a baht (or of a unit of quantity), from
// -922337203685477.5808 to 922337203685477.5807. Every operation is exact or rounds once, a tie to
// the even ten-thousandth; a result out of range throws EIntOverflow.
class Currency {
 public:
  static constexpr std::int64_t kScale = 10'000;

  constexpr Currency() = default;

  // `raw` ten-thousandths: FromRaw(12'345'000) is 1234.50.
  static constexpr Currency FromRaw(std::int64_t raw) { return Currency(raw); }

  // A whole number of units. Throws EIntOverflow past 922337203685477.
  static constexpr Currency FromInt(std::int64_t units) { return FromWide(Int128{units} * kScale); }

  // Ten-thousandths of any width. Throws EIntOverflow where they do not fit.
  static constexpr Currency FromWide(Int128 raw) {
    if (raw > std::numeric_limits<std::int64_t>::max() ||
        raw < std::numeric_limits<std::int64_t>::min()) {
      throw EIntOverflow();
    }
    return Currency(static_cast<std::int64_t>(raw));
  }

  static constexpr Currency Max() { return Currency(std::numeric_limits<std::int64_t>::max()); }
  static constexpr Currency Min() { return Currency(std::numeric_limits<std::int64_t>::min()); }

  constexpr std::int64_t Raw() const { return raw_; }

  // |raw|, which fits for every amount: 0 .. 2^63.
  constexpr std::uint64_t Magnitude() const {
    const auto bits = static_cast<std::uint64_t>(raw_);
    return raw_ < 0 ? std::uint64_t{0} - bits : bits;
  }

  // NOLINTNEXTLINE(modernize-use-nullptr): the 0 of a rewritten comparison is no pointer
  constexpr auto operator<=>(const Currency&) const = default;

  friend constexpr Currency operator-(Currency a) { return FromWide(-Int128{a.raw_}); }
  friend constexpr Currency operator+(Currency a, Currency b) {
    return FromWide(Int128{a.raw_} + b.raw_);
  }
  friend constexpr Currency operator-(Currency a, Currency b) {
    return FromWide(Int128{a.raw_} - b.raw_);
  }
  // Rounded once: 0.0001 * 0.5 is 0, 0.0003 * 0.5 is 0.0002.
  friend constexpr Currency operator*(Currency a, Currency b) {
    return FromWide(DivideHalfEven(Int128{a.raw_} * b.raw_, kScale));
  }
  // Rounded once: 1 / 3 is 0.3333. Throws EZeroDivide for x / 0, EInvalidOp for 0 / 0.
  friend constexpr Currency operator/(Currency a, Currency b) {
    CheckDivisor(b, a.raw_ == 0);
    return FromWide(DivideHalfEven(Int128{a.raw_} * kScale, b.raw_));
  }
  // a * b / c rounded once, as one expression is: MulDiv(0.5, 0.0001, 0.1) is 0.0005. Errors as /.
  friend constexpr Currency MulDiv(Currency a, Currency b, Currency c) {
    CheckDivisor(c, a.raw_ == 0 || b.raw_ == 0);
    return FromWide(DivideHalfEven(Int128{a.raw_} * b.raw_, c.raw_));
  }

  constexpr Currency& operator+=(Currency b) { return *this = *this + b; }
  constexpr Currency& operator-=(Currency b) { return *this = *this - b; }

 private:
  explicit constexpr Currency(std::int64_t raw) : raw_(raw) {}

  static constexpr void CheckDivisor(Currency divisor, bool dividendIsZero) {
    if (divisor.raw_ != 0) return;
    if (dividendIsZero) throw EInvalidOp();
    throw EZeroDivide();
  }

  std::int64_t raw_ = 0;
};
static_assert(!std::is_constructible_v<Currency, double>, "nothing exact is made from a double");

constexpr Currency Abs(Currency amount) {
  return amount.Raw() < 0 ? -amount : amount;
}

// The whole units, toward zero: Trunc(-1.25) is -1.
constexpr std::int64_t Trunc(Currency amount) {
  return amount.Raw() / Currency::kScale;
}

// Trunc as an amount, and what it leaves, with the amount's sign: Frac(-1.25) is -0.25.
constexpr Currency Int(Currency amount) {
  return Currency::FromRaw(amount.Raw() - amount.Raw() % Currency::kScale);
}
constexpr Currency Frac(Currency amount) {
  return Currency::FromRaw(amount.Raw() % Currency::kScale);
}

// The nearest whole number, a tie to the even one: Round(2.5) is 2.
constexpr std::int64_t Round(Currency amount) {
  return static_cast<std::int64_t>(DivideHalfEven(amount.Raw(), Currency::kScale));
}

// The number as its shortest decimal text reads, rounded to four decimals, a tie to the even one:
// 0.00005 is 0, 0.00015 is 0.0002. Throws EInvalidOp for NaN, infinity and values out of range.
KVSHARE_API Currency FloatToCurrency(double value);

// The double nearest to the amount; for display and foreign interfaces, never for arithmetic.
KVSHARE_API double CurrencyToFloat(Currency amount);

inline namespace literals {

// An amount as written: 12.50_baht. More than four decimals or a value out of range stops the
// compiler.
consteval Currency operator""_baht(const char* digits) {
  Int128 raw = 0;
  int decimals = -1;  // -1 before the point
  for (const char* c = digits; *c != '\0'; ++c) {
    if (*c == '\'') continue;
    if (*c == '.') {
      if (decimals >= 0) throw "two decimal points";
      decimals = 0;
      continue;
    }
    if (*c < '0' || *c > '9') throw "decimal digits only";
    if (decimals >= 0 && ++decimals > 4) throw "an amount has four decimals";
    raw = raw * 10 + (*c - '0');
  }
  for (int i = decimals < 0 ? 0 : decimals; i < 4; ++i) raw *= 10;
  return Currency::FromWide(raw);
}

}  // namespace literals
}  // namespace kvshare::inline rtl
