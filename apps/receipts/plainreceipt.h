// Documents on paper: aligned Thai text for a terminal or a fixed-pitch printer.
#pragma once

#include <string>

#include "apps/receipts/receipttexts.h"

namespace kvshare::receipts {

// Appends the document as UTF-8. The total stands in Thai and in English words, in each language
// only where the words are safe.
void AppendReceipt(std::string& out, const Document& document, const Receipt& receipt,
                   const Layout& layout, const Sheet& sheet = {});

// The sums below all documents. `left` documents are not in them.
void AppendDayTotal(std::string& out, const DayTotal& day, std::uint64_t left,
                    const Layout& layout);

}  // namespace kvshare::receipts
