// Numbers through a display mask: FormatFloat("###,###,##0.00", amount).
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

// A mask is one to three sections split by `;` outside quotes: positive, negative, zero. `0` and
// `#` are digit places, the first `.` the decimal point, `,` anywhere turns thousands on, `'text'`
// and `"text"` are literal, `E+` `E-` `e+` `e-` with up to four zeros an exponent; every other byte
// prints itself. A missing or empty section falls back to the first; an empty first section or mask
// is the general format of 15 digits. Nothing is an error except NaN and infinity, which print
// `NAN`, `INF` and `-INF`.
KVSHARE_API std::string FormatFloat(std::string_view mask, double value,
                                    const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string FormatFloat(std::string_view mask, Currency value,
                                    const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string FormatCurr(std::string_view mask, Currency value,
                                   const TFormatSettings& settings = FormatSettings);

// The same into the caller's text.
KVSHARE_API void AppendFormatFloat(std::string& out, std::string_view mask, double value,
                                   const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormatFloat(std::string& out, std::string_view mask, Currency value,
                                   const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
