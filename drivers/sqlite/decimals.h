// Exact decimals, which the server lacks: texts of digits that compare and add up as numbers, and
// reals that stand for the decimal of their 15 digits.
#pragma once

#include <sqlite3.h>

#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/decimaltext.h"

namespace kvshare::drivers::sqlite {

// [+-]digits[.digits] without zeros (WithoutZeros). Nothing for another text.
std::optional<DecimalText> ReadDigits(std::string_view text);

std::string_view TextOf(sqlite3_value* value);

// Makes known to a connection
//   the collation DECIMAL, under which texts of digits order by their value (other texts before
//     them, by bytes);
//   `round`, which rounds the decimal that a real stands for, a tie away from zero;
//   `kvshare_decimal`, the text of a number that is the same for equal numbers.
// Throws DriverError.
void AddDecimals(sqlite3* database);

// `sum`, `total` and `avg` that add texts of digits and reals exactly. A sum is a text where there
// is one among its values, else a real where there is one; of whole numbers alone it is the
// server's own. Throws DriverError.
void AddSums(sqlite3* database);

}  // namespace kvshare::drivers::sqlite
