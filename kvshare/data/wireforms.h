// The text forms in which exact values cross the driver contract. Internal.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare::data {

// [-]digits[.digits] in ten-thousandths, further digits rounded half to even on all of them.
// Nothing for another text or out of Currency's range.
std::optional<Currency> CurrencyOfDigits(std::string_view text);

// The whole number nearest to such a text, a tie to the even one. Nothing out of range.
std::optional<std::int64_t> WholeOfDigits(std::string_view text);

// The text without zeros at the end of its decimals (and without a sign of zero), its point as
// `decimalSeparator`.
void AppendShortest(std::string& out, std::string_view digits, char decimalSeparator);

// -1234.5678, always four decimals.
std::string DigitsOfCurrency(Currency amount);

// yyyy-mm-dd, hh:mm:ss[.f..], and both with a blank or `T` between; a date alone is its midnight.
// Digits past the milliseconds are cut off. Nothing for another text and for a day or time that
// does not exist.
std::optional<TDateTime> DateOfText(std::string_view text);
std::optional<TDateTime> TimeOfText(std::string_view text);
std::optional<TDateTime> MomentOfText(std::string_view text);

// The same forms, with milliseconds where there are any.
std::string TextOfDate(TDateTime moment);
std::string TextOfTime(TDateTime moment);
std::string TextOfMoment(TDateTime moment);

}  // namespace kvshare::data
