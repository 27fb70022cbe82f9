// The decimal digits that every number text is made from. Programs use Format,
// FormatFloat and the conversions.
// Internal header.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "kvshare/rtl/currency.h"

namespace kvshare::inline rtl {

// The first real number above every 64-bit integer.
inline constexpr double kTwoTo63 = 9223372036854775808.0;

// A number as 0.D1 D2 D3 ... * 10^Point() and a sign; D1 and the last digit are not 0. Zero has no
// digit, Point() 1 and no sign. An amount has all its digits, up to 19; a real the 18 significant
// digits of its exact binary value, a tie to the even one.
class Decimal {
 public:
  static constexpr int kRealDigits = 18;

  explicit Decimal(Currency amount);
  explicit Decimal(double value);  // finite

  bool IsZero() const { return count_ == 0; }
  bool Negative() const { return negative_; }
  int Count() const { return count_; }                                    // 0 .. 19
  int Point() const { return point_; }                                    // -323 .. 309
  int Decimals() const { return count_ > point_ ? count_ - point_ : 0; }  // places they take
  int IntegerDigits() const { return IsZero() || point_ < 0 ? 0 : point_; }

  // D1 is at 0; places before and after the digits read '0'.
  char At(int index) const {
    return index >= 0 && index < count_ ? digits_[static_cast<std::size_t>(index)] : '0';
  }
  // The digits, with zeros after the last up to kRoom of them.
  const char* Digits() const { return digits_.data(); }

  // Rounds the digit text, 5 and more away from zero; what rounds to zero loses its sign.
  void RoundToDecimals(int decimals) { RoundTo(point_ + decimals); }
  void RoundToSignificant(int digits) { RoundTo(digits); }

  static constexpr int kRoom = 40;

 private:
  void RoundTo(int keep);
  void Shrink(int count);

  std::array<char, kRoom> digits_;  // '0' from count_ on
  int count_ = 0;
  int point_ = 1;
  bool negative_ = false;
};

inline constexpr int kMaxDecimals = 18;
inline constexpr int kMaxIntegerDigits = 18;
static_assert(kMaxIntegerDigits + kMaxDecimals <= Decimal::kRoom);

// Bytes that the writers below may touch: a sign, integer digits in threes, a point, decimals, and
// as many digits again for what they copy and do not count.
inline constexpr std::size_t kNumberRoom = 64;
static_assert(1 + kMaxIntegerDigits / 3 * 4 + 1 + 2 * kMaxDecimals <= kNumberRoom);

inline constexpr int kGeneralDigits = 15;  // of the general format where nothing else is asked for

// The marks between digits; '\0' prints nothing.
struct NumberMarks {
  char decimal;
  char thousand = '\0';
};

// The writers put a text at `out` and return its end.

// The magnitude with `decimals` places, to which the number is already rounded: kMaxDecimals at
// most, not counting zeros before the first digit. Before the point it has kMaxIntegerDigits at
// most.
char* PutFixed(char* out, const Decimal& number, int decimals, NumberMarks marks);

// The same with the places that the number needs, and its sign: -0.0001, 1234.5, 100.
char* PutShortest(char* out, const Decimal& number, NumberMarks marks);

// Rounded to `digits` (1 .. 18) significant ones: the shortest text where the number is below
// 10^digits and not below 0.0001, else as 1.5E20 or 1E-5.
char* PutGeneral(char* out, Decimal number, int digits, NumberMarks marks);

// `digits` (1 .. 18) significant digits and an exponent: -1.23E+003.
char* PutScientific(char* out, Decimal number, int digits, NumberMarks marks);

// `NAN`, `INF`, `-INF` for a number that has no digits; nothing for a finite one.
std::string_view NameOfNonFinite(double value);

}  // namespace kvshare::inline rtl
