// Documents for programs.
#pragma once

#include <string>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "apps/receipts/party.h"

namespace kvshare::receipts {

// Appends the document as one JSON object without a line break. Amounts are decimal texts, exact,
// with two to four decimals; dates are yyyy-mm-dd of the Christian calendar; words are null where
// they are not safe. The kind is what the seller's paper is called (papertitle.h); what the file
// does not say of the buyer and of a credit note's invoice has no member.
void AppendJson(std::string& out, const Document& document, const Receipt& receipt,
                const Seller& seller = {});

}  // namespace kvshare::receipts
