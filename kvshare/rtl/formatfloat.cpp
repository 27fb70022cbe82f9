#include "kvshare/rtl/formatfloat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <utility>

#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/longdecimal.h"
#include "kvshare/rtl/textcursor.h"
#include "kvshare/rtl/within.h"

namespace kvshare::inline rtl {

namespace {

enum class Mark : std::uint8_t { Literal, Zero, Digit, Point, Thousands, Exponent };

// A piece of a mask: what it means and, of a literal and an exponent, its bytes.
struct Token {
  Mark mark;
  std::string_view text;
};

std::string_view TakeBytes(std::string_view& rest, std::size_t count) {
  const std::string_view taken = rest.substr(0, count);
  rest.remove_prefix(taken.size());
  return taken;
}

// The text in quotes that `rest` begins with; without a second quote it runs to the end.
std::string_view TakeQuoted(std::string_view& rest) {
  const char quote = rest.front();
  rest.remove_prefix(1);
  const std::string_view text = TakeBytes(rest, rest.find(quote));
  if (!rest.empty()) rest.remove_prefix(1);
  return text;
}

// `E+`, `E-`, `e+`, `e-` and up to four zeros, or nothing.
std::string_view TakeExponent(std::string_view& rest) {
  constexpr std::size_t kMaxZeros = 4;
  if (rest.size() < 2 || (rest[1] != '+' && rest[1] != '-')) return {};
  std::size_t size = 2;
  while (size < rest.size() && size < 2 + kMaxZeros && rest[size] == '0') ++size;
  return TakeBytes(rest, size);
}

Token TakeToken(std::string_view& rest) {  // rest is not empty
  switch (rest.front()) {
    case '0':
      return {Mark::Zero, TakeBytes(rest, 1)};
    case '#':
      return {Mark::Digit, TakeBytes(rest, 1)};
    case '.':
      return {Mark::Point, TakeBytes(rest, 1)};
    case ',':
      return {Mark::Thousands, TakeBytes(rest, 1)};
    case '\'':
    case '"':
      return {Mark::Literal, TakeQuoted(rest)};
    case 'E':
    case 'e':
      if (const std::string_view text = TakeExponent(rest); !text.empty()) {
        return {Mark::Exponent, text};
      }
      break;
    default:
      break;
  }
  return {Mark::Literal, TakeBytes(rest, 1)};
}

// The bytes up to the next `;` outside quotes, which is dropped.
std::string_view TakeSection(std::string_view& rest) {
  const std::string_view mask = rest;
  while (!rest.empty() && rest.front() != ';') {
    if (rest.front() == '\'' || rest.front() == '"') {
      TakeQuoted(rest);
    } else {
      rest.remove_prefix(1);
    }
  }
  const std::string_view section = mask.substr(0, mask.size() - rest.size());
  if (!rest.empty()) rest.remove_prefix(1);
  return section;
}

// The sections of a mask; what follows the third is ignored. Numbers are a Decimal or a LongDecimal
// from here on.
class Sections {
 public:
  explicit Sections(std::string_view mask)
      : positive_(TakeSection(mask)), negative_(TakeSection(mask)), zero_(TakeSection(mask)) {}

  template <typename Number>
  std::string_view Of(const Number& number) const {
    const std::string_view own = OwnOf(number);
    return own.empty() ? positive_ : own;
  }
  template <typename Number>
  bool PrintSign(const Number& number) const {
    return number.Negative() && negative_.empty();
  }

 private:
  template <typename Number>
  std::string_view OwnOf(const Number& number) const {
    if (number.IsZero()) return zero_;
    return number.Negative() ? negative_ : positive_;
  }

  std::string_view positive_, negative_, zero_;  // in the order in which they are taken
};

// What a section asks of the number as a whole.
struct Layout {
  int integerPlaces = 0;
  int decimalPlaces = 0;
  int integerZeros = 0;  // integer places that always print
  int decimalZeros = 0;  // decimal places that always print
  bool thousands = false;
  bool exponent = false;

  int Places() const { return integerPlaces + decimalPlaces; }
};

Layout LayoutOf(std::string_view section) {
  Layout layout;
  bool afterPoint = false;
  while (!section.empty()) {
    const Mark mark = TakeToken(section).mark;
    if (mark == Mark::Point) afterPoint = true;
    if (mark == Mark::Thousands) layout.thousands = true;
    if (mark == Mark::Exponent) layout.exponent = true;
    if (mark != Mark::Zero && mark != Mark::Digit) continue;
    if (afterPoint) {
      ++layout.decimalPlaces;
      if (mark == Mark::Zero) layout.decimalZeros = layout.decimalPlaces;
    } else {
      ++layout.integerPlaces;
      if (mark == Mark::Zero || layout.integerZeros > 0) ++layout.integerZeros;
    }
  }
  layout.exponent = layout.exponent && layout.Places() > 0;
  return layout;
}

template <typename Number>
void Round(Number& number, const Layout& layout) {
  if (layout.exponent) {
    number.RoundToSignificant(layout.Places());
  } else {
    number.RoundToDecimals(layout.decimalPlaces);
  }
}

// Prints one section with a number that is rounded to its layout.
template <typename Number>
class SectionWriter {
 public:
  SectionWriter(std::string& out, const Number& number, const Layout& layout,
                const TFormatSettings& settings)
      : out_(out), number_(number), layout_(layout), settings_(settings) {
    if (!number.IsZero()) {
      point_ = layout.exponent ? layout.integerPlaces : number.Point();
      exponent_ = number.Point() - point_;
    }
    integerDigits_ = std::max(point_, layout.integerZeros);
    decimalDigits_ = std::max(number.Count() - point_, layout.decimalZeros);
  }

