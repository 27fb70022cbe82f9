#include "kvshare/data/client/clientrecords.h"

#include <algorithm>
#include <utility>

namespace kvshare::data {

ClientRecords::CalculatedValues::CalculatedValues(std::vector<TFieldForm> forms,
                                                  std::function<void()> calculate)
    : calculate_(std::move(calculate)) {
  values_.Resize(static_cast<int>(forms.size()));
}

// What is read while it calculates is what there is so far.
void ClientRecords::CalculatedValues::Refresh() const {
  if (std::exchange(sound_, true)) return;
  values_.Clear();
  try {
    calculate_();
  } catch (...) {
    sound_ = false;
    throw;
  }
}

Cell ClientRecords::CalculatedValues::At(int column) const {
  Refresh();
  return values_.At(column);
}

ClientRecords::ClientRecords(const std::vector<TFieldForm>& stored,
                             std::vector<TFieldForm> calculated, std::function<void()> calculate)
    : table_(RecordLayout(stored), {}), calculated_(std::move(calculated), std::move(calculate)) {
  buffer_.Resize(static_cast<int>(stored.size()));
}

void ClientRecords::Show() {
  calculated_.Outdate();
  if (editing_) {
    current_.Show(buffer_);
  } else {
    const RowId row = Row();
    current_.Show(row == kNoRow ? nullptr : &table_.At(row));
  }
}

void ClientRecords::Empty() {
  table_.Clear();
  order_.Rebuild();
  editing_ = false;
  StandAt(RowOrder::kNowhere);
}

Record ClientRecords::Recalculated(const Record& record) {
  struct EditingAgain {
    ClientRecords& records;
    RecordBuffer buffer = records.buffer_;
    bool editing = records.editing_;
    ~EditingAgain() {
      records.buffer_ = std::move(buffer);
      records.editing_ = editing;
      records.Show();
    }
  };
  const EditingAgain afterwards{*this};
  buffer_.Load(Layout(), record);
  editing_ = true;
  Show();
  Calculate();
  return {Layout(), buffer_};
}

bool ClientRecords::StandAt(std::size_t position) {
  position_ = position;
  Show();
  return position != RowOrder::kNowhere;
}

bool ClientRecords::StandNear(RowId row, std::size_t position) {
  std::size_t place = row == kNoRow ? RowOrder::kNowhere : order_.PositionOf(row);
  if (place == RowOrder::kNowhere) place = order_.Forward(position);
  if (place == RowOrder::kNowhere) place = order_.Last();
  return StandAt(place);
}

void ClientRecords::BeginEdit() {
  buffer_.Load(Layout(), table_.At(Row()));
  editing_ = true;
  editedRow_ = Row();
  Show();
}

void ClientRecords::BeginInsert(bool append) {
  buffer_.Clear();
  editing_ = true;
  editedRow_ = kNoRow;
  insertAt_ = append ? RowOrder::kNowhere : position_;
  Show();
}

// A null that a new record is given is one of its values: the server is to put no default there.
bool ClientRecords::HasChanged(RowId row) const {
  const Record& record = table_.At(row);
  const bool inserted = table_.Status(row) == TUpdateStatus::usInserted;
  for (int i = 0; i < Layout().Columns(); ++i) {
    if (!buffer_.Assigned(i)) continue;
    if (buffer_.At(i) != record.At(Layout(), i)) return true;
    if (inserted && !record.IsGiven(Layout(), i)) return true;
  }
  return false;
}

bool ClientRecords::Post(bool logged) {
  RowId row = editedRow_;
  if (row == kNoRow) {
    row = table_.Insert(Record(Layout(), buffer_), logged);
    if (order_.IsInView(row)) position_ = order_.Insert(row, insertAt_);
  } else if (HasChanged(row)) {
    const RowOrder::Standing before = order_.StandingOf(row);
    table_.Modify(row, Record(Layout(), buffer_), logged);
    order_.Renew(row, before);
  }
  editing_ = false;
  return StandNear(row, position_ == RowOrder::kNowhere ? 0 : position_);
}

void ClientRecords::Revert(RowId row) {
  const RowId current = Row();
  const RowOrder::Standing before = order_.StandingOf(row);
  table_.Revert(row);
  order_.Renew(row, before);
  StandNear(current, position_ == RowOrder::kNowhere ? 0 : position_);
}

bool ClientRecords::Cancel() {
  editing_ = false;
  return StandAt(position_);
}

bool ClientRecords::Delete(bool logged) {
  const RowId row = Row();
  table_.Delete(row, logged);
  if (order_.IsInView(row)) return StandAt(position_);
  const std::size_t next = order_.Drop(position_);
  return StandAt(next != RowOrder::kNowhere ? next : order_.Last());
}

const TRecordReader* ClientRecords::Old() const {
  const RowId row = editing_ ? editedRow_ : Row();
  image_.Show(row == kNoRow ? nullptr : table_.Original(row));
  return &image_;
}

const TRecordReader* ClientRecords::New(int column) const {
  if (!refused_ || refused_->kind == TUpdateKind::ukInsert) return &current_;
  if (refused_->kind == TUpdateKind::ukDelete) return nullptr;
  const Record* original = table_.Original(Row());
  const Cell value = CellOf(current_, column, Layout().Form(column));
  return original != nullptr && original->At(Layout(), column) == value ? nullptr : &current_;
}

const TRecordReader* ClientRecords::Cur(int column) const {
  if (!refused_ || refused_->kind == TUpdateKind::ukInsert || !*refused_->server) return nullptr;
  const Record* original = table_.Original(Row());
  const Cell value = refused_->server->At(Layout(), column);
  if (original != nullptr && original->At(Layout(), column) == value) return nullptr;
  image_.Show(refused_->server);
  return &image_;
}

void ClientRecords::ShowRefused(RowId row, TUpdateKind kind, const Record& server) {
  apart_ = row;
  refused_ = Refused{kind, &server};
  if (kind != TUpdateKind::ukDelete) return BeginEdit();
  Show();
}

void ClientRecords::HideRefused() {
  apart_ = kNoRow;
  refused_.reset();
  editing_ = false;
  Show();
}

}  // namespace kvshare::data
