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
#include "apps/receipts/textencoding.h"

namespace kvshare::receipts {

// How the file is written.
struct DayFormat {
  TextEncoding encoding = TextEncoding::ByContent;
  char separator = '\0';  // of cells; 0: as the header shows it
  DecimalMark decimalMark = DecimalMark::Point;
  Word era = 0;  // 543 for the Buddhist era; of years with two digits
};

// Reads the file in blocks of any size. The first row names the columns, all of kColumnNames in any
// order but the last ones, which may be missing; others are ignored with a warning. A row `sep=;`
// may stand before it. Rows of one document stand together; what is the document's and not the
// line's may be left empty after its first row. Rows with empty cells only are skipped, and rows of
// totals with a warning.
//
// Bytes that are not of the file's encoding end the reading with one problem at their line.
//
// A receipt that lacks a line would be a false one: a row with anything wrong makes its document
// incomplete, a row without a usable document number those on both sides of it, and a document
// number that comes back later both its groups. The others stay good.
class DayReader {
 public:
  static constexpr std::size_t kMaxText = 4096;  // bytes of a cell

  // A document that is dated far from `today`, or in a doubtful era, is reported as a warning.
  explicit DayReader(std::function<void(const Problem&)> report, const DayFormat& format = {},
                     TDateTime today = Date());

  // False once nothing more can be read.
  bool Feed(std::string_view bytes);

  // The documents in the order of the file, the incomplete ones among them.
  std::vector<Document> Finish();

  // A problem in a column of the file, for what is found out after reading.
  Problem ProblemIn(Column column, std::uint64_t line, std::string text) const;

 private:
  using Cells = std::span<const std::string>;

  bool FindSeparator(bool final);
  void FeedText(bool final);
  void TakeRow(std::uint64_t line, Cells cells);
  bool IsTotals(Cells cells) const;
  void TakeHeader(std::uint64_t line, Cells cells);
  void TakeHeaderCell(std::uint64_t line, int position, const std::string& cell);
  bool TakeNumber(std::uint64_t line, Cells cells, std::string& number);
  Document& Open(std::uint64_t line, const std::string& number);
  void TakeHead(std::uint64_t line, Cells cells, Document& document, bool opened);
  bool TakeParticulars(std::uint64_t line, Cells cells, Document& document, bool opened);
  bool Has(Column column) const { return positions_[static_cast<std::size_t>(column)] != 0; }
  void Warn(Column column, std::uint64_t line, std::string text);
  void TakeLine(std::uint64_t line, Cells cells, Document& document);
  void SpoilNeighbours();
  void Stop(std::uint64_t line, std::string_view reason);

  // Runs `read` on the trimmed cell; what it throws becomes a problem and gives false.
  bool Read(Column column, std::uint64_t line, Cells cells,
            const std::function<void(std::string_view cell)>& read);
  void Report(std::uint64_t line, std::string text);

  std::function<void(const Problem&)> report_;
  DayFormat format_;
  TDateTime today_;
  TextDecoder decoder_;
  CsvRows rows_;
  std::string text_;             // UTF-8 that the rows have not got yet
  bool separatorKnown_ = false;  // before that the text waits for the end of the header
  bool separatorLine_ = false;   // the next row is `sep=;`
  bool stopped_ = false;
  bool empty_ = true;                                 // no row has followed the header
  std::size_t columns_ = 0;                           // cells of the header, 0 before it
  std::array<int, kColumnNames.size()> positions_{};  // from 1, 0 absent
  std::vector<Document> documents_;
  std::unordered_map<std::string, std::size_t> byNumber_;
  bool spoilNext_ = false;
};

}  // namespace kvshare::receipts
