// What the first lines of a CSV file say about its separator.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvshare::receipts {

struct CsvHead {
  char separator = ',';
  bool named = false;   // by a first line `sep=;`, as spreadsheets write it
  std::string trouble;  // UTF-8: why the separator cannot be known; "" where it is
};

// Reads the separator from a line `sep=X`, else from the first line with text: the comma, semicolon
// or tab that stands there outside of quotes, a comma where none does. Nothing while that line has
// not ended, unless the file has (`final`).
std::optional<CsvHead> ReadCsvHead(std::string_view start, bool final);

}  // namespace kvshare::receipts
