// A decimal of any number of digits, for values that no amount and no real can hold.
// Internal header.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kvshare::inline rtl {

// 0.D1 D2 D3 ... * 10^Point() and a sign, as Decimal (decimal.h).
class LongDecimal {
 public:
  // Reads [-]digits[.digits] with a digit at least; nothing for another text.
  static std::optional<LongDecimal> Read(std::string_view text);

  bool IsZero() const { return digits_.empty(); }
  bool Negative() const { return negative_; }
  int Count() const { return static_cast<int>(digits_.size()); }
  int Point() const { return point_; }
  int Decimals() const { return Count() > point_ ? Count() - point_ : 0; }  // places they take

  // D1 is at 0; places before and after the digits read '0'.
  char At(int index) const {
    return index >= 0 && index < Count() ? digits_[static_cast<std::size_t>(index)] : '0';
  }

  // Rounds half away from zero; what rounds to zero loses its sign.
  void RoundToDecimals(int decimals) { RoundTo(point_ + decimals); }
  void RoundToSignificant(int digits) { RoundTo(digits); }

  // -0.0001, 1234.5, 100: without zeros that say nothing. No mark where `decimalSeparator` is '\0'.
  void AppendShortest(std::string& out, char decimalSeparator) const;

 private:
  void RoundTo(int keep);
  void Shrink();

  std::string digits_;  // neither the first nor the last is 0
  int point_ = 1;
  bool negative_ = false;
};

}  // namespace kvshare::inline rtl