  void Write(std::string_view section) {
    while (!section.empty()) {
      const Token token = TakeToken(section);
      switch (token.mark) {
        case Mark::Literal:
          out_ += token.text;
          break;
        case Mark::Zero:
        case Mark::Digit:
          WritePlace();
          break;
        case Mark::Exponent:
          if (layout_.exponent) WriteExponent(token.text);
          break;
        case Mark::Point:
        case Mark::Thousands:
          break;
      }
    }
  }

 private:
  // The places stand for the powers integerPlaces-1 .. 0 of ten, then for the decimals; the first
  // one takes the greater powers too.
  void WritePlace() {
    const int power = layout_.integerPlaces - 1 - place_;
    if (place_++ == 0) {
      for (int excess = integerDigits_ - 1; excess >= layout_.integerPlaces; --excess) {
        WriteIntegerDigit(excess);
      }
    }
    if (power >= 0) {
      if (power < integerDigits_) WriteIntegerDigit(power);
      return;
    }
    const int decimal = -1 - power;
    if (decimal >= decimalDigits_) return;
    if (decimal == 0) WriteMark(settings_.DecimalSeparator);
    out_ += number_.At(point_ + decimal);
  }

  void WriteIntegerDigit(int power) {
    out_ += number_.At(point_ - 1 - power);
    if (layout_.thousands && power > 0 && power % 3 == 0) WriteMark(settings_.ThousandSeparator);
  }

  void WriteExponent(std::string_view form) {  // a letter, a sign, zeros
    out_ += form[0];
    if (exponent_ < 0) {
      out_ += '-';
    } else if (form[1] == '+') {
      out_ += '+';
    }
    std::array<char, 12> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::abs(exponent_)).ptr;
    const auto digits = static_cast<std::size_t>(end - text.data());
    const std::size_t wanted = form.size() - 2;
    if (wanted > digits) out_.append(wanted - digits, '0');
    out_.append(text.data(), digits);
  }

  void WriteMark(char mark) {
    if (mark != '\0') out_ += mark;
  }

  std::string& out_;
  const Number& number_;
  const Layout& layout_;
  const TFormatSettings& settings_;
  int point_ = 0;  // digits of number_ before the point; negative: zeros after it
  int exponent_ = 0;
  int integerDigits_ = 0;  // that print
  int decimalDigits_ = 0;
  int place_ = 0;
};

// `general` writes the number where no section does, and one of more integer digits than `most`.
template <typename Number, typename General>
void AppendBySections(std::string& out, std::string_view mask, Number number, int most,
                      const TFormatSettings& settings, General general) {
  const Sections sections(mask);
  std::string_view section = sections.Of(number);
  Layout layout = LayoutOf(section);
  const bool tooLong = number.Point() > most && !layout.exponent;
  if (section.empty() || tooLong) return general(number);
  const bool wasZero = number.IsZero();
  Round(number, layout);
  if (number.IsZero() && !wasZero) {
    section = sections.Of(number);
    layout = LayoutOf(section);
    if (section.empty()) return general(number);
  }
  if (sections.PrintSign(number)) out += '-';
  SectionWriter(out, number, layout, settings).Write(section);
}

}  // namespace

void AppendFormatFloat(std::string& out, std::string_view mask, double value,
                       const TFormatSettings& settings) {
  if (LiesIn(mask, out)) return AppendFormatFloat(out, std::string(mask), value, settings);
  if (const std::string_view name = NameOfNonFinite(value); !name.empty()) {
    out += name;
    return;
  }
  const auto general = [&](const Decimal& number) {
    char text[kNumberRoom];
    out.append(text, PutGeneral(text, number, kGeneralDigits, {settings.DecimalSeparator}));
  };
  AppendBySections(out, mask, Decimal(value), kMaxIntegerDigits, settings, general);
}

void AppendFormatFloat(std::string& out, std::string_view mask, Currency value,
                       const TFormatSettings& settings) {
  if (LiesIn(mask, out)) return AppendFormatFloat(out, std::string(mask), value, settings);
  const auto general = [&](const Decimal& amount) {
    char text[kNumberRoom];
    out.append(text, PutShortest(text, amount, {settings.DecimalSeparator}));
  };
  AppendBySections(out, mask, Decimal(value), kMaxIntegerDigits, settings, general);
}

void AppendFormatDigits(std::string& out, std::string_view mask, std::string_view digits,
                        const TFormatSettings& settings) {
  if (LiesIn(mask, out)) return AppendFormatDigits(out, std::string(mask), digits, settings);
  auto number = LongDecimal::Read(digits);
  if (!number) ThrowNotValid(digits, "floating point value");
  const auto general = [&](const LongDecimal& decimal) {
    decimal.AppendShortest(out, settings.DecimalSeparator);
  };
  constexpr int kAny = std::numeric_limits<int>::max();
  AppendBySections(out, mask, *std::move(number), kAny, settings, general);
}

std::string FormatFloat(std::string_view mask, double value, const TFormatSettings& settings) {
  std::string out;
  AppendFormatFloat(out, mask, value, settings);
  return out;
}

std::string FormatFloat(std::string_view mask, Currency value, const TFormatSettings& settings) {
  std::string out;
  AppendFormatFloat(out, mask, value, settings);
  return out;
}

std::string FormatDigits(std::string_view mask, std::string_view digits,
                         const TFormatSettings& settings) {
  std::string out;
  AppendFormatDigits(out, mask, digits, settings);
  return out;
}

std::string FormatCurr(std::string_view mask, Currency value, const TFormatSettings& settings) {
  return FormatFloat(mask, value, settings);
}

}  // namespace kvshare::inline rtl
