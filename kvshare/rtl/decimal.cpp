#include "kvshare/rtl/decimal.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "kvshare/rtl/digits.h"

namespace kvshare::inline rtl {

namespace {

constexpr int kCurrencyDecimals = 4;

constexpr auto kPowersOfTen = [] {
  std::array<std::uint64_t, 20> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// The decimal digits of `value`, which is not 0. From the bits comes the number of digits or one
// less: 1233 / 4096 is the logarithm of 2, near enough for 64 of them.
constexpr int CountDigits(std::uint64_t value) {
  const auto least = static_cast<std::size_t>(std::bit_width(value) * 1233 / 4096);  // 0 .. 19
  return static_cast<int>(least) + (value >= kPowersOfTen[least] ? 1 : 0);
}
static_assert(CountDigits(1) == 1 && CountDigits(9) == 1 && CountDigits(10) == 2);
static_assert(CountDigits(std::uint64_t{1} << 63) == 19 && CountDigits(UINT64_MAX) == 20);

// Copies `Most` digits and keeps `count` of them: a copy of a fixed size is a few moves instead of
// a call. Both sides have room behind what counts.
template <int Most>
char* PutDigits(char* out, const char* digits, int count) {
  std::memcpy(out, digits, Most);
  return out + count;
}

char* PutMark(char* out, char mark) {
  if (mark != '\0') *out++ = mark;
  return out;
}

char* PutIntegerDigits(char* out, const Decimal& number, char thousand) {
  const int digits = number.Point();
  if (digits <= 0) {
    *out++ = '0';
    return out;
  }
  const char* from = number.Digits();
  if (thousand == '\0') return PutDigits<kMaxIntegerDigits>(out, from, digits);
  const int lead = (digits - 1) % 3 + 1;
  out = PutDigits<3>(out, from, lead);
  for (from += lead; from != number.Digits() + digits; from += 3) {
    *out++ = thousand;
    out = PutDigits<3>(out, from, 3);
  }
  return out;
}

// One digit, the point, the others.
char* PutMantissa(char* out, const Decimal& number, int digits, char decimal) {
  *out++ = number.At(0);
  if (digits == 1) return out;
  out = PutMark(out, decimal);
  return PutDigits<Decimal::kRealDigits - 1>(out, number.Digits() + 1, digits - 1);
}

}  // namespace

Decimal::Decimal(Currency amount) {
  digits_.fill('0');
  std::uint64_t magnitude = amount.Magnitude();
  if (magnitude == 0) return;
  int scale = kCurrencyDecimals;
  if (magnitude % 100 == 0) {  // satang at most, as nearly every amount: two digits fewer to make
    magnitude /= 100;
    scale -= 2;
  }
  const int count = CountDigits(magnitude);
  digits::PutBackward(digits_.data() + count, magnitude);
  point_ = count - scale;
  negative_ = amount.Raw() < 0;
  Shrink(count);
}

Decimal::Decimal(double value) {
  digits_.fill('0');
  if (value == 0) return;
  std::array<char, 32> text;
  const auto written = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                     std::chars_format::scientific, kRealDigits - 1);
  // d.ddde+xx
  digits_[0] = text[0];
  std::memcpy(&digits_[1], &text[2], kRealDigits - 1);
  const char* exponent = &text[kRealDigits + 2];
  if (*exponent == '+') ++exponent;
  int power = 0;
  std::from_chars(exponent, written.ptr, power);
  point_ = power + 1;
  negative_ = value < 0;
  Shrink(kRealDigits);
}

void Decimal::RoundTo(int keep) {
  if (keep >= count_) return;
  const bool up = keep >= 0 && At(keep) >= '5';
  const auto from = static_cast<std::size_t>(std::max(keep, 0));
  std::fill(&digits_[from], &digits_[0] + count_, '0');
  count_ = static_cast<int>(from);
  if (!up) {
    Shrink(count_);
    return;
  }
  for (; count_ > 0 && At(count_ - 1) == '9'; --count_) {
    digits_[static_cast<std::size_t>(count_ - 1)] = '0';
  }
  if (count_ == 0) {
    count_ = 1;
    ++point_;
  }
  ++digits_[static_cast<std::size_t>(count_ - 1)];
}

// Takes `count` digits, less the zeros at their end, as the number's.
void Decimal::Shrink(int count) {
  while (count > 0 && digits_[static_cast<std::size_t>(count - 1)] == '0') --count;
  count_ = count;
  if (count_ > 0) return;
  point_ = 1;
  negative_ = false;
}

char* PutFixed(char* out, const Decimal& number, int decimals, NumberMarks marks) {
  out = PutIntegerDigits(out, number, marks.thousand);
  if (decimals == 0) return out;
  out = PutMark(out, marks.decimal);
  const int zeros = std::clamp(-number.Point(), 0, decimals);
  out = std::fill_n(out, zeros, '0');
  const char* const from = number.Digits() + std::max(number.Point(), 0);
  return PutDigits<kMaxDecimals>(out, from, decimals - zeros);
}

char* PutShortest(char* out, const Decimal& number, NumberMarks marks) {
  if (number.Negative()) *out++ = '-';
  return PutFixed(out, number, number.Decimals(), marks);
}

char* PutGeneral(char* out, Decimal number, int digits, NumberMarks marks) {
  constexpr int kSmallestPoint = -3;  // of 0.0001
  number.RoundToSignificant(digits);
  if (number.Point() <= digits && number.Point() >= kSmallestPoint) {
    return PutShortest(out, number, marks);
  }
  if (number.Negative()) *out++ = '-';
  out = PutMantissa(out, number, number.Count(), marks.decimal);
  *out++ = 'E';
  return std::to_chars(out, out + 4, number.Point() - 1).ptr;
}

char* PutScientific(char* out, Decimal number, int digits, NumberMarks marks) {
  number.RoundToSignificant(digits);
  if (number.Negative()) *out++ = '-';
  out = PutMantissa(out, number, digits, marks.decimal);
  const int exponent = number.Point() - 1;
  const auto size = static_cast<unsigned>(std::abs(exponent));  // below 1000
  *out++ = 'E';
  *out++ = exponent < 0 ? '-' : '+';
  *out++ = static_cast<char>('0' + size / 100);
  digits::PutPair(out, size % 100);
  return out + 2;
}

std::string_view NameOfNonFinite(double value) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  return {};
}

}  // namespace kvshare::inline rtl
