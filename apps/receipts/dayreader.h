// A day's documents from a CSV file, and everything that is wrong with it.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "apps/receipts/csvrows.h"
#include "apps/receipts/daycolumns.h"
#include "apps/receipts/model.h"

namespace kvshare::receipts {

// Reads UTF-8, with or without a byte-order mark, in blocks of any size. The first row names the
// columns, all of kColumnNames in any order; others are ignored with a warning. Rows of one
// document stand together; its date and customer may be left empty after its first row. Rows with
// empty cells only are skipped.
//
// A receipt that lacks a line would be a false one: a row with anything wrong makes its document
// incomplete, a row without a usable document number those on both sides of it, and a document
// number that comes back later both its groups. The others stay good.
class DayReader {
 public:
  static constexpr std::size_t kMaxText = 4096;  // bytes of a cell

  // A document that is dated far from `today`, or in a doubtful era, is reported as a warning.
  explicit DayReader(std::function<void(const Problem&)> report, TDateTime today = Date());

  // False once nothing more can be read.
  bool Feed(std::string_view bytes);

  // The documents in the order of the file, the incomplete ones among them.
  std::vector<Document> Finish();

  // A problem in a column of the file, for what is found out after reading.
  Problem ProblemIn(Column column, std::uint64_t line, std::string text) const;

 private:
  using Cells = std::span<const std::string>;

  void TakeRow(std::uint64_t line, Cells cells);
  void TakeHeader(std::uint64_t line, Cells cells);
  void TakeHeaderCell(std::uint64_t line, int position, const std::string& cell);
  bool TakeNumber(std::uint64_t line, Cells cells, std::string& number);
  Document& Open(std::uint64_t line, const std::string& number);
  void TakeHead(std::uint64_t line, Cells cells, Document& document, bool opened);
  void WarnOfDate(std::uint64_t line, const TypedDate& typed);
  void TakeLine(std::uint64_t line, Cells cells, Document& document);
  void SpoilNeighbours();
  void Stop(std::uint64_t line, std::string_view reason);

  // Runs `read` on the trimmed cell; what it throws becomes a problem and gives false.
  bool Read(Column column, std::uint64_t line, Cells cells,
            const std::function<void(std::string_view cell)>& read);
  void Report(std::uint64_t line, std::string text);

  std::function<void(const Problem&)> report_;
  TDateTime today_;
  CsvRows rows_;
  std::string start_;  // the first bytes, until it is clear whether they are a byte-order mark
  bool started_ = false;
  bool stopped_ = false;
  std::size_t columns_ = 0;                           // cells of the header, 0 before it
  std::array<int, kColumnNames.size()> positions_{};  // from 1, 0 absent
  std::vector<Document> documents_;
  std::unordered_map<std::string, std::size_t> byNumber_;
  bool spoilNext_ = false;
};

}  // namespace kvshare::receipts
