// Real numbers and amounts from texts.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/textcursor.h"

namespace kvshare::inline rtl {

namespace {

// A decimal number as written: whole.fraction * 10^exponent.
struct DecimalText {
  bool negative = false;
  std::string_view whole;     // digits, perhaps none
  std::string_view fraction;  // digits, perhaps none
  std::int64_t exponent = 0;
  std::string_view body;  // from the first digit or separator to the end of the exponent
};

// Far past what any number of digits in memory makes up for, far from overflow.
constexpr std::int64_t kExponentLimit = 1'000'000'000'000'000;

std::int64_t ReadExponent(TextCursor& cursor) {
  const bool negative = cursor.TakeSign();
  std::int64_t exponent = 0;
  for (const char c : cursor.TakeDigits()) {
    exponent = std::min(exponent * 10 + (c - '0'), kExponentLimit);
  }
  return negative ? -exponent : exponent;
}

// A point without digits is zero, an exponent without digits is no exponent.
std::optional<DecimalText> ReadDecimalText(std::string_view text, char separator) {
  TextCursor cursor(text);
  DecimalText number;
  cursor.SkipBlanks();
  number.negative = cursor.TakeSign();
  const std::string_view start = cursor.Rest();
  number.whole = cursor.TakeDigits();
  const bool hasPoint = cursor.Take(separator);
  if (hasPoint) number.fraction = cursor.TakeDigits();
  if (number.whole.empty() && !hasPoint) return std::nullopt;
  if (cursor.TakeEither('e', 'E')) number.exponent = ReadExponent(cursor);
  number.body = start.substr(0, start.size() - cursor.Rest().size());
  cursor.SkipBlanks();
  if (!cursor.AtEnd()) return std::nullopt;
  return number;
}

// True for a number of 1 and more, by the place of its first digit that is not zero.
bool IsOneOrMore(const DecimalText& number) {
  const auto zerosAhead = [](std::string_view digits) {
    return static_cast<std::int64_t>(std::min(digits.find_first_not_of('0'), digits.size()));
  };
  const auto wholeSize = static_cast<std::int64_t>(number.whole.size());
  const std::int64_t zeros = zerosAhead(number.whole);
  const std::int64_t place = zeros < wholeSize ? wholeSize - zeros : -zerosAhead(number.fraction);
  return place + number.exponent > 0;
}

// The magnitude; nothing where it passes the largest double. What is too small for a double is 0.
std::optional<double> ToDouble(const DecimalText& number, char separator) {
  if (number.whole.empty() && number.fraction.empty()) return 0.0;
  std::string withPoint;
  std::string_view body = number.body;
  const std::size_t point = number.whole.size();
  if (separator != '.' && point < body.size() && body[point] == separator) {
    withPoint = body;
    withPoint[point] = '.';
    body = withPoint;
  }
  double value = 0;
  const auto parsed = std::from_chars(body.data(), body.data() + body.size(), value);
  if (parsed.ec != std::errc::result_out_of_range) return value;
  if (IsOneOrMore(number)) return std::nullopt;
  return 0.0;
}

constexpr std::uint64_t kMostRaw = std::uint64_t{1} << 63;  // of a negative amount

// The digits of a number one by one, as many zeros before and after them as are asked for.
class AmountReader {
 public:
  // `places` of the digits still to come belong to the ten-thousandths, the rest is rounded away.
  explicit AmountReader(std::int64_t places) : places_(places) {}

  void Read(std::string_view digits) {
    for (const char c : digits) ReadDigit(static_cast<unsigned>(c - '0'));
  }

  // The magnitude in ten-thousandths, at most kMostRaw.
  std::optional<std::uint64_t> Finish() {
    while (places_ > 0 && raw_ != 0 && !overflow_) ReadDigit(0);
    const bool up = rest_ == Rest::MoreThanHalf || (rest_ == Rest::Half && (raw_ & 1) != 0);
    if (overflow_ || raw_ + (up ? 1 : 0) > kMostRaw) return std::nullopt;
    return raw_ + (up ? 1 : 0);
  }

 private:
  enum class Rest : std::uint8_t { LessThanHalf, Half, MoreThanHalf };

  void ReadDigit(unsigned digit) {
    const std::int64_t place = places_--;
    if (place > 0) {
      overflow_ = overflow_ || raw_ > kMostRaw / 10;
      raw_ = raw_ * 10 + digit;
    } else if (place == 0) {  // the first digit that is rounded away
      rest_ = digit > 5 ? Rest::MoreThanHalf : digit == 5 ? Rest::Half : Rest::LessThanHalf;
    } else if (digit != 0 && rest_ == Rest::Half) {
      rest_ = Rest::MoreThanHalf;
    }
  }

  std::int64_t places_;
  std::uint64_t raw_ = 0;
  Rest rest_ = Rest::LessThanHalf;
  bool overflow_ = false;
};

std::optional<Currency> ToCurrency(const DecimalText& number) {
  AmountReader reader(static_cast<std::int64_t>(number.whole.size()) + number.exponent + 4);
  reader.Read(number.whole);
  reader.Read(number.fraction);
  const std::optional<std::uint64_t> raw = reader.Finish();
  if (!raw || (*raw == kMostRaw && !number.negative)) return std::nullopt;
  return Currency::FromRaw(static_cast<std::int64_t>(number.negative ? 0 - *raw : *raw));
}

constexpr std::string_view kKind = "floating point value";

}  // namespace

bool TryStrToFloat(std::string_view text, double& value, const TFormatSettings& settings) {
  const auto number = ReadDecimalText(text, settings.DecimalSeparator);
  if (!number) return false;
  const auto magnitude = ToDouble(*number, settings.DecimalSeparator);
  if (!magnitude) return false;
  value = number->negative ? -*magnitude : *magnitude;
  return true;
}

double StrToFloat(std::string_view text, const TFormatSettings& settings) {
  double value = 0;
  if (!TryStrToFloat(text, value, settings)) ThrowNotValid(text, kKind);
  return value;
}

bool TryStrToCurr(std::string_view text, Currency& value, const TFormatSettings& settings) {
  const auto number = ReadDecimalText(text, settings.DecimalSeparator);
  if (!number) return false;
  const auto amount = ToCurrency(*number);
  if (!amount) return false;
  value = *amount;
  return true;
}

Currency StrToCurr(std::string_view text, const TFormatSettings& settings) {
  Currency value;
  if (!TryStrToCurr(text, value, settings)) ThrowNotValid(text, kKind);
  return value;
}

}  // namespace kvshare::inline rtl
