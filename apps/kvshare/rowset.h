// The rows of a query as a table, as CSV or as JSON, streamed.
#pragma once

#include <cstdint>

#include "apps/kvshare/stream.h"
#include "kvshare/data/sqlquery.h"

namespace kvshare::app {

enum class RowForm : std::uint8_t { Table, Csv, Json };

// Writes an open query from its current row on, values as AppendField does. What cannot be read or
// converted throws with the row's number, after the rows before it were written.
//   Table  columns as wide as the first rows need, numbers to the right; Null and "" both blank
//   Csv    a heading, CR LF, Null is nothing and "" is `""`
//   Json   an object a line; decimals are strings, so that no reader makes them floats
void WriteRows(TSQLQuery& query, RowForm form, BlockWriter& out);

}  // namespace kvshare::app
