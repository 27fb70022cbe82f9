// Amounts as people type them and as programs read them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/currency.h"

namespace kvshare::receipts {

// The amount of a text (code page 874): blanks around it and thousands commas are dropped, the rest
// is read as StrToCurr does. A comma counts only with exactly three digits behind it, one to three
// before the first, and before the point. Throws EConvertError `'abc' is no amount`.
Currency ParseAmount(std::string_view text);

// The same; nothing for another text.
std::optional<Currency> TryParseAmount(std::string_view text);

// Always four decimals and no thousands: 1234.5000. Exact.
void AppendFourDecimals(std::string& out, Currency amount);

// At least two decimals, up to four where they are not zero, no thousands: 1234.50, 0.3333. Exact.
void AppendDecimals(std::string& out, Currency amount);

}  // namespace kvshare::receipts
