// The columns of a day's file and what their cells may hold.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/receipts/model.h"

namespace kvshare::receipts {

enum class Column : std::uint8_t {
  Document,
  Date,
  Customer,
  Item,
  Quantity,
  Price,
  Discount,
  Vat,
  // A file may lack these.
  Address,
  TaxId,
  Branch,
  Reference,
  ReferenceDate,
  Reason,
};
inline constexpr std::array<std::string_view, 14> kColumnNames = {
    "document", "date",    "customer", "item",   "quantity",  "price",          "discount",
    "vat",      "address", "tax_id",   "branch", "reference", "reference_date", "reason"};
inline constexpr std::size_t kNeededColumns = 8;  // the first of them

// The column of a header cell, blanks around it and letter case ignored.
std::optional<Column> FindColumn(std::string_view header);

// Something that a person must look at. `text` is UTF-8.
struct Problem {
  std::uint64_t line = 0;  // from 1; 0: the whole file
  int position = 0;        // of the column, from 1; 0: the whole line
  std::string column;
  std::string text;
  bool warning = false;

  // `line 5, column 6 (price): 'abc' is no amount`
  std::string Message() const;
};

// The cells below are code page 874 without blanks around them; Thai digits count as digits. Each
// reader throws EConvertError.

// yyyy-mm-dd, dd/mm/yyyy, dd/mm/yy or dd-mm-yyyy, day and month also of one digit there; a time of
// day behind it is left out. A year from 2400 up is of the Buddhist era. One of two digits lies in
// the century 2500 where `era` is 543, else in 2000; with `-` it is refused, since it may be the
// first.
struct TypedDate {
  TDateTime date;
  Word offset = 0;  // 543 for a year of the Buddhist era
};
TypedDate ParseDate(std::string_view cell, Word era = 0);

// How a file writes decimals: 1,234.50 or 1.234,50.
enum class DecimalMark : std::uint8_t { Point, Comma };

// An amount as ParseAmount reads it.
Currency ParseNumber(std::string_view cell, DecimalMark mark);

// 0 .. 100, with or without a per cent sign.
Currency ParseVatRate(std::string_view cell, DecimalMark mark);

// An amount that is not negative.
Currency ParsePrice(std::string_view cell, DecimalMark mark);

// The discount of a line, "" for none, given the sign of its quantity: credit notes may be written
// with either sign, invoices without one.
Currency ParseDiscount(std::string_view cell, Currency quantity, DecimalMark mark);

}  // namespace kvshare::receipts
