#include "apps/receipts/daycolumns.h"

#include <charconv>

#include "apps/receipts/amounts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::receipts {

namespace {

constexpr int kFirstBuddhistYear = 2400;

[[noreturn]] void Refuse(std::string_view cell, std::string_view reason) {
  throw EConvertError("'" + std::string(cell.substr(0, 80)) + "' " + std::string(reason));
}

// `least` to `most` digits; -1 for another text.
int Digits(std::string_view text, std::size_t least, std::size_t most) {
  if (text.size() < least || text.size() > most) return -1;
  if (text.find_first_not_of("0123456789") != std::string_view::npos) return -1;
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
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
  if (line > 0) message = "line " + std::to_string(line);
  if (position > 0) message += ", column " + std::to_string(position) + " (" + column + ")";
  if (!message.empty()) message += ": ";
  if (warning) message += "warning: ";
  for (const char c : text) message.push_back(static_cast<unsigned char>(c) < 32 ? '?' : c);
  return message;
}

TypedDate ParseDate(std::string_view cell) {
  const bool iso = cell.find('-') != std::string_view::npos;
  const char separator = iso ? '-' : '/';
  const std::size_t first = cell.find(separator);
  const std::size_t second =
      first == std::string_view::npos ? first : cell.find(separator, first + 1);
  TDateTime date;
  if (second != std::string_view::npos) {
    const std::string_view head = cell.substr(0, first);
    const std::string_view tail = cell.substr(second + 1);
    const int month = Digits(cell.substr(first + 1, second - first - 1), iso ? 2 : 1, 2);
    const int day = iso ? Digits(tail, 2, 2) : Digits(head, 1, 2);
    int year = Digits(iso ? head : tail, 4, 4);
    const Word offset = year >= kFirstBuddhistYear ? kBuddhistEraOffset : 0;
    year -= offset;
    if (TryEncodeDate(year, month, day, date)) return {date, offset};
  }
  Refuse(cell, "is no date: yyyy-mm-dd or dd/mm/yyyy");
}

Currency ParseVatRate(std::string_view cell) {
  const bool sign = cell.ends_with('%');
  const Currency rate = ParseAmount(sign ? cell.substr(0, cell.size() - 1) : cell);
  if (rate < 0_baht || rate > 100_baht) Refuse(cell, "is no VAT rate: 0 to 100 per cent");
  return rate;
}

Currency ParsePrice(std::string_view cell) {
  const Currency price = ParseAmount(cell);
  if (price < 0_baht) Refuse(cell, "is negative: a credit note has negative quantities");
  return price;
}

Currency ParseDiscount(std::string_view cell, Currency quantity) {
  if (cell.empty()) return {};
  const Currency discount = ParseAmount(cell);
  if (discount < 0_baht && quantity >= 0_baht) Refuse(cell, "is negative: no discount");
  return quantity < 0_baht && discount > 0_baht ? -discount : discount;
}

}  // namespace kvshare::receipts
