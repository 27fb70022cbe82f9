#include "kvshare/ui/stringgrid.h"

#include <algorithm>
#include <cstddef>

namespace kvshare {

namespace {

[[noreturn]] void ThrowBadIndex() {
  throw EInvalidGridOperation("Grid index out of range");
}

}  // namespace

EInvalidGridOperation::~EInvalidGridOperation() = default;

const int& TStringGrid::Axis::SizeAt(int index) const {
  if (index < 0 || index >= count) ThrowBadIndex();
  return sizes[static_cast<std::size_t>(index)];
}

int& TStringGrid::Axis::SizeAt(int index) {
  if (index < 0 || index >= count) ThrowBadIndex();
  return sizes[static_cast<std::size_t>(index)];
}

void TStringGrid::SetCount(Axis& axis, int count) {
  count = std::max(count, 1);
  if (count <= axis.fixed) throw EInvalidGridOperation(axis.tooManyFixed);
  axis.sizes.resize(static_cast<std::size_t>(count), axis.defaultSize);
  axis.current = std::min(axis.current, count - 1);
  Set(axis.count, count);
}

void TStringGrid::SetFixed(Axis& axis, int count) {
  if (count < 0) ThrowBadIndex();
  if (count >= axis.count) throw EInvalidGridOperation(axis.tooManyFixed);
  axis.current = std::max(axis.current, count);
  Set(axis.fixed, count);
}

void TStringGrid::SetAll(Axis& axis, int size) {
  axis.defaultSize = size;
  std::ranges::fill(axis.sizes, size);
  Changed();
}

const TStringGrid::Cell& TStringGrid::At(int col, int row) const {
  static const Cell kNone;
  if (col < 0 || row < 0) ThrowBadIndex();
  const auto found = cells_.find({col, row});
  return found == cells_.end() ? kNone : found->second;
}

TStringGrid::Cell& TStringGrid::At(int col, int row) {
  if (col < 0 || row < 0) ThrowBadIndex();
  return cells_[{col, row}];
}

const std::string& TStringGrid::Cells(int col, int row) const {
  return At(col, row).text;
}

void TStringGrid::SetCells(int col, int row, std::string_view text) {
  At(col, row).text = std::string(text);
}

TObject* TStringGrid::Objects(int col, int row) const {
  return At(col, row).object;
}

void TStringGrid::SetObjects(int col, int row, TObject* object) {
  At(col, row).object = object;
}

void TStringGrid::Clear() {
  cells_.clear();
}

bool TStringGrid::SelectCell(int col, int row) {
  const auto there = [&] { return cols_.Selectable(col) && rows_.Selectable(row); };
  if (!CanFocus() || !there()) return false;
  if (Parent() != nullptr) Parent()->SetActiveControl(this);
  bool can = true;
  if (OnSelectCell) OnSelectCell(col, row, can);
  if (!can || !there()) return false;  // the handler may have made the grid smaller
  cols_.current = col;
  rows_.current = row;
  return true;
}

bool TStringGrid::TypeText(std::string_view text) {
  if (!Options.goEditing || !CanFocus()) return false;
  if (Parent() != nullptr) Parent()->SetActiveControl(this);
  const int col = Col();
  const int row = Row();
  const std::string typed(text);
  SetCells(col, row, typed);
  if (OnSetEditText) OnSetEditText(col, row, typed);
  return true;
}

bool TStringGrid::DoubleClick() {
  if (!CanFocus()) return false;
  if (Parent() != nullptr) Parent()->SetActiveControl(this);
  if (OnDblClick) OnDblClick();
  return true;
}

}  // namespace kvshare
