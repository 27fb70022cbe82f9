// Rows of a CSV file, with the line on which each begins.
#pragma once

#include <csv.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "apps/receipts/usertexts.h"

namespace kvshare::receipts {

// Cells are separated by commas, or by the separator that is set before the first byte, and may
// stand in quotes, inner quotes doubled; in quotes a cell may hold separators and line breaks. Rows
// end at CR LF, LF or CR. Blanks around an unquoted cell are dropped, empty lines too. Bytes come
// in blocks of any size.
class CsvRows {
 public:
  static constexpr std::size_t kMaxCell = std::size_t{16} << 20;

  using Sink = std::function<void(std::uint64_t line, std::span<const std::string> cells)>;

  explicit CsvRows(Sink sink);
  ~CsvRows();
  CsvRows(const CsvRows&) = delete;
  CsvRows& operator=(const CsvRows&) = delete;

  void SetSeparator(char separator);

  // Both give what is wrong, or nothing: a cell of more than kMaxCell bytes, a quote that is never
  // closed. Nothing can be read after that. An exception of the sink comes through.
  std::optional<UserText> Feed(std::string_view bytes);
  std::optional<UserText> Finish();

  // Whether a cell of the row that the sink has is empty and stands in no quotes.
  bool IsMissing(std::size_t cell) const { return missing_[cell]; }

  // Of the row that is being read, from 1.
  std::uint64_t Line() const { return line_; }

 private:
  static void CellCallback(void* cell, std::size_t size, void* self);
  static void RowCallback(int terminator, void* self);
  void TakeCell(std::string_view cell, bool missing);
  void TakeRow(int terminator);
  void Rethrow();

  Sink sink_;
  csv_parser parser_{};
  std::vector<std::string> cells_;  // used again for every row
  std::vector<bool> missing_;
  std::size_t count_ = 0;
  std::uint64_t line_ = 1;
  std::uint64_t breaks_ = 0;  // line breaks inside the cells of this row
  bool afterCr_ = false;
  std::exception_ptr error_;  // must not fly through the parser, which is C
};

}  // namespace kvshare::receipts
