// Decimals as the records have them: [-]digits[.digits], any number of digits.
// Internal header.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/decimaltext.h"

namespace kvshare::data {

// Such a text taken apart, without zeros (WithoutZeros). Nothing for another text.
std::optional<DecimalText> DigitsOf(std::string_view text);

// The text without these zeros, its point as `decimalSeparator`: of two equal decimals the texts
// are equal. False, and nothing appended, for another text.
bool AppendShortest(std::string& out, std::string_view text, char decimalSeparator);

// Compares two numbers of any length. Texts that are not numbers sort behind all numbers, by their
// bytes.
std::strong_ordering CompareDecimals(std::string_view a, std::string_view b);

// The nearest real. Nothing for another text, and past the greatest real.
std::optional<double> FloatOfDigits(std::string_view text);

// What others write as the shortest text: [sign]digits[.digits][exponent]. Appends to `out`; false
// for another text and for an exponent past 400.
bool AppendDecimal(std::string& out, std::string_view text);

// A decimal as people type it, blanks around it, with the process's DecimalSeparator.
std::optional<std::string> DigitsOfTyped(std::string_view text);

// The 15 digits that a finite real surely has, without an exponent.
std::string DigitsOfReal(double value);

// Rounds a shortest text to `decimals` places, a tie away from zero.
void RoundDigits(std::string& digits, int decimals);

}  // namespace kvshare::data
