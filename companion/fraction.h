// Exact fractions of bounded size.
#pragma once

#include "kvshare/rtl/types.h"

namespace kvshare::companion {

// In lowest terms, the denominator positive. Numerator and denominator stay within kLargest; an
// operation whose exact result does not throws ECalculation, as a division by zero does.
class Fraction {
 public:
  static constexpr Int128 kLargest = [] {
    Int128 power = 1;
    for (int i = 0; i < 33; ++i) power *= 10;
    return power;
  }();

  Fraction() = default;
  Fraction(Int128 numerator, Int128 denominator);

  Int128 Numerator() const { return numerator_; }
  Int128 Denominator() const { return denominator_; }

  Fraction operator-() const;
  friend Fraction operator+(const Fraction& a, const Fraction& b);
  friend Fraction operator-(const Fraction& a, const Fraction& b) { return a + -b; }
  friend Fraction operator*(const Fraction& a, const Fraction& b);
  friend Fraction operator/(const Fraction& a, const Fraction& b);

 private:
  Int128 numerator_ = 0;
  Int128 denominator_ = 1;
};

}  // namespace kvshare::companion
