#include "kvshare/data/client/clientdataset.h"

#include <algorithm>

#include "kvshare/data/client/clientrecords.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/data/packet/packet.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

using data::Cell;
using data::CellKind;
using data::ClientRecords;
using data::kNoRow;
using data::RowId;
using data::RowOrder;

void TFieldDefs::Add(std::string_view name, TFieldType type, int size, bool required) {
  TFieldDef def;
  def.Name = name;
  def.DataType = type;
  def.Size = size;
  def.Required = required;
  Add(std::move(def));
}

TClientDataSet::TClientDataSet(TComponent* owner, std::string_view name) : TDataSet(owner, name) {}

TClientDataSet::~TClientDataSet() {
  Close();
}

void TClientDataSet::AddCalculated(std::string_view name, TFieldType type, int size) {
  AddDerived({{std::string(name), type, size, 0, false, TFieldKind::fkCalculated}, {}});
}

void TClientDataSet::AddLookup(std::string_view name, TFieldType type, int size, TLookup lookup) {
  AddDerived({{std::string(name), type, size, 0, false, TFieldKind::fkLookup}, std::move(lookup)});
}

void TClientDataSet::AddDerived(Derived derived) {
  if (!HasValidSize(derived.def)) DatabaseError("Invalid field size", this);
  derived_.push_back(std::move(derived));
}

// --- Opening

void TClientDataSet::CreateDataSet() {
  Close();
  if (fieldDefs_.Count() == 0) {
    DatabaseError("No fields defined.  Cannot create dataset", this);
  }
  CheckNames(fieldDefs_.All());
  for (const TFieldDef& def : fieldDefs_.All()) {
    if (!HasValidSize(def)) DatabaseError("Invalid field size", this);
    if (def.Kind == TFieldKind::fkCalculated || def.Kind == TFieldKind::fkLookup) {
      DatabaseError(Format("Field '%s' is not kept with the record", {def.Name}), this);
    }
  }
  shape_.reset();
  defaultOrder_.clear();
  loaded_ = NewRecords(fieldDefs_.All());
  Arrange(*loaded_, fieldDefs_.All(), primaryKey_, defaultOrder_);
  Open();
}

// A query may have columns without a name and several of one; in a packet they would be lost.
void TClientDataSet::CheckNames(const std::vector<TFieldDef>& fields) const {
  for (auto field = fields.begin(); field != fields.end(); ++field) {
    if (field->Name.empty()) DatabaseError("Field name missing", this);
    const auto same = [&](const TFieldDef& other) { return SameText(other.Name, field->Name); };
    if (std::any_of(fields.begin(), field, same)) {
      DatabaseError(Format("Duplicate field name '%s'", {field->Name}), this);
    }
  }
}

void TClientDataSet::InternalOpen() {
  const bool fetches = provider_ != nullptr && !loaded_;
  // What was in memory alone went with Close: an empty set would look as if there were no records.
  if (!fetches && !loaded_) DatabaseError("Missing data provider or data packet", this);
  if (fetches) DescribeByProvider();
  MakeRecords();
  if (fetches) FetchFromProvider();
}

std::unique_ptr<ClientRecords> TClientDataSet::NewRecords(const std::vector<TFieldDef>& fields) {
  std::vector<TFieldForm> stored;
  std::vector<TFieldForm> calculated;
  stored.reserve(fields.size());
  calculated.reserve(derived_.size());
  for (const TFieldDef& def : fields) stored.push_back(FormOf(def.DataType));
  for (const Derived& derived : derived_) calculated.push_back(FormOf(derived.def.DataType));
  return std::make_unique<ClientRecords>(stored, std::move(calculated), [this] { Calculate(); });
}

void TClientDataSet::Arrange(ClientRecords& records, const std::vector<TFieldDef>& fields,
                             std::string_view primaryKey, std::string_view defaultOrder) const {
  records.Table().SetKey(ColumnsIn(fields, primaryKey));
  records.Order().Filter(statusFilter_);
  records.Order().Sort(ColumnsIn(
      fields, indexFieldNames_.empty() ? defaultOrder : std::string_view{indexFieldNames_}));
}

