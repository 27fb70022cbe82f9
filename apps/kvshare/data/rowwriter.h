// The rows of a dataset as a table, as CSV or as JSON, streamed.
#pragma once

#include <cstdint>
#include <string>

#include "apps/kvshare/terminal/stream.h"
#include "kvshare/data/fields/dataset.h"

namespace kvshare::app {

enum class RowForm : std::uint8_t { Table, Csv, Json };

// Writes an open dataset from its current row on, values as AppendField does. What cannot be read
// or converted throws with the row's number, after the rows before it were written.
//   Table  columns as wide as the first rows need, numbers to the right; Null and "" both blank
//   Csv    a heading, CR LF, Null is nothing (alone in its row `""`) and "" is `""`; a cell with
//          blanks at an end stands in quotes
//   Json   an object a line; decimals are strings, so that no reader makes them floats
void WriteRows(TDataSet& set, RowForm form, BlockWriter& out);

// The same in one text.
std::string TextOfRows(TDataSet& set, RowForm form);

}  // namespace kvshare::app
