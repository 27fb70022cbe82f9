// The records of a client dataset with their unique key and the log of what was changed.
//
// A row keeps its number for ever. What has no log entry is the base; an entry has the record
// before its row's first change. One entry a row: what is inserted and changed is inserted, what is
// inserted and deleted was never there.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kvshare/data/records/record.h"
#include "kvshare/data/records/uniqueindex.h"
#include "kvshare/data/records/updates.h"

namespace kvshare::data {

class RecordTable {
 public:
  RecordTable() = default;
  // `key`: the columns that no two records have in common; none: no such key.
  RecordTable(RecordLayout layout, std::vector<int> key);

  const RecordLayout& Layout() const { return layout_; }
  std::span<const int> Key() const { return key_; }
  void Clear();  // all rows and the log
  // Another key. Throws EDBClient `Key violation.` where two records have it in common already.
  void SetKey(std::vector<int> key);

  // All rows, with those that are deleted; gone ones have no record.
  RowId Rows() const { return static_cast<RowId>(rows_.size()); }
  void Reserve(std::size_t rows) { rows_.reserve(rows); }
  const Record& At(RowId row) const { return rows_[row].record; }
  bool IsThere(RowId row) const { return !rows_[row].deleted; }
  // The record before the first change: the present one of an unchanged row, null of an inserted
  // one.
  const Record* Original(RowId row) const;
  TUpdateStatus Status(RowId row) const;

  // The row whose key has these values, in the order of Key; kNoRow.
  RowId FindKey(std::span<const Cell> values) const;

  // Changes. Each throws EDBClient `Key violation.` for a key that another row has and has then
  // done nothing. What is not logged becomes a part of the base.
  RowId Insert(Record record, bool logged);
  void Modify(RowId row, Record record, bool logged);
  void Delete(RowId row, bool logged);

  // --- The log

  int ChangeCount() const { return changes_; }
  // In the order of the rows' first changes.
  template <typename Work>
  void ForEachChange(Work work) const {
    for (const Entry& entry : log_) {
      if (entry.row != kNoRow) work(entry.row);
    }
  }
  // The row that was changed last; kNoRow.
  RowId NewestChange();
  // The changed rows, the one that was changed last at the end.
  std::vector<RowId> ByLastChange() const;

  // As before the first change. Throws EDBClient `Key violation.` when another row has taken the
  // key meanwhile, or when the key came after the changes; nothing is done then.
  void Revert(RowId row);
  void RevertAll();
  // The present record becomes the base; the entry leaves.
  void Accept(RowId row);
  void AcceptAll();
  // The row becomes this record, without a change, also where it is deleted. Throws EDBClient
  // `Key violation.` when another row has the key; nothing is done then.
  void Rebase(RowId row, Record base);
  // What the row is taken to have been; an inserted row becomes a modified one.
  void SetOriginal(RowId row, Record original);
  // An entry as a file has it, for a row of the base.
  void LogInserted(RowId row);
  // The row becomes the one that was changed last, where it has an entry.
  void LogLast(RowId row);
  void LogDeleted(RowId row) { Delete(row, true); }
  void LogModified(RowId row, Record original) { SetOriginal(row, std::move(original)); }

 private:
  struct Row {
    Record record;
    std::uint32_t entry = 0;  // its place in the log from 1; 0: none
    bool deleted = false;
  };
  struct Entry {
    RowId row = kNoRow;
    Record before;
    std::uint64_t touched = 0;
  };

  std::uint32_t HashOfKey(const Record& record) const;
  bool SameKey(const Record& a, const Record& b) const;
  // A record whose key is all Null waits for one that the server gives: it is in no one's way.
  bool HasKey(const Record& record) const;
  template <typename Image>
  UniqueIndex IndexOf(Image image) const;
  // Takes a key over from `before`, each of them null for none.
  void Reindex(RowId row, const Record* before, const Record* after);
  struct Touched {
    RowId row = kNoRow;
    std::uint64_t touched = 0;
  };
  bool IsLatest(const Touched& change) const;
  void Touch(RowId row, Record before);
  void Forget(RowId row);
  void Remove(RowId row);

  RecordLayout layout_;
  std::vector<int> key_;
  std::vector<Row> rows_;
  std::vector<Entry> log_;
  int changes_ = 0;
  std::uint64_t touches_ = 0;
  // Ascending; what an entry says no more has been changed again, or taken back.
  std::vector<Touched> history_;
  UniqueIndex index_;
};

}  // namespace kvshare::data
