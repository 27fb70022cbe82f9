// Documents for programs.
#pragma once

#include <string>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"

namespace kvshare::receipts {

// Appends the document as one JSON object without a line break. Amounts are decimal texts, exact,
// with two to four decimals; dates are yyyy-mm-dd of the Christian calendar; words are null where
// they are not safe.
void AppendJson(std::string& out, const Document& document, const Receipt& receipt);

}  // namespace kvshare::receipts