void TClientDataSet::MakeRecords() {
  stored_ = fieldDefs_.All();
  if (loaded_) {
    records_ = std::move(loaded_);
  } else {
    if (shape_) shape_->rows.clear();
    records_ = NewRecords(stored_);
    Arrange(*records_, stored_, primaryKey_, defaultOrder_);
  }
  for (const TFieldDef& def : stored_) AddField(records_->Current(), def);
  int column = 0;
  for (const Derived& derived : derived_) {
    AddField(records_->Calculated(), column++, derived.def);
  }
}

void TClientDataSet::InternalClose() noexcept {
  records_.reset();
  if (provider_ != nullptr) provider_->Query().Close();  // of a fetch that was broken off
}

void TClientDataSet::EmptyDataSet() {
  CheckBrowseMode();
  if (shape_) shape_->rows.clear();
  records_->Empty();
  SetPlace(true, true, true);
}

int TClientDataSet::RecordCount() const {
  return records_ ? records_->Order().Count() : 0;
}

// --- Moves

bool TClientDataSet::InternalFirst() {
  return records_->StandAt(records_->Order().Forward(0));
}

bool TClientDataSet::InternalNext() {
  const std::size_t next = records_->Order().Forward(records_->Position() + 1);
  return next != RowOrder::kNowhere && records_->StandAt(next);
}

bool TClientDataSet::InternalPrior() {
  const std::size_t prior = records_->Order().Backward(records_->Position() - 1);
  return prior != RowOrder::kNowhere && records_->StandAt(prior);
}

bool TClientDataSet::InternalLast() {
  return records_->StandAt(records_->Order().Last());
}

// --- Editing

void TClientDataSet::CheckRecordEditable() const {
  const RowId row = records_->Row();
  if (row != kNoRow && !records_->Table().IsThere(row)) {
    DatabaseError("Cannot modify a deleted record", this);
  }
}

void TClientDataSet::InternalEdit() {
  records_->BeginEdit();
}

void TClientDataSet::InternalInsert(bool append) {
  records_->BeginInsert(append);
}

void TClientDataSet::CheckRequiredInPacket() const {
  constexpr int kValueRequired = 9732;
  for (int column = 0; const TFieldDef& def : stored_) {
    const bool missing = def.Required && records_->Buffer().Kind(column) == CellKind::Null;
    if (missing) throw EDBClient("Field value required.", kValueRequired);
    ++column;
  }
}

bool TClientDataSet::KeepsCalculations() const {
  return std::ranges::find(stored_, TFieldKind::fkInternalCalc, &TFieldDef::Kind) != stored_.end();
}

bool TClientDataSet::InternalPost() {
  if (KeepsCalculations()) records_->Calculate();
  CheckRequiredInPacket();
  return records_->Post(LogChanges);
}

bool TClientDataSet::InternalCancel() {
  return records_->Cancel();
}

bool TClientDataSet::InternalDelete() {
  return records_->Delete(LogChanges);
}

void TClientDataSet::StoreCell(TField& field, int column, const Cell& value) {
  if (field.FieldKind() == TFieldKind::fkCalculated) {
    records_->PutCalculated(column, value);
    return;
  }
  if (State() == TDataSetState::dsCalcFields) {
    if (records_->IsEditing()) records_->Buffer().Put(column, value);
    return;
  }
  records_->Buffer().Put(column, value);
  records_->Outdate();
  SetModified(true);
}

void TClientDataSet::Calculate() {
  if (records_->Row() == kNoRow && !records_->IsEditing()) return;
  const TDataSetState before = State();
  SetState(TDataSetState::dsCalcFields);
  try {
    FillLookups();
    if (OnCalcFields) OnCalcFields(*this);
  } catch (...) {
    SetState(before);
    throw;
  }
  SetState(before);
}

void TClientDataSet::FillLookups() {
  int column = -1;
  for (const Derived& derived : derived_) {
    ++column;
    const TLookup& lookup = derived.lookup;
    if (derived.def.Kind != TFieldKind::fkLookup || lookup.LookupDataSet == nullptr) continue;
    std::vector<Variant> values;
    for (const int key : ColumnsOf(lookup.KeyFields)) values.push_back(Fields(key).Value());
    const Variant found =
        lookup.LookupDataSet->Lookup(lookup.LookupKeyFields, values, lookup.LookupResultField);
    TField& field = Fields(static_cast<int>(stored_.size()) + column);
    records_->PutCalculated(column, field.Converted(found).View());
  }
}

