// The texts of a document as every kind of paper shows them, in code page 874.
//
// Decimals are least numbers: where some value of a column needs more (a discount of 0.125), the
// whole document shows as many, so that every column can be added up by hand.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "apps/receipts/party.h"
#include "kvshare/rtl/types.h"

namespace kvshare::receipts {

struct Layout {
  std::size_t width = 80;       // columns of a terminal
  bool discountPerLine = true;  // else one sum below the lines
  bool vatPerLine = false;      // a VAT column
  bool priceIncludesVat = false;
  Word yearOffset = 0;    // 543 for dates of the Buddhist era
  bool cashStep = false;  // show the rounding line even when it is 0
  Word quantityDigits = 0;
  Word priceDigits = 2;
  Word amountDigits = 2;
  Seller seller;
};

// What one sheet of a document says besides.
struct Sheet {
  std::string_view copy;                // "" or which copy it is, in both languages
  std::optional<Currency> originalNet;  // of the invoice that a credit note reduces
};

using Sum = std::pair<std::string, std::string>;  // label, amount

struct ReceiptTexts {
  std::shared_ptr<const TPicture> logo;  // the seller's, or none
  std::vector<std::string> seller;       // lines; none for a seller that is not set
  std::string title;                     // Thai / English, as all labels
  std::string copy;                      // may be empty
  std::string number;
  std::string date;
  std::string customer;                        // may be empty
  std::vector<Sum> particulars;                // label and text: the buyer's, and the reference
  std::vector<std::string> head;               // of the table
  std::vector<std::vector<std::string>> rows;  // as many cells; all but the first are numbers
  std::vector<Sum> sums;                       // the total is the last
  std::string note;                            // below the sums; may be empty
  std::vector<std::string> words;  // of the total: Thai, English, each only where it is safe
};

ReceiptTexts TextsOf(const Document& document, const Receipt& receipt, const Layout& layout,
                     const Sheet& sheet = {});

// The sums below all documents. `left` documents are not in them.
std::vector<Sum> DayTexts(const DayTotal& day, std::uint64_t left, const Layout& layout);

}  // namespace kvshare::receipts
