#include "kvshare/data/fields/dataset.h"

#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

TDataSet::TDataSet(TComponent* owner, std::string_view name) : TComponent(owner, name) {}

// What derived sets hold open they close in their own destructors.
TDataSet::~TDataSet() = default;

void TDataSet::Open() {
  if (Active()) return;
  try {
    InternalOpen();
    const bool any = InternalFirst();
    SetPlace(true, !any, !any);
    state_ = TDataSetState::dsBrowse;
  } catch (...) {
    fields_.clear();
    InternalClose();
    throw;
  }
}

void TDataSet::Close() {
  if (!Active()) return;
  CheckNotHeld();
  state_ = TDataSetState::dsInactive;
  modified_ = false;
  fields_.clear();
  InternalClose();
  SetPlace(true, true, true);
}

void TDataSet::SetPlace(bool bof, bool eof, bool empty) {
  bof_ = bof;
  eof_ = eof;
  empty_ = empty;
}

void TDataSet::First() {
  CheckBrowseMode();
  if (bof_ && IsUniDirectional()) return;
  const bool any = InternalFirst();
  SetPlace(true, !any, !any);
  Scrolled();
}

void TDataSet::Next() {
  CheckBrowseMode();
  if (eof_) return;
  const bool any = InternalNext();
  bof_ = false;
  eof_ = !any;
  Scrolled();
}

void TDataSet::Prior() {
  CheckBrowseMode();
  RefuseUniDirectional();
  if (empty_ || bof_) return;
  const bool any = InternalPrior();
  bof_ = !any;
  eof_ = false;
  Scrolled();
}

void TDataSet::Last() {
  CheckBrowseMode();
  RefuseUniDirectional();
  if (empty_) return;
  InternalLast();
  bof_ = false;
  eof_ = true;
  Scrolled();
}

bool TDataSet::InternalPrior() {
  return false;
}

bool TDataSet::InternalLast() {
  return false;
}

bool TDataSet::Locate(std::string_view /*keyFields*/, std::span<const Variant> /*values*/,
                      TLocateOptions /*options*/) {
  CheckActive();
  RefuseUniDirectional();
  return false;
}

// Sets that cannot be modified never come here: CanModify is asked before.
void TDataSet::InternalEdit() {}
void TDataSet::InternalInsert(bool /*append*/) {}
bool TDataSet::InternalPost() {
  return false;
}
bool TDataSet::InternalCancel() {
  return false;
}
bool TDataSet::InternalDelete() {
  return false;
}
void TDataSet::StoreCell(TField& /*field*/, int /*column*/, const data::Cell& /*value*/) {}

const TRecordReader* TDataSet::Image(TFieldImage image, const TField& field, int /*column*/) const {
  return image == TFieldImage::Cur ? nullptr : &field.Record();
}

void TDataSet::CheckBrowseMode() {
  CheckActive();
  CheckNotHeld();
  if (!IsEditing()) return;
  modified_ ? Post() : Cancel();
}

void TDataSet::CheckStorable(const TField& field) const {
  const bool calculated = field.FieldKind() == TFieldKind::fkCalculated ||
                          field.FieldKind() == TFieldKind::fkInternalCalc;
  const bool storable = state_ == TDataSetState::dsCalcFields
                            ? calculated
                            : IsEditing() && field.FieldKind() == TFieldKind::fkData;
  if (!storable) DatabaseError("Dataset not in edit or insert mode", this);
}

void TDataSet::Edit() {
  if (IsEditing()) return;
  CheckEditable();
  if (empty_) return Insert();
  CheckRecordEditable();
  Tell(BeforeEdit);
  InternalEdit();
  modified_ = false;
  state_ = TDataSetState::dsEdit;
  Tell(AfterEdit);
}