const TRecordReader* TClientDataSet::Image(TFieldImage image, const TField& field,
                                           int column) const {
  const bool stored =
      field.FieldKind() != TFieldKind::fkCalculated && field.FieldKind() != TFieldKind::fkLookup;
  if (!stored) return TDataSet::Image(image, field, column);
  switch (image) {
    case TFieldImage::Old:
      return records_->Old();
    case TFieldImage::New:
      return records_->New(column);
    case TFieldImage::Cur:
      break;
  }
  return records_->Cur(column);
}

// --- Order and keys

std::vector<int> TClientDataSet::ColumnsIn(const std::vector<TFieldDef>& fields,
                                           std::string_view names) const {
  std::vector<int> columns;
  while (!names.empty()) {
    const std::size_t end = names.find(';');
    const std::string_view name = Trim(names.substr(0, end));
    const auto same = [name](const TFieldDef& def) { return SameText(def.Name, name); };
    const auto found = std::ranges::find_if(fields, same);
    if (found == fields.end()) {
      const bool derived = std::ranges::any_of(derived_, same, &Derived::def);
      DatabaseError(Format(derived ? "Field '%s' cannot be a key" : "Field '%s' not found", {name}),
                    this);
    }
    columns.push_back(static_cast<int>(found - fields.begin()));
    names.remove_prefix(end == std::string_view::npos ? names.size() : end + 1);
  }
  return columns;
}

// To the same record, where it still is in view, after the order was made again.
void TClientDataSet::Restand() {
  const RowId row = records_->Row();
  const std::size_t position = records_->Position();
  records_->Order().Rebuild();
  const bool any = records_->StandNear(row, position == RowOrder::kNowhere ? 0 : position);
  SetPlace(!any, !any, !any);
}

void TClientDataSet::SetIndexFieldNames(std::string_view names) {
  if (Active()) {
    CheckBrowseMode();
    records_->Order().Sort(ColumnsOf(names.empty() ? std::string_view{defaultOrder_} : names));
    Restand();
  }
  indexFieldNames_ = names;
}

void TClientDataSet::SetPrimaryKey(std::string_view names) {
  if (Active()) {
    CheckBrowseMode();
    records_->Table().SetKey(ColumnsOf(names));
  }
  primaryKey_ = names;
}

void TClientDataSet::SetStatusFilter(const TUpdateStatusSet& filter) {
  if (Active()) {
    CheckBrowseMode();
    records_->Order().Filter(filter);
    Restand();
  }
  statusFilter_ = filter;
}

// --- The log

int TClientDataSet::ChangeCount() const {
  return records_ ? records_->Table().ChangeCount() : 0;
}

TUpdateStatus TClientDataSet::UpdateStatus() const {
  CheckActive();
  const RowId row = records_->Row();
  return row == kNoRow ? TUpdateStatus::usUnmodified : records_->Table().Status(row);
}

void TClientDataSet::RevertRecord() {
  CheckActive();
  CheckNotHeld();
  const bool inserting = State() == TDataSetState::dsInsert;
  Cancel();
  if (!inserting && records_->Row() != kNoRow) Revert(records_->Row());
}

bool TClientDataSet::UndoLastChange(bool followChange) {
  CheckActive();
  CheckNotHeld();
  Cancel();
  const RowId newest = records_->Table().NewestChange();
  if (newest == kNoRow) return false;
  Revert(newest);
  if (followChange && records_->Order().IsInView(newest)) {
    records_->StandOn(newest);
    SetPlace(false, false, false);
  }
  return true;
}

void TClientDataSet::Revert(RowId row) {
  records_->Revert(row);
  const bool any = records_->Row() != kNoRow;
  SetPlace(!any, !any, !any);
}

void TClientDataSet::CancelUpdates() {
  CheckActive();
  CheckNotHeld();
  Cancel();
  records_->Table().RevertAll();
  Restand();
}

void TClientDataSet::MergeChangeLog() {
  CheckBrowseMode();
  records_->Table().AcceptAll();
  Restand();
}

}  // namespace kvshare
