// Documents on paper: aligned Thai text for a terminal or a fixed-pitch printer.
//
// Decimals are least numbers: where some value of a column needs more (a discount of 0.125), the
// whole document shows as many, so that every column can be added up by hand.
#pragma once

#include <string>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"

namespace kvshare::receipts {

struct Layout {
  std::size_t width = 80;       // columns
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

// Appends the document as UTF-8. The total stands in Thai and in English words, in each language
// only where the words are safe.
void AppendReceipt(std::string& out, const Document& document, const Receipt& receipt,
                   const Layout& layout);

// The sums below all documents. `left` documents are not in them.
void AppendDayTotal(std::string& out, const DayTotal& day, std::uint64_t left,
                    const Layout& layout);

}  // namespace kvshare::receipts
