#include "kvshare/data/records/record.h"

#include <algorithm>
#include <limits>

#include "kvshare/data/contract/decimals.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::data {

namespace {

std::size_t SizeOfTexts(const RecordLayout& layout, const RecordBuffer& buffer) {
  std::size_t size = 0;
  for (int i = 0; i < layout.Columns(); ++i) {
    if (buffer.Kind(i) == CellKind::Text) size += buffer.Text(i).size();
  }
  return size;
}

}  // namespace

bool Cell::operator==(const Cell& other) const {
  if (kind != other.kind) return false;
  switch (kind) {
    case CellKind::Integer:
      return integer == other.integer;
    case CellKind::Real:
      return real == other.real || (real != real && other.real != other.real);
    case CellKind::Text:
      return text == other.text;
    case CellKind::Null:
      break;
  }
  return true;
}

Cell CellOf(const TRecordReader& reader, int column, TFieldForm form) {
  if (reader.IsNull(column)) return {};
  switch (CellKindOf(form)) {
    case CellKind::Integer:
      return Cell::Of(reader.Integer(column));
    case CellKind::Real:
      return Cell::Of(reader.Float(column));
    case CellKind::Text:
      return Cell::Of(reader.Text(column));
    case CellKind::Null:
      break;
  }
  return {};
}

void PutCell(RecordBuffer& out, int at, const TRecordReader& reader, int column, TFieldForm form,
             std::string& scratch) {
  Cell cell = form == TFieldForm::Text && !reader.IsNull(column) ? Cell{CellKind::Text, 0, 0, {}}
                                                                 : CellOf(reader, column, form);
  constexpr std::string_view kNoMilliseconds = ".000";
  scratch.clear();
  if (cell.kind == CellKind::Text) {
    switch (form) {
      case TFieldForm::Text:
        reader.AppendCharacters(scratch, column);
        cell.text = scratch;
        break;
      case TFieldForm::Decimal:
        // What is no number stays as the server has it: only its reading is refused.
        if (AppendShortest(scratch, cell.text, '.')) cell.text = scratch;
        break;
      case TFieldForm::Time:
      case TFieldForm::Moment:
        if (cell.text.ends_with(kNoMilliseconds)) cell.text.remove_suffix(kNoMilliseconds.size());
        break;
      case TFieldForm::None:
      case TFieldForm::Integer:
      case TFieldForm::Real:
      case TFieldForm::Boolean:
      case TFieldForm::Date:
      case TFieldForm::Bytes:
        break;
    }
  }
  out.Put(at, cell);
}

ParameterValue WireValueOf(const Cell& cell, TFieldForm form) {
  switch (cell.kind) {
    case CellKind::Null:
      return {};
    case CellKind::Integer:
      return cell.integer;
    case CellKind::Real:
      return cell.real;
    case CellKind::Text:
      break;
  }
  switch (form) {
    case TFieldForm::Bytes:
      return Bytes{std::string(cell.text)};
    case TFieldForm::Decimal:
      return Decimal{std::string(cell.text)};
    case TFieldForm::Date:
      return Moment{ColumnKind::Date, std::string(cell.text)};
    case TFieldForm::Time:
      return Moment{ColumnKind::Time, std::string(cell.text)};
    case TFieldForm::Moment:
      return Moment{ColumnKind::TimeStamp, std::string(cell.text)};
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Integer:
    case TFieldForm::Real:
    case TFieldForm::Boolean:
      break;
  }
  return Cp874ToUtf8(cell.text);
}

RecordLayout::RecordLayout(std::vector<TFieldForm> forms) : forms_(std::move(forms)) {
  kinds_.reserve(forms_.size());
  for (const TFieldForm form : forms_) kinds_.push_back(CellKindOf(form));
  const std::size_t bits = 2 * GivenAt();
  slotsAt_ = (bits + kSlot - 1) / kSlot * kSlot;
}

