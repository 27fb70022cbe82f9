#include "kvshare/data/dataset.h"

#include "kvshare/data/errors.h"
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
  state_ = TDataSetState::dsInactive;
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
  CheckActive();
  if (bof_ && IsUniDirectional()) return;
  const bool any = InternalFirst();
  SetPlace(true, !any, !any);
}

void TDataSet::Next() {
  CheckActive();
  if (eof_) return;
  const bool any = InternalNext();
  bof_ = false;
  eof_ = !any;
}

void TDataSet::Prior() {
  CheckActive();
  RefuseUniDirectional();
  if (empty_ || bof_) return;
  const bool any = InternalPrior();
  bof_ = !any;
  eof_ = false;
}

void TDataSet::Last() {
  CheckActive();
  RefuseUniDirectional();
  if (empty_) return;
  InternalLast();
  bof_ = false;
  eof_ = true;
}

bool TDataSet::InternalPrior() {
  return false;
}

bool TDataSet::InternalLast() {
  return false;
}

bool TDataSet::Locate(std::string_view /*keyFields*/, const Variant& /*keyValues*/) {
  CheckActive();
  RefuseUniDirectional();
  return false;
}

void TDataSet::Edit() {
  if (state_ == TDataSetState::dsEdit || state_ == TDataSetState::dsInsert) return;
  CheckEditable();
}

void TDataSet::Insert() {
  CheckEditable();
}

void TDataSet::Append() {
  CheckEditable();
}

void TDataSet::Delete() {
  CheckEditable();
}

void TDataSet::Post() {
  CheckActive();
  if (state_ == TDataSetState::dsBrowse) {
    DatabaseError("Dataset not in edit or insert mode", this);
  }
}

void TDataSet::Cancel() {}

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

void TDataSet::AddField(const TRecordReader& record, TFieldDef def) {
  fields_.push_back(std::make_unique<TField>(*this, record, FieldCount(), std::move(def)));
}

void TDataSet::CheckActive() const {
  if (!Active()) DatabaseError("Cannot perform this operation on a closed dataset", this);
}

void TDataSet::CheckEditable() const {
  CheckActive();
  if (!CanModify()) DatabaseError("Cannot modify a read-only dataset", this);
}

void TDataSet::RefuseUniDirectional() const {
  if (IsUniDirectional()) {
    DatabaseError("Operation not allowed on a unidirectional dataset", this);
  }
}

}  // namespace kvshare
