// Numbers through a display mask: FormatFloat("###,###,##0.00", amount).
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

// A mask is one to three sections split by `;` outside quotes: positive, negative, zero.
//
//   0 #               digit place; zeros fill the places from the leftmost `0` before the point to
//                     the rightmost `0` after it, other places without a digit print nothing
//   . (the first)     decimal point, printed only with a decimal digit behind it
//   , (anywhere)      thousands separators in the whole section
//   'text' "text"     literal, to the end of the mask where the second quote is missing
//   E+ E- e+ e-       and up to four zeros: exponent of at least as many digits, `+` printed after
//                     E+ only; all places are significant digits
//   every other byte  literal
//
// The number is rounded to the decimal places of its section as Format does; when that leaves zero,
// the zero section applies. A missing or empty section falls back to the first, where a negative
// number gets its minus sign in front; the other sections print the magnitude. Digits that have no
// place before the point are printed at the first place: `000-0000` of 1234567 is `123-4567`. A
// section without places prints its literals only.
//
// An empty first section or mask, and a real of more than 18 digits before the point without an
// exponent in the mask, give the general format: 15 digits as `%g`, an amount exact. NaN and
// infinity print `NAN`, `INF` and `-INF`. No mask is an error.
KVSHARE_API std::string FormatFloat(std::string_view mask, double value,
                                    const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string FormatFloat(std::string_view mask, Currency value,
                                    const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string FormatCurr(std::string_view mask, Currency value,
                                   const TFormatSettings& settings = FormatSettings);
// A decimal of any length, [-]digits[.digits], as an amount: on all its digits, rounded once, and
// exact in the general format. Throws EConvertError `'%s' is not a valid floating point value` for
// another text.
KVSHARE_API std::string FormatDigits(std::string_view mask, std::string_view digits,
                                     const TFormatSettings& settings = FormatSettings);

// The same into the caller's text.
KVSHARE_API void AppendFormatFloat(std::string& out, std::string_view mask, double value,
                                   const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormatFloat(std::string& out, std::string_view mask, Currency value,
                                   const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormatDigits(std::string& out, std::string_view mask,
                                    std::string_view digits,
                                    const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
