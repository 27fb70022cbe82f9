// Strict conversions between text and values. A refused text throws EConvertError with the text as
// given in its message; each Try... gives false instead and leaves its result untouched.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

// Leading blanks (byte 32), one sign, then digits, or `$`, `x`, `0x` and hexadecimal digits in
// either case; nothing may follow. Hexadecimal wraps to the sign bit: `$FFFFFFFF` is -1.
// Error: `'%s' is not a valid integer value`.
KVSHARE_API std::int32_t StrToInt(std::string_view text);
KVSHARE_API std::int64_t StrToInt64(std::string_view text);
KVSHARE_API bool TryStrToInt(std::string_view text, std::int32_t& value);
KVSHARE_API bool TryStrToInt64(std::string_view text, std::int64_t& value);
KVSHARE_API std::int32_t StrToIntDef(std::string_view text, std::int32_t fallback);
KVSHARE_API std::int64_t StrToInt64Def(std::string_view text, std::int64_t fallback);

// Blanks at both ends, a sign, digits, DecimalSeparator, digits, an exponent; no thousands. A lone
// separator is 0, an exponent without digits none: `1e` is 1. What is too small for a double is 0.
// Error, overflow included: `'%s' is not a valid floating point value`.
KVSHARE_API double StrToFloat(std::string_view text,
                              const TFormatSettings& settings = FormatSettings);
KVSHARE_API bool TryStrToFloat(std::string_view text, double& value,
                               const TFormatSettings& settings = FormatSettings);

// The same texts as an exact amount, digits past the fourth decimal rounded half to even on all of
// them: `1.23445` is 1.2344, `1.23455` is 1.2346. Out of range is refused.
KVSHARE_API Currency StrToCurr(std::string_view text,
                               const TFormatSettings& settings = FormatSettings);
KVSHARE_API bool TryStrToCurr(std::string_view text, Currency& value,
                              const TFormatSettings& settings = FormatSettings);

KVSHARE_API std::string IntToStr(std::int64_t value);

// General format of 15 digits: 0.1, 1E-5, 1E15.
KVSHARE_API std::string FloatToStr(double value, const TFormatSettings& settings = FormatSettings);

// The shortest exact decimal text: 1234.5, 100, -0.0001; no thousands, never an exponent.
KVSHARE_API std::string CurrToStr(Currency value, const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendCurrToStr(std::string& out, Currency value,
                                 const TFormatSettings& settings = FormatSettings);

// `-1` and `0`, or `True` and `False`.
KVSHARE_API std::string BoolToStr(bool value, bool useWords = false);

// Numbers split by DateSeparator in the order of ShortDateFormat (of its first d, m or y; month
// first without any), blanks before each piece. A year of one or two digits lies in the hundred
// years that begin TwoDigitYearCenturyWindow years before the current one, with a window of 0 in
// the current century; without a year, the current one. A blank as separator is skipped as a blank
// and so never found. Error: `'%s' is not a valid date`.
KVSHARE_API TDateTime StrToDate(std::string_view text,
                                const TFormatSettings& settings = FormatSettings);
KVSHARE_API bool TryStrToDate(std::string_view text, TDateTime& value,
                              const TFormatSettings& settings = FormatSettings);
// The same as of a given current year (any number), for lists that keep the year they were typed
// in.
KVSHARE_API bool TryStrToDateAsOf(std::string_view text, int currentYear, TDateTime& value,
                                  const TFormatSettings& settings = FormatSettings);

// [marker] hour [: minute [: second [. milliseconds]]] or the marker behind, blanks before each
// piece; the marker is TimeAMString, TimePMString, AM or PM in any case and makes the hour one of
// twelve. Milliseconds are a number: `.5` are five. Error: `'%s' is not a valid time`.
KVSHARE_API TDateTime StrToTime(std::string_view text,
                                const TFormatSettings& settings = FormatSettings);
KVSHARE_API bool TryStrToTime(std::string_view text, TDateTime& value,
                              const TFormatSettings& settings = FormatSettings);

// A date, then optionally a time; or a time alone. What follows a date and a time is ignored.
// Error: `'%s' is not a valid date and time`.
KVSHARE_API TDateTime StrToDateTime(std::string_view text,
                                    const TFormatSettings& settings = FormatSettings);
KVSHARE_API bool TryStrToDateTime(std::string_view text, TDateTime& value,
                                  const TFormatSettings& settings = FormatSettings);

// FormatDateTime with ShortDateFormat, LongTimeFormat and `c`.
KVSHARE_API std::string DateToStr(TDateTime value,
                                  const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string TimeToStr(TDateTime value,
                                  const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string DateTimeToStr(TDateTime value,
                                      const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
