// Cursors that let go of their client. Most clients can do nothing else on a connection while rows
// are on their way, yet programs read one query and write with another: what has not been read
// then moves into memory, and the reader does not notice.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// A cursor that may be asked to let go, by the connection on which it reads.
class OpenCursor {
 public:
  OpenCursor() = default;
  OpenCursor(const OpenCursor&) = delete;
  OpenCursor& operator=(const OpenCursor&) = delete;

  // Moves this row and all further ones into memory.
  virtual void Detach() = 0;
  // The connection ends: this row stays readable, the next one is an error.
  virtual void Abandon() noexcept = 0;

 protected:
  ~OpenCursor() = default;
};

// The cursors of a connection that still read from the server.
class OpenCursors {
 public:
  // A cursor stays in the list until it has ended, was detached or is destroyed.
  void Add(OpenCursor* cursor) { cursors_.push_back(cursor); }
  void Remove(OpenCursor* cursor) noexcept { std::erase(cursors_, cursor); }
  // Before any other statement on the connection, and before a transaction ends.
  void DetachAll() {
    for (OpenCursor* cursor : std::exchange(cursors_, {})) cursor->Detach();
  }
  // Before the connection closes.
  void AbandonAll() noexcept {
    for (OpenCursor* cursor : std::exchange(cursors_, {})) cursor->Abandon();
  }

 private:
  std::vector<OpenCursor*> cursors_;
};

// Rows in memory, front to back. Texts lie one behind the other in one block, so that a million
// short values cost no million allocations; a cell has the number, or where its text lies.
class MemoryRows {
 public:
  explicit MemoryRows(const std::vector<data::Column>& columns) {
    for (const data::Column& column : columns) kinds_.push_back(column.kind);
  }

  // Copies the row that the source is on. A value that the source refuses is kept as its error,
  // which is thrown when the value is read, as it would have been on the way.
  template <typename Source>
  void AddRowOf(const Source& source) {
    for (std::size_t i = 0; i < kinds_.size(); ++i) cells_.push_back(CellOf(source, i));
  }

  // On the row behind the current one; the first call is on the first.
  bool Next() {
    if (next_ * kinds_.size() >= cells_.size()) return false;
    ++next_;
    return true;
  }
  // Of the current row. The text stays valid as long as the rows do.
  bool IsNull(int column) const { return At(column).null; }
  std::int64_t Integer(int column) const { return Value(column).integer; }
  double Float(int column) const { return Value(column).real; }
  std::string_view Text(int column) const {
    const Cell& cell = Value(column);
    const std::string_view all = texts_;
    return all.substr(cell.offset, cell.size);
  }

 private:
  struct Cell {
    union {
      std::int64_t integer = 0;
      double real;
      std::size_t offset;
    };
    std::size_t size = 0;
    bool null = false;
    bool refused = false;  // a value without a form: whoever reads it gets the error
  };

  template <typename Source>
  Cell CellOf(const Source& source, std::size_t column) {
    Cell cell;
    try {
      const int i = static_cast<int>(column);
      cell.null = source.IsNull(i);
      if (!cell.null) Read(cell, source, i);
    } catch (const data::DriverError& refusal) {
      cell.refused = true;
      cell.offset = refusals_.size();
      refusals_.push_back(refusal);
    }
    return cell;
  }
  template <typename Source>
  void Read(Cell& cell, const Source& source, int column) {
    switch (kinds_[static_cast<std::size_t>(column)]) {
      case data::ColumnKind::Integer:
      case data::ColumnKind::Largeint:
      case data::ColumnKind::Boolean:
        cell.integer = source.Integer(column);
        break;
      case data::ColumnKind::Float:
        cell.real = source.Float(column);
        break;
      case data::ColumnKind::Text:
      case data::ColumnKind::Memo:
      case data::ColumnKind::Decimal:
      case data::ColumnKind::Date:
      case data::ColumnKind::Time:
      case data::ColumnKind::TimeStamp:
      case data::ColumnKind::Blob: {
        const std::string_view text = source.Text(column);
        cell.offset = texts_.size();
        cell.size = text.size();
        texts_ += text;
      }
    }
  }
  const Cell& Value(int column) const {
    const Cell& cell = At(column);
    if (cell.refused) throw data::DriverError(refusals_[cell.offset]);
    return cell;
  }
  const Cell& At(int column) const {
    return cells_[(next_ - 1) * kinds_.size() + static_cast<std::size_t>(column)];
  }

  std::vector<data::ColumnKind> kinds_;
  std::vector<Cell> cells_;
  std::string texts_;
  std::vector<data::DriverError> refusals_;
  std::size_t next_ = 0;
};

// A cursor over a client's rows. Source has Columns, Next and the values of a data::Cursor, and
// Close() noexcept, after which its client is free for other work; a Source that has ended or
// failed has closed itself.
template <typename Source>
class DetachableCursor final : public data::Cursor, private OpenCursor {
 public:
  template <typename... Arguments>
  explicit DetachableCursor(OpenCursors& open, Arguments&&... arguments)
      : open_(open), source_(std::forward<Arguments>(arguments)...) {
    open_.Add(this);
  }
  ~DetachableCursor() override {
    open_.Remove(this);
    source_.Close();
  }

  const std::vector<data::Column>& Columns() const override { return source_.Columns(); }
  bool Next() override { return rows_ ? NextInMemory() : NextOfSource(); }
  bool IsNull(int column) const override {
    return rows_ ? rows_->IsNull(column) : source_.IsNull(column);
  }
  std::int64_t Integer(int column) const override {
    return rows_ ? rows_->Integer(column) : source_.Integer(column);
  }
  double Float(int column) const override {
    return rows_ ? rows_->Float(column) : source_.Float(column);
  }
  std::string_view Text(int column) const override {
    return rows_ ? rows_->Text(column) : source_.Text(column);
  }

 private:
  enum class Place : std::uint8_t { BeforeFirst, OnRow, Ended };

  // After the end, and after an error, there are no more rows: a client must not be asked again.
  bool NextOfSource() {
    if (place_ == Place::Ended) return false;
    place_ = Place::Ended;  // also where the source throws
    if (source_.Next()) {
      place_ = Place::OnRow;
      return true;
    }
    open_.Remove(this);
    return false;
  }
  // What failed while the rest was fetched is thrown where the rows end, once.
  bool NextInMemory() {
    if (rows_->Next()) return true;
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    return false;
  }

  void Detach() override {
    if (place_ == Place::Ended) return;
    auto rows = std::make_unique<MemoryRows>(source_.Columns());
    const bool onRow = place_ == Place::OnRow;
    try {
      if (onRow) rows->AddRowOf(source_);
      while (source_.Next()) rows->AddRowOf(source_);
    } catch (const data::DriverError&) {
      failure_ = std::current_exception();  // of this query, not of the one that comes now
    }
    source_.Close();
    if (onRow) rows->Next();
    rows_ = std::move(rows);
  }
  void Abandon() noexcept override {
    const bool onRow = std::exchange(place_, Place::Ended) == Place::OnRow;
    rows_ = std::make_unique<MemoryRows>(source_.Columns());
    if (onRow) {
      rows_->AddRowOf(source_);
      rows_->Next();
    }
    source_.Close();
    failure_ = std::make_exception_ptr(data::DriverError(
        "The connection was closed before the last row", data::DriverError::Kind::ConnectionLost));
  }

  OpenCursors& open_;
  Source source_;
  Place place_ = Place::BeforeFirst;
  std::unique_ptr<MemoryRows> rows_;  // once detached
  std::exception_ptr failure_;        // behind the last of them
};

}  // namespace kvshare::drivers