void TDataSet::Begin(bool append) {
  CheckEditable();
  CheckBrowseMode();
  Tell(BeforeInsert);
  InternalInsert(append);
  state_ = TDataSetState::dsInsert;
  SetPlace(false, false, false);
  Tell(OnNewRecord);
  modified_ = false;
  Tell(AfterInsert);
}

void TDataSet::Insert() {
  Begin(false);
}

void TDataSet::Append() {
  Begin(true);
}

void TDataSet::Delete() {
  CheckEditable();
  if (state_ == TDataSetState::dsInsert) return Cancel();
  CheckBrowseMode();
  if (empty_) DatabaseError("Cannot perform this operation on an empty dataset", this);
  CheckRecordEditable();
  Tell(BeforeDelete);
  const bool any = InternalDelete();
  SetPlace(!any, !any, !any);
  Tell(AfterDelete);
  Scrolled();
}

void TDataSet::CheckRequired() const {
  for (const auto& field : fields_) {
    const bool required =
        field->Required() && !field->ReadOnly && field->FieldKind() == TFieldKind::fkData;
    if (required && field->IsNull()) {
      DatabaseError(Format("Field '%s' must have a value", {field->DisplayName()}), this);
    }
  }
}

bool TDataSet::PostRecord() {
  CheckRequired();
  return InternalPost();
}

void TDataSet::Post() {
  CheckActive();
  CheckNotHeld();
  if (!IsEditing()) DatabaseError("Dataset not in edit or insert mode", this);
  Tell(BeforePost);
  bool any = false;
  for (TDataAction action = TDataAction::daRetry; action == TDataAction::daRetry;) {
    try {
      any = PostRecord();
      break;
    } catch (EDatabaseError& e) {
      action = TDataAction::daFail;
      if (OnPostError) OnPostError(*this, e, action);
      if (action == TDataAction::daFail) throw;
      if (action == TDataAction::daAbort) throw EAbort("Operation aborted");
    }
  }
  modified_ = false;
  state_ = TDataSetState::dsBrowse;
  SetPlace(!any, !any, !any);
  Tell(AfterPost);
}

void TDataSet::Cancel() {
  if (!IsEditing()) return;
  CheckNotHeld();
  Tell(BeforeCancel);
  const bool any = InternalCancel();
  modified_ = false;
  state_ = TDataSetState::dsBrowse;
  SetPlace(!any, !any, !any);
  Tell(AfterCancel);
}

TField& TDataSet::Fields(int index) const {
  if (index < 0 || index >= FieldCount()) {
    throw EListError(Format("List index out of bounds (%d)", {index}));
  }
  return *fields_[static_cast<std::size_t>(index)];
}

TField* TDataSet::FindField(std::string_view name) const {
  for (const auto& field : fields_) {
    if (SameText(field->FieldName(), name)) return field.get();
  }
  return nullptr;
}

TField& TDataSet::FieldByName(std::string_view name) const {
  TField* field = FindField(name);
  if (field == nullptr) DatabaseError(Format("Field '%s' not found", {name}), this);
  return *field;
}

TField& TDataSet::AddField(const TRecordReader& record, TFieldDef def) {
  return AddField(record, FieldCount(), std::move(def));
}

TField& TDataSet::AddField(const TRecordReader& record, int column, TFieldDef def) {
  fields_.push_back(std::make_unique<TField>(*this, record, FieldCount(), column, std::move(def)));
  return *fields_.back();
}

void TDataSet::CheckActive() const {
  if (!Active()) DatabaseError("Cannot perform this operation on a closed dataset", this);
}

void TDataSet::CheckEditable() const {
  CheckActive();
  if (!CanModify()) DatabaseError("Cannot modify a read-only dataset", this);
}

void TDataSet::CheckNotHeld() const {
  if (held_ != nullptr) DatabaseError(held_, this);
}

void TDataSet::RefuseUniDirectional() const {
  if (IsUniDirectional()) {
    DatabaseError("Operation not allowed on a unidirectional dataset", this);
  }
}

}  // namespace kvshare