Record::Record(const RecordLayout& layout, const RecordBuffer& buffer) {
  std::size_t end = layout.TextsAt();
  const std::size_t size = end + SizeOfTexts(layout, buffer);
  if (size > std::numeric_limits<std::uint32_t>::max()) throw EDBClient("Record too large", 0);
  block_ = std::make_unique_for_overwrite<std::byte[]>(size);
  std::byte* block = block_.get();
  std::memset(block, 0, layout.SlotsAt());
  const auto set = [block](std::size_t bit) {
    block[bit / 8] |= static_cast<std::byte>(1U << (bit % 8));
  };
  for (int i = 0; i < layout.Columns(); ++i) {
    const auto at = static_cast<std::size_t>(i);
    if (buffer.Given(i)) set(layout.GivenAt() * 8 + at);
    std::byte* slot = block + layout.SlotsAt() + at * RecordLayout::kSlot;
    const Cell cell = buffer.At(i);
    switch (cell.kind) {
      case CellKind::Null:
        set(at);
        std::memset(slot, 0, RecordLayout::kSlot);
        break;
      case CellKind::Integer:
        std::memcpy(slot, &cell.integer, sizeof cell.integer);
        break;
      case CellKind::Real:
        std::memcpy(slot, &cell.real, sizeof cell.real);
        break;
      case CellKind::Text: {
        const TextPlace place{static_cast<std::uint32_t>(end),
                              static_cast<std::uint32_t>(cell.text.size())};
        std::memcpy(slot, &place, sizeof place);
        std::ranges::copy(cell.text, reinterpret_cast<char*>(block) + end);
        end += cell.text.size();
        break;
      }
    }
  }
}

std::size_t Record::Size(const RecordLayout& layout) const {
  std::size_t size = layout.TextsAt();
  for (int i = 0; i < layout.Columns(); ++i) {
    if (layout.Kind(i) == CellKind::Text && !IsNull(i)) size += Text(layout, i).size();
  }
  return size;
}

Record Record::Copy(const RecordLayout& layout) const {
  Record copy;
  if (block_ == nullptr) return copy;
  const std::size_t size = Size(layout);
  copy.block_ = std::make_unique_for_overwrite<std::byte[]>(size);
  std::memcpy(copy.block_.get(), block_.get(), size);
  return copy;
}

Cell Record::At(const RecordLayout& layout, int column) const {
  if (IsNull(column)) return {};
  switch (layout.Kind(column)) {
    case CellKind::Integer:
      return Cell::Of(Integer(layout, column));
    case CellKind::Real:
      return Cell::Of(Real(layout, column));
    case CellKind::Text:
      return Cell::Of(Text(layout, column));
    case CellKind::Null:
      break;
  }
  return {};
}

void RecordBuffer::Clear() {
  for (Slot& slot : values_) {
    slot.kind = CellKind::Null;
    slot.assigned = false;
    slot.given = false;
  }
}

void RecordBuffer::Load(const RecordLayout& layout, const Record& record) {
  for (int i = 0; i < layout.Columns(); ++i) {
    Put(i, record.At(layout, i));
    Slot& slot = values_[static_cast<std::size_t>(i)];
    slot.assigned = false;
    slot.given = record.IsGiven(layout, i);
  }
}

void RecordBuffer::Put(int column, const Cell& cell) {
  Slot& slot = values_[static_cast<std::size_t>(column)];
  slot.kind = cell.kind;
  slot.assigned = true;
  slot.given = true;
  slot.integer = cell.integer;
  slot.real = cell.real;
  if (cell.kind == CellKind::Text) slot.text = cell.text;
}

Cell RecordBuffer::At(int column) const {
  const Slot& slot = Value(column);
  Cell cell{slot.kind, slot.integer, slot.real, {}};
  if (slot.kind == CellKind::Text) cell.text = slot.text;
  return cell;
}

}  // namespace kvshare::data
