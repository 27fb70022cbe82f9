// Exact decimals, which the server lacks: texts of digits that compare and add up as numbers.
#pragma once

#include <sqlite3.h>

namespace kvshare::drivers::sqlite {

// Makes known to a connection the collation DECIMAL, under which texts of digits order by their
// value (other texts before them, by bytes), and a `sum` that adds texts of digits exactly and
// gives a text; of other values it is the server's own.
void AddDecimals(sqlite3* database);

}  // namespace kvshare::drivers::sqlite
