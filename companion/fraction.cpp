#include "companion/fraction.h"

#include <string_view>

#include "companion/arithmetic.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::companion {

namespace {

[[noreturn]] void ThrowTooLong() {
  throw ECalculation("ตัวเลขยาวเกินกว่าจะคำนวณให้ตรงทุกหลัก"_th);
}

constexpr Int128 Magnitude(Int128 value) {
  return value < 0 ? -value : value;
}

constexpr Int128 CommonDivisor(Int128 a, Int128 b) {
  a = Magnitude(a);
  while (b != 0) {
    const Int128 rest = a % b;
    a = b;
    b = rest;
  }
  return a;
}

// Neither gives the lowest number, which has no magnitude.
constexpr Int128 kLowest = Int128{1} << 126 << 1;

Int128 Times(Int128 a, Int128 b) {
  Int128 product = 0;
  if (__builtin_mul_overflow(a, b, &product) || product == kLowest) ThrowTooLong();
  return product;
}

Int128 Plus(Int128 a, Int128 b) {
  Int128 sum = 0;
  if (__builtin_add_overflow(a, b, &sum) || sum == kLowest) ThrowTooLong();
  return sum;
}

}  // namespace

// Both have a magnitude.
Fraction::Fraction(Int128 numerator, Int128 denominator) {
  if (denominator == 0) throw ECalculation("หารด้วยศูนย์ไม่ได้"_th);
  const Int128 common = CommonDivisor(numerator, Magnitude(denominator));
  const Int128 sign = denominator < 0 ? -1 : 1;
  numerator_ = sign * (numerator / common);
  denominator_ = sign * (denominator / common);
  if (Magnitude(numerator_) > kLargest || denominator_ > kLargest) ThrowTooLong();
}

Fraction Fraction::operator-() const {
  Fraction negative = *this;
  negative.numerator_ = -numerator_;
  return negative;
}

Fraction operator+(const Fraction& a, const Fraction& b) {
  const Int128 common = CommonDivisor(a.denominator_, b.denominator_);
  const Int128 left = Times(a.numerator_, b.denominator_ / common);
  const Int128 right = Times(b.numerator_, a.denominator_ / common);
  return {Plus(left, right), Times(a.denominator_ / common, b.denominator_)};
}

// Shortened across before it is multiplied, so that only what the result has can be too long.
Fraction operator*(const Fraction& a, const Fraction& b) {
  const Int128 first = CommonDivisor(a.numerator_, b.denominator_);
  const Int128 second = CommonDivisor(b.numerator_, a.denominator_);
  return {Times(a.numerator_ / first, b.numerator_ / second),
          Times(a.denominator_ / second, b.denominator_ / first)};
}

Fraction operator/(const Fraction& a, const Fraction& b) {
  return a * Fraction(b.denominator_, b.numerator_);
}

}  // namespace kvshare::companion
