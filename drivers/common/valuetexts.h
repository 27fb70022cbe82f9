// The text forms in which values cross the contract, made from what the clients give.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kvshare::drivers {

void AppendDate(std::string& out, int year, unsigned month, unsigned day);
// hh:mm:ss, with .fff where there are milliseconds.
void AppendTime(std::string& out, unsigned hour, unsigned minute, unsigned second,
                unsigned milliseconds);

// A whole number with its last `decimals` digits behind a point: (-5, 2) is -0.05.
void AppendScaled(std::string& out, std::int64_t value, int decimals);

// The digits that a client gave for a number. Throw DriverError for what is no number or does not
// fit.
std::int64_t ToInteger(std::string_view digits);
double ToFloat(std::string_view digits);
std::string FromFloat(double value);  // the shortest text that reads back as the same number

// A time or moment with three digits behind its point, where it has a point: further ones are cut
// off. The result is `text`, a part of it, or `scratch`.
std::string_view ToMilliseconds(std::string_view text, std::string& scratch);

// The ten-thousandths of a real whose 15 significant digits have no more than four behind the
// point; nothing for others.
std::optional<std::int64_t> TenThousandthsOf(double value);

// The decimal that a real stands for: its 15 significant digits without zeros at the end, never
// with an exponent; of a whole number all digits that it has. 0.1 + 0.2 is 0.3. Throws DriverError
// for infinity and NaN.
std::string DecimalOf(double value);

// [+-]digits[.digits], of which the digits on one side of the point may be missing, in the
// contract's form: `text` or `scratch`. Throws DriverError for another text.
std::string_view ToDecimal(std::string_view text, std::string& scratch);

std::string_view TrimmedRight(std::string_view text);  // without blanks at its end

// The first `characters` of UTF-8 text.
std::string_view FirstCharacters(std::string_view utf8, std::size_t characters);

// For clients that end a text at its first zero byte: throws DriverError rather than lose the rest.
void RefuseZeroByte(std::string_view text);

}  // namespace kvshare::drivers
