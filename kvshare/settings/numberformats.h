// How quantities, prices, amounts, weights and percentages are shown and typed.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

// The mask up to and including its first `.`, then as many `0` as `digits`. No digits leave the
// point; a mask without a point is the zeros alone.
//   SetDecimalDigit("###,##0.00", 3)   ###,##0.000
KVSHARE_API std::string SetDecimalDigit(std::string_view mask, Word digits);

// The text of zero: `0.` and as many `0` as `digits`; no digits leave the point.
KVSHARE_API std::string SetZeroDigit(Word digits);

// Builds the masks and patterns of globals.h from the digit settings there.
KVSHARE_API void BuildNumberFormats();

}  // namespace kvshare
