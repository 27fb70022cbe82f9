// The columns of a day's file and what their cells may hold.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/receipts/model.h"

namespace kvshare::receipts {

enum class Column : std::uint8_t { Document, Date, Customer, Item, Quantity, Price, Discount, Vat };
inline constexpr std::array<std::string_view, 8> kColumnNames = {
    "document", "date", "customer", "item", "quantity", "price", "discount", "vat"};

// The column of a header cell, blanks around it and letter case ignored.
std::optional<Column> FindColumn(std::string_view header);

// Something that a person must look at. `text` is UTF-8.
struct Problem {
  std::uint64_t line = 0;  // from 1; 0: the whole file
  int position = 0;        // of the column, from 1; 0: the whole line
  std::string column;
  std::string text;
  bool warning = false;

  // `line 5, column 6 (price): 'abc' is not a valid floating point value`
  std::string Message() const;
};

// The cells below are code page 874 without blanks around them. Each reader throws EConvertError.

// yyyy-mm-dd, dd/mm/yyyy or d/m/yyyy; a year from 2400 up is of the Buddhist era.
struct TypedDate {
  TDateTime date;
  Word offset = 0;  // 543 for a year of the Buddhist era
};
TypedDate ParseDate(std::string_view cell);

// 0 .. 100, with or without a per cent sign.
Currency ParseVatRate(std::string_view cell);

// An amount that is not negative.
Currency ParsePrice(std::string_view cell);

// The discount of a line, "" for none, given the sign of its quantity: credit notes may be written
// with either sign, invoices without one.
Currency ParseDiscount(std::string_view cell, Currency quantity);

}  // namespace kvshare::receipts
