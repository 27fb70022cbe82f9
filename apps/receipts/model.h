// A day's sales documents as they stand in the file. Texts are code page 874.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare::receipts {

// One row of the file.
struct Line {
  std::string item;
  Currency quantity;  // negative on a credit note
  Currency price;     // of one unit, never negative
  Currency discount;  // of the whole line, with the sign of the quantity
  Currency vatRate;   // per cent, 0 .. 100
  std::uint64_t row = 0;
};

// What a tax paper says beside the customer's name; "" for what is not known.
struct Particulars {
  std::string address;  // the buyer's; its lines end in LF
  std::string taxId;    // 13 digits
  std::string branch;   // 5 digits, 00000 is the head office
  // The invoice that a credit note reduces.
  std::string reference;
  std::optional<TDateTime> referenceDate;
  std::string reason;

  bool operator==(const Particulars&) const = default;
};

// Rows that stand together under one number.
struct Document {
  std::string number;
  TDateTime date;
  std::string customer;
  std::vector<Line> lines;
  std::uint64_t row = 0;  // of its first line
  bool complete = true;   // false: a row of it could not be read, so that it must not be printed
  std::shared_ptr<const Particulars> particulars = nullptr;  // none where the file says none
};

}  // namespace kvshare::receipts
