#include "kvshare/data/fields/editmask.h"

#include <algorithm>
#include <utility>

#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

// Consonants, vowels and marks, with the two signs that words end in; neither the baht sign nor
// digits and section marks.
constexpr bool IsThaiLetter(unsigned char c) {
  return (c >= 0xA1 && c <= 0xDA) || (c >= 0xE0 && c <= 0xEE);
}

constexpr bool IsThaiDigit(unsigned char c) {
  return c >= 0xF0 && c <= 0xF9;
}

constexpr bool IsLetter(char c) {
  const char upper = UpCase(c);
  return (upper >= 'A' && upper <= 'Z') || IsThaiLetter(static_cast<unsigned char>(c));
}

constexpr bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < ' ' || byte == 0x7F;
}

struct Symbol {
  char symbol;
  TMaskPlace::Kind kind;
  bool required;
};

constexpr Symbol kSymbols[] = {
    {'0', TMaskPlace::Kind::Digit, true},          {'9', TMaskPlace::Kind::Digit, false},
    {'#', TMaskPlace::Kind::DigitOrSign, false},   {'L', TMaskPlace::Kind::Letter, true},
    {'l', TMaskPlace::Kind::Letter, false},        {'A', TMaskPlace::Kind::LetterOrDigit, true},
    {'a', TMaskPlace::Kind::LetterOrDigit, false}, {'C', TMaskPlace::Kind::Any, true},
    {'c', TMaskPlace::Kind::Any, false},
};

// Where the part that `mask` begins with ends: at a `;` that no `\` precedes, or with the mask.
std::size_t EndOfText(std::string_view mask) {
  for (std::size_t i = 0; i < mask.size(); ++i) {
    if (mask[i] == ';') return i;
    if (mask[i] == '\\') ++i;
  }
  return mask.size();
}

}  // namespace

bool TMaskPlace::Takes(char c) const {
  switch (kind) {
    case Kind::Literal:
      return false;
    case Kind::Digit:
      return IsDigit(c);
    case Kind::DigitOrSign:
      return IsDigit(c) || c == '+' || c == '-';
    case Kind::Letter:
      return IsLetter(c);
    case Kind::LetterOrDigit:
      return IsLetter(c) || IsDigit(c) || IsThaiDigit(static_cast<unsigned char>(c));
    case Kind::Any:
      return !IsControl(c);
  }
  return false;
}

char TMaskPlace::InCase(char c) const {
  switch (letterCase) {
    case Case::Upper:
      return UpCase(c);
    case Case::Lower:
      return LowCase(c);
    default:
      return c;
  }
}

TEditMask::TEditMask(std::string_view mask) {
  const std::size_t end = EndOfText(mask);
  ReadText(mask.substr(0, end));
  if (end == mask.size()) return;
  const std::string_view options = mask.substr(end + 1);
  const std::size_t second = options.find(';');
  savesLiterals_ = options.substr(0, second) != "0";
  if (second != std::string_view::npos && second + 1 < options.size()) {
    blankChar_ = options[second + 1];
  }
}

void TEditMask::AddLiteral(char c, bool separator) {
  if (c == '\0' && separator) return;
  TMaskPlace place;
  place.literal = c;
  place.separator = separator;
  places_.push_back(place);
}

void TEditMask::ReadText(std::string_view text) {
  auto letterCase = TMaskPlace::Case::AsTyped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const auto* symbol = std::ranges::find(kSymbols, c, &Symbol::symbol);
    if (symbol != std::end(kSymbols)) {
      places_.push_back({symbol->kind, '\0', false, symbol->required, letterCase});
    } else if (c == '!') {
      opensInFront_ = true;
    } else if (c == '>') {
      letterCase = TMaskPlace::Case::Upper;
    } else if (c == '<') {
      const bool asTyped = text.substr(i + 1).starts_with('>');
      letterCase = asTyped ? TMaskPlace::Case::AsTyped : TMaskPlace::Case::Lower;
      if (asTyped) ++i;
    } else if (c == '/') {
      AddLiteral(FormatSettings.DateSeparator, true);
    } else if (c == ':') {
      AddLiteral(FormatSettings.TimeSeparator, true);
    } else if (c == '_') {
      AddLiteral(' ', false);
    } else if (c != '\\') {
      AddLiteral(c, false);
    } else if (++i < text.size()) {
      AddLiteral(text[i], false);
    }
  }
}

std::string TEditMask::EmptyText() const {
  return TMaskedText(*this).Shown();
}

std::string TEditMask::Format(std::string_view value) const {
  if (IsEmpty() || value.empty()) return std::string(value);
  TEditMask blanks = *this;
  blanks.blankChar_ = ' ';
  TMaskedText text(std::move(blanks));
  return text.Load(value) ? text.Shown() : std::string(value);
}

std::string TEditMask::ValueOfLine(std::string_view line) const {
  if (IsEmpty()) return std::string(line);
  TMaskedText text(*this);
  if (!text.TakeLine(line) || !text.IsComplete()) throw EDBEditError();
  return text.Value();
}

}  // namespace kvshare
