// What an open client dataset has: its records, which of them is the current one, and the record
// that is being edited.
// Internal header.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "kvshare/data/records/record.h"
#include "kvshare/data/records/recordtable.h"
#include "kvshare/data/records/roworder.h"

namespace kvshare::data {

class ClientRecords {
 public:
  // The stored columns, and how many more are calculated.
  ClientRecords(const std::vector<TFieldForm>& stored, std::vector<TFieldForm> calculated,
                std::function<void()> calculate);
  ClientRecords(const ClientRecords&) = delete;
  ClientRecords& operator=(const ClientRecords&) = delete;

  RecordTable& Table() { return table_; }
  const RecordTable& Table() const { return table_; }
  RowOrder& Order() { return order_; }
  const RowOrder& Order() const { return order_; }
  const RecordLayout& Layout() const { return table_.Layout(); }

  // What the fields read: the current record, or the one that is being edited.
  const TRecordReader& Current() const { return current_; }
  const TRecordReader& Calculated() const { return calculated_; }

  void Empty();  // no record, no log, nothing edited

  // --- The place. Each tells whether there is a record at it.

  bool StandAt(std::size_t position);
  bool StandOn(RowId row) { return StandAt(order_.PositionOf(row)); }
  // On the row where it still is in view, else on the one that has come in its place, else the
  // last.
  bool StandNear(RowId row, std::size_t position);
  std::size_t Position() const { return position_; }
  RowId Row() const {
    if (apart_ != kNoRow) return apart_;
    return position_ == RowOrder::kNowhere ? kNoRow : order_.At(position_);
  }

  // --- Editing

  void BeginEdit();
  void BeginInsert(bool append);
  // The row that was edited; kNoRow while it is inserted.
  RowId EditedRow() const { return editedRow_; }
  RecordBuffer& Buffer() { return buffer_; }
  const RecordBuffer& Buffer() const { return buffer_; }
  bool IsEditing() const { return editing_; }
  // Stores what is edited; does all or nothing. A record without a change is not logged.
  bool Post(bool logged);
  bool Cancel();
  bool Delete(bool logged);
  // As RecordTable::Revert. The place stays on its record, or near it.
  void Revert(RowId row);

  // The calculated values have to be made again.
  void Outdate() { calculated_.Outdate(); }
  void Calculate() {  // now, not at the first look
    calculated_.Outdate();
    calculated_.Refresh();
  }
  // The record with its kept calculations made anew; what is being edited stays as it is.
  Record Recalculated(const Record& record);
  void PutCalculated(int column, const Cell& cell) { calculated_.Put(column, cell); }

  // --- The images of the current record; nullptr where a column has no value in them

  const TRecordReader* Old() const;  // all Null of an inserted record
  const TRecordReader* New(int column) const;
  const TRecordReader* Cur(int column) const;

  // Shows a row that a server refused, whatever is in view, so that it can be decided about; one
  // that is there as being edited. `server` is the server's record, empty where it has none.
  void ShowRefused(RowId row, TUpdateKind kind, const Record& server);
  // Back to what was shown before; a record that was being edited is dropped.
  void HideRefused();

 private:
  // Calculates at the first look.
  class CalculatedValues : public TRecordReader {
   public:
    CalculatedValues(std::vector<TFieldForm> forms, std::function<void()> calculate);
    void Outdate() { sound_ = false; }
    void Refresh() const;
    void Put(int column, const Cell& cell) { values_.Put(column, cell); }

    bool IsNull(int column) const override { return At(column).kind == CellKind::Null; }
    std::int64_t Integer(int column) const override { return At(column).integer; }
    double Float(int column) const override { return At(column).real; }
    std::string_view Text(int column) const override { return At(column).text; }
    void AppendCharacters(std::string& out, int column) const override { out += At(column).text; }

   private:
    Cell At(int column) const;

    mutable RecordBuffer values_;
    mutable bool sound_ = false;
    std::function<void()> calculate_;
  };

  bool HasChanged(RowId row) const;
  void Show();

  RecordTable table_;
  RowOrder order_{table_};
  std::size_t position_ = RowOrder::kNowhere;
  RecordView current_{table_.Layout()};
  CalculatedValues calculated_;

  RecordBuffer buffer_;
  bool editing_ = false;
  RowId editedRow_ = kNoRow;
  std::size_t insertAt_ = RowOrder::kNowhere;

  struct Refused {
    TUpdateKind kind;
    const Record* server;
  };
  std::optional<Refused> refused_;
  RowId apart_ = kNoRow;  // the row that is shown though it is not the current one

  mutable RecordView image_{table_.Layout()};
};

}  // namespace kvshare::data
