#include "kvshare/data/records/roworder.h"

#include <algorithm>

#include "kvshare/data/contract/decimals.h"
#include "kvshare/rtl/convert.h"

namespace kvshare::data {

namespace {

std::weak_ordering CompareReals(double a, double b) {
  return std::weak_order(a, b == a ? a : b);
}

}  // namespace

std::weak_ordering Compare(const Cell& a, const Cell& b, TFieldForm form) {
  if (a.kind == CellKind::Null || b.kind == CellKind::Null) {
    return (a.kind != CellKind::Null) <=> (b.kind != CellKind::Null);
  }
  switch (a.kind) {
    case CellKind::Integer:
      if (b.kind == CellKind::Text) return CompareDecimals(IntToStr(a.integer), b.text);
      return a.integer <=> b.integer;
    case CellKind::Real:
      return CompareReals(a.real, b.real);
    case CellKind::Null:
    case CellKind::Text:
      break;
  }
  if (form == TFieldForm::Decimal) return CompareDecimals(a.text, b.text);
  return a.text <=> b.text;  // dates too: theirs are in the order of time
}

bool RowOrder::Less(RowId a, RowId b) const {
  const RecordLayout& layout = table_.Layout();
  for (const int column : columns_) {
    const auto order = Compare(table_.At(a).At(layout, column), table_.At(b).At(layout, column),
                               layout.Form(column));
    if (std::is_neq(order)) return std::is_lt(order);
  }
  return a < b;
}

bool RowOrder::IsInView(RowId row) const {
  if (statuses_.IsEmpty()) return table_.IsThere(row);
  switch (table_.Status(row)) {
    case TUpdateStatus::usModified:
      return statuses_.usModified;
    case TUpdateStatus::usInserted:
      return statuses_.usInserted;
    case TUpdateStatus::usDeleted:
      return statuses_.usDeleted;
    case TUpdateStatus::usUnmodified:
      break;
  }
  return false;
}

void RowOrder::Sort(std::vector<int> columns) {
  columns_ = std::move(columns);
  Rebuild();
}

void RowOrder::Filter(TUpdateStatusSet statuses) {
  statuses_ = statuses;
  Rebuild();
}

void RowOrder::Rebuild() {
  rows_.clear();
  for (RowId row = 0; row < table_.Rows(); ++row) {
    if (IsInView(row)) rows_.push_back(row);
  }
  count_ = static_cast<int>(rows_.size());
  ascending_ = columns_.empty();
  if (!columns_.empty()) {
    std::ranges::sort(rows_, [this](RowId a, RowId b) { return Less(a, b); });
  }
}

std::size_t RowOrder::Forward(std::size_t position) const {
  for (; position < rows_.size(); ++position) {
    if (IsInView(rows_[position])) return position;
  }
  return kNowhere;
}

std::size_t RowOrder::Backward(std::size_t position) const {
  for (; position != kNowhere; --position) {  // 0 is followed by kNowhere
    if (IsInView(rows_[position])) return position;
  }
  return kNowhere;
}

std::size_t RowOrder::PositionOf(RowId row) const {
  return IsInView(row) ? PlaceOf(row) : kNowhere;
}

// Of a row that may be out of view; a sorted order has only rows in view.
std::size_t RowOrder::PlaceOf(RowId row) const {
  if (row < rows_.size() && rows_[row] == row) return row;  // nothing was ever moved
  auto found = rows_.end();
  if (!columns_.empty()) {
    found = std::ranges::lower_bound(rows_, row, [this](RowId a, RowId b) { return Less(a, b); });
  } else {
    found = ascending_ ? std::ranges::lower_bound(rows_, row) : std::ranges::find(rows_, row);
  }
  if (found == rows_.end() || *found != row) return kNowhere;
  return static_cast<std::size_t>(found - rows_.begin());
}

RowOrder::Standing RowOrder::StandingOf(RowId row) const {
  const bool inView = IsInView(row);
  return {inView || columns_.empty() ? PlaceOf(row) : kNowhere, inView};
}

void RowOrder::Renew(RowId row, Standing before) {
  const bool sorted = !columns_.empty();
  const bool inView = IsInView(row);
  if (before.inView) --count_;
  if (before.place != kNowhere && sorted) {
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(before.place));
    before.place = kNowhere;
  }
  if (!inView) return;
  if (before.place != kNowhere) {
    ++count_;
  } else if (sorted) {
    InsertAt(PlaceFor(row), row);
  } else {
    const auto place = ascending_ ? std::ranges::lower_bound(rows_, row) : rows_.end();
    InsertAt(static_cast<std::size_t>(place - rows_.begin()), row);
  }
}

std::size_t RowOrder::PlaceFor(RowId row) const {
  // What left the table has no values to compare; such rows are gone before anything is inserted.
  const auto place =
      std::ranges::upper_bound(rows_, row, [this](RowId a, RowId b) { return Less(a, b); });
  return static_cast<std::size_t>(place - rows_.begin());
}

std::size_t RowOrder::Insert(RowId row, std::size_t position) {
  if (!columns_.empty()) {
    position = PlaceFor(row);
  } else if (position == kNowhere) {
    position = rows_.size();
  }
  ascending_ = ascending_ && position == rows_.size();
  InsertAt(position, row);
  return position;
}

void RowOrder::InsertAt(std::size_t position, RowId row) {
  rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(position), row);
  ++count_;
}

std::size_t RowOrder::Drop(std::size_t position) {
  --count_;
  const bool sorted = !columns_.empty();
  constexpr std::size_t kFew = 64;
  const bool crowded = rows_.size() > 2 * static_cast<std::size_t>(count_) + kFew;
  if (sorted) {
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(position));
  } else if (crowded) {
    std::size_t before = 0;
    for (std::size_t i = 0; i < position; ++i) before += IsInView(rows_[i]) ? 1U : 0U;
    std::erase_if(rows_, [this](RowId row) { return !IsInView(row); });
    position = before;
  }
  return Forward(position);
}

}  // namespace kvshare::data
