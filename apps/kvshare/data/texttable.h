// Rows of texts from a file that knows no types: CSV or JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvshare::app {

// All cells in one block, code page 874.
class TextTable {
 public:
  const std::vector<std::string>& Names() const { return names_; }
  // The column of a name, letter case ignored; a new one at the end.
  std::size_t Column(std::string_view name);

  // Nothing is Null; cells that a row lacks at its end are.
  void AddRow(std::uint64_t line, std::span<const std::optional<std::string>> cells);
  std::size_t Rows() const { return rows_.size(); }
  std::uint64_t Line(std::size_t row) const { return rows_[row].line; }
  std::optional<std::string_view> At(std::size_t row, std::size_t column) const;

  std::size_t LongestOf(std::size_t column) const { return longest_[column]; }

 private:
  struct Cell {
    std::size_t at = 0;
    std::size_t size = 0;
    bool null = false;
  };
  struct Row {
    std::uint64_t line;
    std::size_t cells;  // where its cells begin
    std::size_t count;
  };

  std::vector<std::string> names_;
  std::vector<std::size_t> longest_;
  std::vector<Row> rows_;
  std::vector<Cell> cells_;
  std::string bytes_;
};

// Both take UTF-8, with or without a byte order mark, and throw Exception with line and reason.
//   CSV   the first row has the names; every row as many cells. An empty cell is Null, `""` empty
//   JSON  an object a line, or one list of objects; members that an object lacks are Null. Numbers
//         and Booleans become texts, with all their digits
TextTable ReadCsvTable(std::string_view utf8);
TextTable ReadJsonTable(std::string_view utf8);

}  // namespace kvshare::app
