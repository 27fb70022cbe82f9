#include "apps/receipts/daycolumns.h"

#include <algorithm>
#include <charconv>

#include "apps/receipts/amounts.h"
#include "apps/receipts/thaidigits.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

namespace {

constexpr int kFirstBuddhistYear = 2400;

[[noreturn]] void Refuse(UserText text, std::string_view cell) {
  throw EConvertError(Say(text, {cell.substr(0, 80)}));
}

// `least` to `most` digits; -1 for another text.
int Digits(std::string_view text, std::size_t least, std::size_t most) {
  if (text.size() < least || text.size() > most) return -1;
  if (!AreDigits(text)) return -1;
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// The text itself, or `scratch` where it has Thai digits.
std::string_view WithLatinDigits(std::string_view text, std::string& scratch) {
  if (std::ranges::none_of(text, IsThaiDigit)) return text;
  scratch = text;
  std::ranges::transform(scratch, scratch.begin(), LatinDigit);
  return scratch;
}

// 1.234,50 as 1,234.50.
std::string MarksSwapped(std::string_view number) {
  std::string swapped(number);
  for (char& c : swapped) c = c == ',' ? '.' : c == '.' ? ',' : c;
  return swapped;
}

// h:mm, h:mm:ss or h:mm:ss.fff.
bool IsTime(std::string_view text) {
  TDateTime time;
  return AreDigits(text.substr(0, 1)) && TryStrToTime(text, time, TFormatSettings::UsEnglish());
}

// Spreadsheets write a day with its midnight.
std::string_view WithoutTime(std::string_view moment) {
  const std::size_t blank = moment.find_first_of(" T");
  if (blank == std::string_view::npos || !IsTime(Trim(moment.substr(blank + 1)))) return moment;
  return moment.substr(0, blank);
}

struct TypedYear {
  int year = 0;     // Christian
  Word offset = 0;  // that was taken off
};

std::optional<TypedYear> ReadYear(std::string_view text, std::size_t least, Word era) {
  constexpr int kBuddhistCentury = 2500;
  constexpr int kChristianCentury = 2000;
  int year = Digits(text, 4, 4);
  if (year < 0) {
    const int inCentury = least == 2 ? Digits(text, 2, 2) : -1;
    if (inCentury < 0) return std::nullopt;
    year = inCentury + (era == kBuddhistEraOffset ? kBuddhistCentury : kChristianCentury);
  }
  const Word offset = year >= kFirstBuddhistYear ? kBuddhistEraOffset : 0;
  return TypedYear{year - offset, offset};
}

}  // namespace

std::optional<Column> FindColumn(std::string_view header) {
  const std::string_view name = Trim(header);
  for (std::size_t i = 0; i < kColumnNames.size(); ++i) {
    if (SameText(name, kColumnNames[i])) return static_cast<Column>(i);
  }
  return std::nullopt;
}

std::string Problem::Message() const {
  std::string message;
  if (line > 0) message = SayUtf8("line %d", {static_cast<std::int64_t>(line)});
  if (position > 0) message += SayUtf8(", column %d", {position}) + " (" + column + ")";
  if (!message.empty()) message += ": ";
  if (warning) message += SayUtf8("warning: ");
  for (const char c : text) message.push_back(static_cast<unsigned char>(c) < 32 ? '?' : c);
  return message;
}

TypedDate ParseDate(std::string_view cell, Word era) {
  std::string digits;
  const std::string_view date = WithoutTime(WithLatinDigits(cell, digits));
  const char separator = date.find('/') != std::string_view::npos ? '/' : '-';
  const std::size_t first = date.find(separator);
  const std::size_t second =
      first == std::string_view::npos ? first : date.find(separator, first + 1);
  if (second != std::string_view::npos) {
    const std::string_view head = date.substr(0, first);
    const std::string_view middle = date.substr(first + 1, second - first - 1);
    const std::string_view tail = date.substr(second + 1);
    const bool iso = separator == '-' && head.size() == 4;
    const int month = Digits(middle, iso ? 2 : 1, 2);
    const int day = iso ? Digits(tail, 2, 2) : Digits(head, 1, 2);
    const auto year = ReadYear(iso ? head : tail, separator == '/' ? 2 : 4, era);
    TDateTime value;
    if (year && TryEncodeDate(year->year, month, day, value)) return {value, year->offset};
  }
  Refuse("'%s' is no date: yyyy-mm-dd or dd/mm/yyyy", cell);
}

Currency ParseNumber(std::string_view cell, DecimalMark mark) {
  std::string plain;
  const std::string_view number = WithLatinDigits(cell, plain);
  if (mark == DecimalMark::Comma) {
    if (const auto amount = TryParseAmount(MarksSwapped(number))) return *amount;
    Refuse("'%s' is no amount", cell);
  }
  if (const auto amount = TryParseAmount(number)) return *amount;
  const bool otherMark = number.find(',') != std::string_view::npos &&
                         TryParseAmount(MarksSwapped(number)).has_value();
  if (otherMark) Refuse("'%s' is no amount; --decimal-comma reads it as one", cell);
  Refuse("'%s' is no amount", cell);
}

Currency ParseVatRate(std::string_view cell, DecimalMark mark) {
  if (cell.empty()) throw EConvertError(Say("the VAT rate is missing"));
  const bool sign = cell.ends_with('%');
  const Currency rate = ParseNumber(sign ? cell.substr(0, cell.size() - 1) : cell, mark);
  if (rate < 0_baht || rate > 100_baht) Refuse("'%s' is no VAT rate: 0 to 100 per cent", cell);
  return rate;
}

Currency ParsePrice(std::string_view cell, DecimalMark mark) {
  const Currency price = ParseNumber(cell, mark);
  if (price < 0_baht) Refuse("'%s' is negative: a credit note has negative quantities", cell);
  return price;
}

Currency ParseDiscount(std::string_view cell, Currency quantity, DecimalMark mark) {
  if (cell.empty()) return {};
  const Currency discount = ParseNumber(cell, mark);
  if (discount < 0_baht && quantity >= 0_baht) Refuse("'%s' is negative: no discount", cell);
  return quantity < 0_baht && discount > 0_baht ? -discount : discount;
}

}  // namespace kvshare::receipts
