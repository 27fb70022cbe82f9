// The texts of a document as every kind of paper shows them, in code page 874.
//
// Decimals are least numbers: where some value of a column needs more (a discount of 0.125), the
// whole document shows as many, so that every column can be added up by hand.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "kvshare/rtl/types.h"

namespace kvshare::receipts {

struct Layout {
  std::size_t width = 80;       // columns of a terminal
  bool discountPerLine = true;  // else one sum below the lines
  bool vatPerLine = false;      // a VAT column
  bool priceIncludesVat = false;
  Word yearOffset = 0;    // 543 for dates of the Buddhist era
  bool cashStep = false;  // show the rounding line even when it is 0
  Word quantityDigits = 4;
  Word priceDigits = 2;
  Word amountDigits = 2;
};

// Whether all the document takes back what an invoice gave.
bool IsCreditNote(const Document& document, const Receipt& receipt);

using Sum = std::pair<std::string, std::string>;  // label, amount

struct ReceiptTexts {
  std::string title;  // Thai / English, as all labels
  std::string number;
  std::string date;
  std::string customer;                        // may be empty
  std::vector<std::string> head;               // of the table
  std::vector<std::vector<std::string>> rows;  // as many cells; all but the first are numbers
  std::vector<Sum> sums;                       // the total is the last
  std::vector<std::string> words;  // of the total: Thai, English, each only where it is safe
};

ReceiptTexts TextsOf(const Document& document, const Receipt& receipt, const Layout& layout);

// The sums below all documents. `left` documents are not in them.
std::vector<Sum> DayTexts(const DayTotal& day, std::uint64_t left, const Layout& layout);

}  // namespace kvshare::receipts
