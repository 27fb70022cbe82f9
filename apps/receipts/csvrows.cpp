#include "apps/receipts/csvrows.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace kvshare::receipts {

namespace {

constexpr std::size_t kGrowth = std::size_t{64} << 10;
constexpr int kInsideField = 2;  // the parser's state between the first byte of a cell and its end

// A quote that is never closed would otherwise swallow the rest of any file into memory.
void* BoundedRealloc(void* block, std::size_t size) {
  if (size > CsvRows::kMaxCell + kGrowth) return nullptr;
  return std::realloc(block, size);  // NOLINT(cppcoreguidelines-*): the parser owns and frees it
}

std::uint64_t LineBreaks(std::string_view cell) {
  std::uint64_t breaks = 0;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    const bool loneCr = cell[i] == '\r' && (i + 1 == cell.size() || cell[i + 1] != '\n');
    if (cell[i] == '\n' || loneCr) ++breaks;
  }
  return breaks;
}

}  // namespace

CsvRows::CsvRows(Sink sink) : sink_(std::move(sink)) {
  if (csv_init(&parser_, CSV_REPALL_NL | CSV_EMPTY_IS_NULL) != 0) throw std::bad_alloc();
  csv_set_blk_size(&parser_, kGrowth);
  csv_set_realloc_func(&parser_, BoundedRealloc);
}

CsvRows::~CsvRows() {
  csv_free(&parser_);
}

void CsvRows::SetSeparator(char separator) {
  csv_set_delim(&parser_, static_cast<unsigned char>(separator));
}

std::optional<UserText> CsvRows::Feed(std::string_view bytes) {
  const std::size_t taken =
      csv_parse(&parser_, bytes.data(), bytes.size(), CellCallback, RowCallback, this);
  Rethrow();
  if (taken == bytes.size()) return std::nullopt;
  return UserText("a cell has more than 16 MB: is a closing quote missing?");
}

std::optional<UserText> CsvRows::Finish() {
  const bool openQuote = parser_.quoted != 0 && parser_.pstate == kInsideField;
  if (openQuote) return UserText("a quote is opened and never closed");
  csv_fini(&parser_, CellCallback, RowCallback, this);
  Rethrow();
  return std::nullopt;
}

void CsvRows::CellCallback(void* cell, std::size_t size, void* self) {
  auto* rows = static_cast<CsvRows*>(self);
  if (rows->error_) return;
  try {
    const bool missing = cell == nullptr;
    rows->TakeCell({static_cast<const char*>(cell), missing ? 0 : size}, missing);
  } catch (...) {
    rows->error_ = std::current_exception();
  }
}

void CsvRows::RowCallback(int terminator, void* self) {
  auto* rows = static_cast<CsvRows*>(self);
  if (rows->error_) return;
  try {
    rows->TakeRow(terminator);
  } catch (...) {
    rows->error_ = std::current_exception();
  }
}

void CsvRows::TakeCell(std::string_view cell, bool missing) {
  if (count_ == cells_.size()) {
    cells_.emplace_back();
    missing_.push_back(false);
  }
  missing_[count_] = missing;
  cells_[count_++] = cell;
  breaks_ += LineBreaks(cell);
  afterCr_ = false;
}

// The parser reports every terminator, so that lines can be counted: the LF of CR LF comes as the
// end of a row without cells.
void CsvRows::TakeRow(int terminator) {
  const bool secondHalf = count_ == 0 && afterCr_ && terminator == '\n';
  afterCr_ = terminator == '\r';
  if (secondHalf) return;
  const std::uint64_t start = line_;
  if (count_ != 0) sink_(start, std::span(cells_).first(count_));
  line_ += 1 + breaks_;
  count_ = 0;
  breaks_ = 0;
}

void CsvRows::Rethrow() {
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

}  // namespace kvshare::receipts
