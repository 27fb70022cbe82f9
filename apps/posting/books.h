// What a company's books have of a document.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare::posting {

enum class Stored : std::uint8_t { Missing, Same, Other };

// Looks for the document by its number, letter case respected, through the dialect that is loaded.
// Same is the very document: date, customer and amounts, the particulars of its paper, and each
// line with its item, quantity, price, discount, VAT rate and amounts; texts byte for byte, numbers
// to the last digit. A document that differs in anything is Other. One that another program has
// written without particulars may have any. Throws EDatabaseError.
Stored FindInBooks(TSQLConnection& connection, const receipts::Document& document,
                   const receipts::Receipt& receipt);

// In what a document that is there differs: `customer: 'Somchai' there, 'Somsri' here; line 2,
// price: 10.00 there, 12.00 here`. What differs in the head, and in the first line that differs.
std::string DifferenceInBooks(TSQLConnection& connection, const receipts::Document& document,
                              const receipts::Receipt& receipt);

// A document as it was posted.
struct Posted {
  receipts::Document document;
  receipts::Receipt receipt;
  receipts::Rules rules;
};

// Reads it from the books and computes it again by the rules that it was posted with. Nothing for a
// number that is not there. Throws EPosting where the books have no rules for it, or where its
// amounts do not follow from them; EDatabaseError.
std::optional<Posted> ReadFromBooks(TSQLConnection& connection, const std::string& number);

// What the document with that number comes to without VAT; nothing where there is none.
std::optional<Currency> NetInBooks(TSQLConnection& connection, const std::string& number);

}  // namespace kvshare::posting
