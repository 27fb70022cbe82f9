#include "companion/arithmetic.h"

#include <algorithm>
#include <optional>

#include "companion/fraction.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/format.h"

namespace kvshare::companion {

namespace {

class Line {
 public:
  explicit Line(std::string_view text) : text_(text) {}

  Fraction Read() {
    SkipBlanks();
    if (AtEnd()) throw ECalculation("ยังไม่มีตัวเลข"_th);
    Fraction value = Sum();
    if (!AtEnd()) Refuse();
    return value;
  }

 private:
  struct Term {
    Fraction value;
    bool isPercent = false;  // alone, so that it is one of what stands before it
  };

  bool AtEnd() const { return at_ == text_.size(); }
  char Next() const { return AtEnd() ? '\0' : text_[at_]; }

  void SkipBlanks() {
    while (Next() == ' ') ++at_;
  }

  bool Take(char sign) {
    if (Next() != sign) return false;
    ++at_;
    SkipBlanks();
    return true;
  }

  [[noreturn]] void Refuse() const {
    constexpr std::string_view kMessage = "สูตรไม่ถูกต้องที่ตำแหน่ง %d"_th;
    throw ECalculation(Format(kMessage, {static_cast<int>(at_ + 1)}));
  }

  Fraction Sum() {
    Fraction sum = Product().value;
    for (;;) {
      const bool minus = Next() == '-';
      if (!Take('+') && !Take('-')) return sum;
      const Term term = Product();
      const Fraction added = term.isPercent ? sum * term.value : term.value;
      sum = minus ? sum - added : sum + added;
    }
  }

  Term Product() {
    Term product = Signed();
    for (;;) {
      const bool divides = Next() == '/';
      if (!Take('*') && !Take('/')) return product;
      const Fraction factor = Signed().value;
      product = {divides ? product.value / factor : product.value * factor, false};
    }
  }

  Term Signed() {
    bool negative = false;
    while (Next() == '-' || Next() == '+') {
      negative ^= Next() == '-';
      Take(Next());
    }
    Term term{Value(), false};
    while (Take('%')) term = {term.value * Fraction(1, 100), true};
    if (negative) term.value = -term.value;
    return term;
  }

  Fraction Value() {
    if (!Take('(')) return Number();
    const Fraction inside = Sum();
    if (!Take(')')) Refuse();
    return inside;
  }

  // The digits that stand here, which are put behind the digits of `number`.
  int Digits(Fraction& number) {
    int count = 0;
    for (; IsDigit(Next()); ++at_, ++count) {
      number = number * Fraction(10, 1) + Fraction(Next() - '0', 1);
    }
    return count;
  }

  // A comma means thousands, so that one that is meant as a point is refused.
  int WholeDigits(Fraction& number) {
    int count = Digits(number);
    const bool grouped = Next() == ',' && count >= 1 && count <= 3;
    while (grouped && Next() == ',') {
      ++at_;
      if (const int group = Digits(number); group != 3) Refuse();
      count += 3;
    }
    return count;
  }

  Fraction Number() {
    Fraction number;
    int count = WholeDigits(number);
    Fraction place(1, 1);
    if (Next() == '.') {
      ++at_;
      for (; IsDigit(Next()); ++at_, ++count) {
        place = place * Fraction(1, 10);
        number = number + place * Fraction(Next() - '0', 1);
      }
    }
    if (count == 0) Refuse();
    SkipBlanks();
    return number;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

constexpr int kDigits = 15;  // that a double holds for sure
constexpr Int128 kEnd = 1'000'000'000'000'000;
constexpr int kDecimals = 4;

constexpr Int128 Magnitude(Int128 value) {
  return value < 0 ? -value : value;
}

constexpr Int128 PowerOfTen(int exponent) {
  Int128 power = 1;
  for (; exponent > 0; --exponent) power *= 10;
  return power;
}

// The decimals of a fraction that has an end; nothing past what kDigits could hold.
std::optional<int> DecimalsOf(Int128 denominator) {
  constexpr int kMost = 30;
  for (int decimals = 0; decimals <= kMost; ++decimals) {
    if (PowerOfTen(decimals) % denominator == 0) return decimals;
  }
  return std::nullopt;
}

// `scaled` times 10^-decimals, without zeros at its end.
std::string DecimalText(Int128 scaled, int decimals) {
  std::string digits;  // from the last on
  for (Int128 rest = Magnitude(scaled); rest != 0; rest /= 10) {
    digits += static_cast<char>('0' + static_cast<int>(rest % 10));
  }
  const auto places = static_cast<std::size_t>(decimals);
  digits.resize(std::max(digits.size(), places + 1), '0');
  if (places > 0) {
    digits.insert(places, 1, '.');
    digits.erase(0, digits.find_first_not_of('0'));
    if (digits.front() == '.') digits.erase(0, 1);
  }
  if (scaled < 0) digits += '-';
  std::ranges::reverse(digits);
  return digits;
}

std::optional<Answer> ExactAnswer(const Fraction& value) {
  const std::optional<int> decimals = DecimalsOf(value.Denominator());
  if (!decimals) return std::nullopt;
  Int128 scaled = 0;
  const Int128 factor = PowerOfTen(*decimals) / value.Denominator();
  if (__builtin_mul_overflow(value.Numerator(), factor, &scaled)) return std::nullopt;
  if (Magnitude(scaled) >= kEnd) return std::nullopt;
  return Answer{DecimalText(scaled, *decimals), false, *decimals};
}

Answer RoundedAnswer(const Fraction& value) {
  static_assert(Fraction::kLargest * PowerOfTen(kDecimals) < Int128{1} << 126);
  for (int decimals = kDecimals; decimals >= 0; --decimals) {
    const Int128 scaled =
        DivideHalfEven(value.Numerator() * PowerOfTen(decimals), value.Denominator());
    if (Magnitude(scaled) < kEnd) return {DecimalText(scaled, decimals), true, decimals};
  }
  constexpr std::string_view kMessage = "ผลลัพธ์เกิน %d หลัก"_th;
  throw ECalculation(Format(kMessage, {kDigits}));
}

}  // namespace

Answer Calculate(std::string_view line) {
  if (line.size() > kLongestLine) throw ECalculation("สูตรยาวเกินไป"_th);
  const Fraction value = Line(line).Read();
  if (const auto exact = ExactAnswer(value)) return *exact;
  return RoundedAnswer(value);
}

}  // namespace kvshare::companion
