// Whole numbers from texts.
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/textcursor.h"

namespace kvshare::inline rtl {

namespace {

constexpr unsigned kNoDigit = 99;

constexpr auto kDigitValues = [] {
  std::array<unsigned char, 256> values{};
  values.fill(kNoDigit);
  for (unsigned i = 0; i < 10; ++i) values['0' + i] = static_cast<unsigned char>(i);
  for (unsigned i = 0; i < 6; ++i) {
    values['a' + i] = values['A' + i] = static_cast<unsigned char>(10 + i);
  }
  return values;
}();

unsigned DigitValue(char c) {
  return kDigitValues[static_cast<unsigned char>(c)];
}

bool TakeHexPrefix(TextCursor& cursor) {
  if (cursor.Take('$') || cursor.TakeEither('x', 'X')) return true;
  const std::string_view rest = cursor.Rest();
  if (rest.size() < 2 || rest[0] != '0' || LowCase(rest[1]) != 'x') return false;
  cursor.Skip(2);
  return true;
}

// All of `digits` as a number in 0 .. `most`.
template <class Unsigned>
std::optional<Unsigned> ReadDigits(std::string_view digits, unsigned base, Unsigned most) {
  if (digits.empty()) return std::nullopt;
  const Unsigned limit = most / base;
  Unsigned value = 0;
  for (const char c : digits) {
    const unsigned digit = DigitValue(c);
    if (digit >= base || value > limit) return std::nullopt;
    value *= base;
    if (digit > most - value) return std::nullopt;
    value += digit;
  }
  return value;
}

template <class Int>
bool TryRead(std::string_view text, Int& value) {
  using Unsigned = std::make_unsigned_t<Int>;
  TextCursor cursor(text);
  cursor.SkipBlanks();
  const bool negative = cursor.TakeSign();
  const bool hex = TakeHexPrefix(cursor);
  const auto most = hex ? std::numeric_limits<Unsigned>::max()  // wraps to the sign bit
                        : static_cast<Unsigned>(std::numeric_limits<Int>::max()) +
                              (negative ? Unsigned{1} : Unsigned{0});
  const auto magnitude = ReadDigits<Unsigned>(cursor.Rest(), hex ? 16 : 10, most);
  if (!magnitude) return false;
  value = static_cast<Int>(negative ? Unsigned{0} - *magnitude : *magnitude);
  return true;
}

template <class Int>
Int Read(std::string_view text) {
  Int value = 0;
  if (!TryRead(text, value)) ThrowNotValid(text, "integer value");
  return value;
}

}  // namespace

bool TryStrToInt(std::string_view text, std::int32_t& value) {
  return TryRead(text, value);
}

bool TryStrToInt64(std::string_view text, std::int64_t& value) {
  return TryRead(text, value);
}

std::int32_t StrToInt(std::string_view text) {
  return Read<std::int32_t>(text);
}

std::int64_t StrToInt64(std::string_view text) {
  return Read<std::int64_t>(text);
}

std::int32_t StrToIntDef(std::string_view text, std::int32_t fallback) {
  TryRead(text, fallback);
  return fallback;
}

std::int64_t StrToInt64Def(std::string_view text, std::int64_t fallback) {
  TryRead(text, fallback);
  return fallback;
}

}  // namespace kvshare::inline rtl
