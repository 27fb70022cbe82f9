// The rows of a table that are in view, in their order.
//
// One vector of row numbers, without an index beside it. A sorted order finds a row by bisection on
// its values, so a row has to be looked up before its record changes (StandingOf) and is put back
// after it (Renew). An order without columns finds a row by its number, by bisection as long as
// nothing was inserted between others.
// Internal header.
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <vector>

#include "kvshare/data/records/recordtable.h"
#include "kvshare/data/records/updates.h"

namespace kvshare::data {

// How two values of a form follow each other: Null first, texts by their bytes. What is looked for
// among whole numbers, `b`, may be a decimal.
std::weak_ordering Compare(const Cell& a, const Cell& b, TFieldForm form);

// Positions count from 0. What was deleted keeps its position, out of view, until there is too much
// of it, so that deleting one record after the other stays cheap.
class RowOrder {
 public:
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

  explicit RowOrder(const RecordTable& table) : table_(table) {}

  // By the values of these columns, equal ones as they were appended; without columns as they lie.
  void Sort(std::vector<int> columns);
  void Filter(TUpdateStatusSet statuses);
  void Rebuild();  // after the table has changed by itself
  const std::vector<int>& Columns() const { return columns_; }
  bool ShowsDeleted() const { return statuses_.usDeleted; }

  int Count() const { return count_; }  // in view
  RowId At(std::size_t position) const { return rows_[position]; }
  bool IsInView(RowId row) const;

  // The next position in view from `position` on, or back from it, itself included; kNowhere.
  std::size_t Forward(std::size_t position) const;
  std::size_t Backward(std::size_t position) const;  // kNowhere comes from kNowhere
  std::size_t Last() const { return rows_.empty() ? kNowhere : Backward(rows_.size() - 1); }
  std::size_t PositionOf(RowId row) const;
  // Of a sorted order: the first position whose row does not come `before`; kNowhere.
  template <typename Before>
  std::size_t FirstNotBefore(Before before) const {
    const auto place = std::partition_point(rows_.begin(), rows_.end(), before);
    return place == rows_.end() ? kNowhere : static_cast<std::size_t>(place - rows_.begin());
  }

  // A new row, in view: before `position` (kNowhere: at the end), or where its values belong.
  std::size_t Insert(RowId row, std::size_t position);
  // Where a row stands before its record changes, and where it belongs afterwards.
  struct Standing {
    std::size_t place = kNowhere;
    bool inView = false;
  };
  Standing StandingOf(RowId row) const;
  void Renew(RowId row, Standing before);
  // A row at `position` has left the table; gives the position that follows, as Forward.
  std::size_t Drop(std::size_t position);

 private:
  bool Less(RowId a, RowId b) const;
  std::size_t PlaceFor(RowId row) const;
  std::size_t PlaceOf(RowId row) const;
  void InsertAt(std::size_t position, RowId row);

  const RecordTable& table_;
  TUpdateStatusSet statuses_;
  std::vector<int> columns_;
  std::vector<RowId> rows_;
  int count_ = 0;
  bool ascending_ = true;  // by row number
};

}  // namespace kvshare::data
