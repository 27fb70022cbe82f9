#include "kvshare/database/errorform.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kvshare/data/fields/editmask.h"
#include "kvshare/rtl/format.h"
#include "kvshare/ui/backend.h"

namespace kvshare {

namespace {

constexpr std::string_view kUnchanged = "<Unchanged>";
constexpr int kClientWidth = 527;
constexpr int kClientHeight = 311;

void Place(TControl& control, std::string_view caption, const TBounds& bounds) {
  control.SetCaption(caption);
  control.SetBounds(bounds);
}

// Their values are shown as "(Binary)".
constexpr std::array kBinaryTypes = {
    ftBytes,      ftVarBytes, ftBlob,        ftGraphic, ftFmtMemo,
    ftParadoxOle, ftDBaseOle, ftTypedBinary, ftCursor,
};

bool IsBinary(TFieldType type) {
  return std::ranges::find(kBinaryTypes, type) != kBinaryTypes.end();
}

// What stands for the values of fields that have no text.
std::string_view KindText(TFieldType type) {
  if (IsBinary(type)) return "(Binary)";
  if (type == TFieldType::ftADT) return "(ADT)";
  return type == TFieldType::ftArray ? "(Array)" : "";
}

void StoreTyped(TField& field, const std::string& typed) {
  if (field.OnSetText || !field.EditMask.empty()) {
    field.SetTextOfLine(typed);
  } else {
    field.SetNewValue(typed);
  }
}

}  // namespace

std::string ErrorValueText(const Variant& value, TFieldType type) {
  if (value.IsEmpty()) return std::string(kUnchanged);
  const std::string_view kind = KindText(type);
  return kind.empty() ? VarToStr(value) : std::string(kind);
}

// A handler may show today for Null, or 00:00: true on a screen where that will be stored, false
// where two people ask what the record has.
std::string ErrorValueText(const Variant& value, TField& field) {
  const bool hasText = !value.IsEmpty() && !value.IsNull() && KindText(field.DataType()).empty();
  if (hasText && field.OnGetText) return field.DisplayTextOf(value);
  std::string text = ErrorValueText(value, field.DataType());
  if (!hasText || field.EditMask.empty() || FormOf(field.DataType()) != TFieldForm::Text)
    return text;
  return TEditMask(field.EditMask).Format(text);
}

TUpdateErrorForm::TUpdateErrorForm(std::string_view name, std::string_view caption,
                                   std::span<const TErrorChoice> choices, Content content)
    : TForm(nullptr, name), choices_(choices), content_(std::move(content)) {
  SetCaption(caption);
  Design();
  Connect();
}

void TUpdateErrorForm::Design() {
  BorderStyle = TFormBorderStyle::bsDialog;
  Position = TPosition::poScreenCenter;
  SetClientWidth(kClientWidth);
  SetClientHeight(kClientHeight);

  Place(IconImage, "", {12, 12, 34, 34});
  Place(UpdateTypeLabel, "Update Type:", {57, 13, 65, 13});
  Place(UpdateType, "", {134, 13, 60, 13});
  Place(ErrorLabel, "Error Message:", {57, 33, 75, 13});
  Place(ErrorMsg, "", {56, 52, 342, 71});
  Place(ActionGroup, " Reconcile Action ", {410, 10, 102, 113});
  Place(UpdateData, "", {9, 140, 504, 131});
  Place(ConflictsOnly, "Show conflicting fields only", {11, 282, 165, 17});
  Place(ChangedOnly, "Show changed fields only", {185, 282, 155, 17});
  Place(OKBtn, "OK", {350, 281, 75, 25});
  Place(CancelBtn, "Cancel", {438, 281, 75, 25});

  ErrorMsg.ReadOnly = true;
  UpdateData.SetColCount(4);
  UpdateData.SetRowCount(2);
  OKBtn.Default = true;
  OKBtn.ModalResult = mrOk;
  CancelBtn.Cancel = true;
  CancelBtn.ModalResult = mrCancel;

  TWinControl* const tabOrder[] = {&ActionGroup, &UpdateData, &ConflictsOnly, &ChangedOnly,
                                   &OKBtn,       &CancelBtn,  &ErrorMsg};
  for (int order = 0; TWinControl * control : tabOrder) control->TabOrder = order++;
}

void TUpdateErrorForm::Connect() {
  OnCreate = [this] { Fill(); };
  OnShow = [this] { DisplayFieldValues(); };
  ActionGroup.OnClick = [this] { DisplayFieldValues(); };
  ConflictsOnly.OnClick = [this] { DisplayFieldValues(); };
  ChangedOnly.OnClick = [this] { DisplayFieldValues(); };
  OKBtn.OnClick = [this] { WriteEdits(); };
  UpdateData.OnSelectCell = [this](int col, int /*row*/, bool& /*can*/) {
    UpdateData.Options.goEditing = MayType(col);
  };
  UpdateData.OnSetEditText = [this](int col, int row, const std::string& text) {
    auto* edited = dynamic_cast<TErrorFieldRow*>(UpdateData.Objects(col, row));
    if (edited == nullptr) return;
    edited->EditValue = text;
    edited->Edited = true;
  };
}

void TUpdateErrorForm::Fill() {
  if (content_.dataSet == nullptr) return;
  BuildRows();
  SetCaption(Format("Update Error - %s", {content_.dataSet->Name()}));
  UpdateType.SetCaption(UpdateKindStr[static_cast<std::size_t>(content_.kind)]);
  ErrorMsg.SetText(content_.error);
  if (!content_.moreOfError.empty()) ErrorMsg.Lines.Add(content_.moreOfError);
  PlaceColumns();
  ConflictsOnly.SetEnabled(conflictCol_ != kNoColumn);
  ChangedOnly.SetEnabled(modifiedCol_ != kNoColumn);
  OfferChoices();
  constexpr int kRoomAroundText = 7;
  UpdateData.SetDefaultRowHeight(UserInterface().TextHeight("SWgjp") + kRoomAroundText);
}

void TUpdateErrorForm::BuildRows() {
  for (int i = 0; i < content_.dataSet->FieldCount(); ++i) {
    TField& field = content_.dataSet->Fields(i);
    if (field.FieldKind() != TFieldKind::fkData) continue;
    TErrorFieldRow row;
    row.Field = &field;
    row.NewValue = ErrorValueText(field.NewValue(), field);
    row.OldValue = ErrorValueText(field.OldValue(), field);
    row.CurrentValue = ErrorValueText(field.CurValue(), field);
    rows_.push_back(std::move(row));
  }
}

void TUpdateErrorForm::PlaceColumns() {
  const bool conflicts = std::ranges::any_of(
      rows_, [](const TErrorFieldRow& row) { return row.CurrentValue != kUnchanged; });
  int count = 1;
  if (content_.kind == TUpdateKind::ukDelete) {
    originalCol_ = count++;
  } else {
    modifiedCol_ = count++;
  }
  if (conflicts) conflictCol_ = count++;
  if (content_.kind == TUpdateKind::ukModify) originalCol_ = count++;
  UpdateData.SetColCount(count);
}

void TUpdateErrorForm::OfferChoices() {
  for (const TErrorChoice& choice : choices_) {
    if (!choice.needsConflict || conflictCol_ != kNoColumn) {
      ActionGroup.AddItem(choice.text, choice.action);
    }
  }
  ActionGroup.SetItemIndex(0);
}

const TErrorChoice& TUpdateErrorForm::Choice() const {
  const int index = ActionGroup.ItemIndex();
  if (index < 0) return choices_.front();
  const int action = ActionGroup.ItemValue(index);
  return *std::ranges::find(choices_, action, &TErrorChoice::action);
}

// --- The grid

bool TUpdateErrorForm::IsHidden(const TErrorFieldRow& row) const {
  return (ConflictsOnly.Checked() && row.CurrentValue == kUnchanged) ||
         (ChangedOnly.Checked() && row.NewValue == kUnchanged);
}

bool TUpdateErrorForm::MayType(int col) const {
  return modifiedCol_ != kNoColumn && col == modifiedCol_ &&
         Choice().modified == TErrorChoice::Shown::EditValue;
}

void TUpdateErrorForm::DisplayFieldValues() {
  if (content_.dataSet == nullptr) return;
  UpdateData.Clear();
  UpdateData.SetRowCount(2);
  PutHeadings();
  UpdateData.SetCells(0, 1, "<No Records>");
  int at = 1;
  for (TErrorFieldRow& row : rows_) {
    if (IsHidden(row)) continue;
    UpdateData.SetRowCount(std::max(at + 1, UpdateData.RowCount()));
    PutRow(at++, row);
  }
  ShareWidth();
  UpdateData.Options.goEditing = MayType(UpdateData.Col());
}

void TUpdateErrorForm::PutHeadings() {
  UpdateData.SetCells(0, 0, "Field Name");
  if (modifiedCol_ != kNoColumn)
    UpdateData.SetCells(modifiedCol_, 0, UpdateType.Caption() + " Value");
  if (conflictCol_ != kNoColumn) UpdateData.SetCells(conflictCol_, 0, "Conflicting Value");
  if (originalCol_ != kNoColumn) UpdateData.SetCells(originalCol_, 0, "Original Value");
}

std::string_view TUpdateErrorForm::ShownModified(const TErrorFieldRow& row) const {
  switch (Choice().modified) {
    case TErrorChoice::Shown::EditValue:
      return row.Edited ? row.EditValue : row.NewValue;
    case TErrorChoice::Shown::Unchanged:
      return kUnchanged;
    case TErrorChoice::Shown::NewValue:
      break;
  }
  return row.NewValue;
}

void TUpdateErrorForm::PutRow(int at, TErrorFieldRow& row) {
  UpdateData.SetCells(0, at, row.Field->DisplayName());
  if (modifiedCol_ != kNoColumn) {
    UpdateData.SetCells(modifiedCol_, at, ShownModified(row));
    UpdateData.SetObjects(modifiedCol_, at, &row);
  }
  if (conflictCol_ != kNoColumn) UpdateData.SetCells(conflictCol_, at, row.CurrentValue);
  if (originalCol_ != kNoColumn) {
    const bool server = Choice().originalIsServer && row.CurrentValue != kUnchanged;
    UpdateData.SetCells(originalCol_, at, server ? row.CurrentValue : row.OldValue);
  }
}

void TUpdateErrorForm::ShareWidth() {
  const int columns = UpdateData.ColCount() - 1;
  const int width = (UpdateData.ClientWidth() - UpdateData.ColWidths(0)) / columns - 1;
  for (int col = 1; col <= columns; ++col) UpdateData.SetColWidths(col, width);
}

// --- The answer

bool TUpdateErrorForm::Ask() {
  if (ShowModal() != mrOk) return false;
  WriteEdits();  // also where OK was given without its button
  return true;
}

// Written rows count as edited no more. A field that refuses its text gets all of them their
// earlier values back, so that the user may type another text, or cancel with the record as it was.
void TUpdateErrorForm::WriteEdits() {
  if (Choice().modified != TErrorChoice::Shown::EditValue) return;
  std::vector<std::pair<TField*, Variant>> earlier;
  try {
    for (const TErrorFieldRow& row : rows_) {
      if (!row.Edited) continue;
      earlier.emplace_back(row.Field, row.Field->Value());
      StoreTyped(*row.Field, row.EditValue);
    }
  } catch (...) {
    if (!earlier.empty()) earlier.pop_back();
    for (const auto& [field, value] : earlier) field->SetValue(value);
    throw;
  }
  for (TErrorFieldRow& row : rows_) row.Edited = false;
}

}  // namespace kvshare
