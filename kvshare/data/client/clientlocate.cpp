// How a client dataset finds records by their values.
#include <algorithm>
#include <compare>
#include <cstddef>
#include <memory_resource>
#include <ranges>
#include <span>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/clientrecords.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

using data::Cell;
using data::CellKind;
using data::OwnedCell;
using data::RowId;
using data::RowOrder;

namespace {

// What is looked for. Its lists lie in the caller's frame, as a rule.
struct Search {
  std::span<const int> columns;
  std::pmr::vector<OwnedCell> values;
  TLocateOptions options;

  bool IsPlain() const { return !options.loCaseInsensitive && !options.loPartialKey; }
};

bool Matches(const Cell& found, const Cell& wanted, TFieldForm form, TLocateOptions options) {
  if (found.kind != CellKind::Text || wanted.kind != CellKind::Text || form != TFieldForm::Text) {
    return std::is_eq(data::Compare(found, wanted, form));
  }
  std::string_view text = found.text;
  if (options.loPartialKey) text = text.substr(0, wanted.text.size());
  return options.loCaseInsensitive ? SameText(text, wanted.text) : text == wanted.text;
}

bool Matches(const data::RecordTable& table, RowId row, const Search& search) {
  const data::RecordLayout& layout = table.Layout();
  for (std::size_t i = 0; i < search.columns.size(); ++i) {
    const int column = search.columns[i];
    const Cell found = table.At(row).At(layout, column);
    if (!Matches(found, search.values[i].View(), layout.Form(column), search.options)) return false;
  }
  return true;
}

std::size_t FindByKey(const data::ClientRecords& records, const Search& search) {
  std::pmr::vector<Cell> cells(search.values.get_allocator());
  cells.reserve(search.values.size());
  for (const OwnedCell& value : search.values) cells.push_back(value.View());
  const RowId row = records.Table().FindKey(cells);
  return row == data::kNoRow ? RowOrder::kNowhere : records.Order().PositionOf(row);
}

std::size_t FindInOrder(const data::ClientRecords& records, const Search& search) {
  const data::RecordTable& table = records.Table();
  const data::RecordLayout& layout = table.Layout();
  const std::size_t position = records.Order().FirstNotBefore([&](RowId row) {
    for (std::size_t i = 0; i < search.columns.size(); ++i) {
      const int column = search.columns[i];
      const auto order = data::Compare(table.At(row).At(layout, column), search.values[i].View(),
                                       layout.Form(column));
      if (std::is_neq(order)) return std::is_lt(order);
    }
    return false;
  });
  if (position == RowOrder::kNowhere) return position;
  return Matches(table, records.Order().At(position), search) ? position : RowOrder::kNowhere;
}

std::size_t FindOneByOne(const data::ClientRecords& records, const Search& search) {
  const RowOrder& order = records.Order();
  std::size_t position = order.Forward(0);
  while (position != RowOrder::kNowhere) {
    if (Matches(records.Table(), order.At(position), search)) return position;
    position = order.Forward(position + 1);
  }
  return RowOrder::kNowhere;
}

std::size_t Find(const data::ClientRecords& records, const Search& search) {
  if (search.IsPlain()) {
    // The index of the key knows the records that are there and have a key.
    const bool any = std::ranges::any_of(
        search.values, [](const OwnedCell& value) { return value.View().kind != CellKind::Null; });
    if (any && !records.Order().ShowsDeleted() &&
        std::ranges::equal(search.columns, records.Table().Key())) {
      return FindByKey(records, search);
    }
    const std::vector<int>& sorted = records.Order().Columns();
    const bool first = search.columns.size() <= sorted.size() &&
                       std::equal(search.columns.begin(), search.columns.end(), sorted.begin());
    if (first) return FindInOrder(records, search);
  }
  return FindOneByOne(records, search);
}

}  // namespace

// Where the record is; nowhere without names or values.
std::size_t TClientDataSet::Find(std::string_view keyFields, std::span<const Variant> values,
                                 TLocateOptions options) const {
  std::byte room[512];
  std::pmr::monotonic_buffer_resource memory(room, sizeof room);
  std::vector<int> named;
  const bool byKey = !primaryKey_.empty() && keyFields == primaryKey_;
  if (!byKey) named = ColumnsOf(keyFields);
  Search search{byKey ? records_->Table().Key() : named, std::pmr::vector<OwnedCell>(&memory),
                options};
  search.values.reserve(values.size());
  if (search.columns.empty() || search.columns.size() != values.size()) {
    DatabaseError(Format("%d values for %d key fields", {static_cast<int>(values.size()),
                                                         static_cast<int>(search.columns.size())}),
                  this);
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    search.values.push_back(Fields(search.columns[i]).Sought(values[i]));
  }
  return kvshare::Find(*records_, search);
}

bool TClientDataSet::Locate(std::string_view keyFields, std::span<const Variant> values,
                            TLocateOptions options) {
  CheckBrowseMode();
  const std::size_t position = Find(keyFields, values, options);
  if (position == RowOrder::kNowhere) return false;
  records_->StandAt(position);
  SetPlace(false, false, false);
  Scrolled();
  return true;
}

bool TClientDataSet::FindKey(std::span<const Variant> values) {
  std::string_view names = indexFieldNames_.empty() ? primaryKey_ : indexFieldNames_;
  // Fewer values than fields look for the first ones.
  std::size_t end = 0;
  for (std::size_t i = 0; i < values.size() && end < names.size(); ++i) {
    end = std::min(names.find(';', i == 0 ? 0 : end + 1), names.size());
  }
  return Locate(names.substr(0, end), values);
}

Variant TClientDataSet::Lookup(std::string_view keyFields, std::span<const Variant> values,
                               std::string_view resultField) const {
  CheckActive();
  const std::size_t position = Find(keyFields, values, {});
  const int column = FieldByName(resultField).Index();
  if (position == RowOrder::kNowhere || column >= static_cast<int>(stored_.size())) return Null;
  return Fields(column).ValueIn(
      data::RecordView(records_->Layout(), records_->Table().At(records_->Order().At(position))));
}

}  // namespace kvshare
