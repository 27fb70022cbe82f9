#include "apps/kvshare/data/recordform.h"

#include <algorithm>
#include <climits>
#include <cstddef>

namespace kvshare::app {

namespace {

// Pixels of the design.
constexpr int kEdge = 12;
constexpr int kLabelWidth = 130;
constexpr int kEditWidth = 270;
constexpr int kColumnWidth = kLabelWidth + kEditWidth + 2 * kEdge;
constexpr int kLineHeight = 28;
constexpr int kEditHeight = 22;
constexpr int kLinesInColumn = 20;  // a further column stands beside it

// A text of several lines needs the room of three.
constexpr int kLinesOfMemo = 3;

}  // namespace

RecordForm::RecordForm(TableRecord& record) : TForm(nullptr, "RecordForm"), record_(record) {
  SetCaption(record.Title());
  BorderStyle = TFormBorderStyle::bsDialog;
  Position = TPosition::poScreenCenter;
  TClientDataSet& set = record.Set();
  lines_.reserve(static_cast<std::size_t>(set.FieldCount()));
  for (int i = 0; i < set.FieldCount(); ++i) AddLine(set.Fields(i));
  PlaceButtons();
}

// Where the next control of so many lines stands: whole in one column.
TBounds RecordForm::Place(int lines) {
  if (used_ % kLinesInColumn + lines > kLinesInColumn) {
    used_ = (used_ / kLinesInColumn + 1) * kLinesInColumn;
  }
  const int left = kEdge + used_ / kLinesInColumn * kColumnWidth;
  const int top = kEdge + used_ % kLinesInColumn * kLineHeight;
  used_ += lines;
  return {left + kLabelWidth, top, kEditWidth, (lines - 1) * kLineHeight + kEditHeight};
}

void RecordForm::AddLine(TField& field) {
  const bool shownOnly = !IsTypable(field) || (record_.IsKey(field) && !field.IsNull());
  const std::string text = IsTypable(field) ? field.Text() : ShownValue(field, field.Value());
  const bool isMemo =
      field.DataType() == TFieldType::ftMemo && text.find('\n') != std::string::npos;
  const TBounds bounds = Place(isMemo ? kLinesOfMemo : 1);

  Line& line = lines_.emplace_back();
  line.field = &field;
  line.before = text;
  line.label = std::make_unique<TLabel>(this, field.FieldName() + "Label");
  line.label->SetCaption(field.DisplayLabel());
  line.label->SetBounds({bounds.Left - kLabelWidth, bounds.Top + 4, kLabelWidth - kEdge, 14});
  if (isMemo) {
    line.memo = std::make_unique<TMemo>(this, field.FieldName());
    line.memo->SetText(text);
    line.memo->ReadOnly = shownOnly;
    line.memo->SetBounds(bounds);
  } else {
    line.edit = std::make_unique<TEdit>(this, field.FieldName());
    line.edit->SetText(text);
    line.edit->ReadOnly = shownOnly;
    line.edit->SetBounds(bounds);
  }
  if (!shownOnly && ActiveControl() == nullptr) SetActiveControl(ControlOf(field.FieldName()));
}

void RecordForm::PlaceButtons() {
  constexpr int kWidth = 75;
  constexpr int kHeight = 25;
  const int columns = std::max(1, (used_ + kLinesInColumn - 1) / kLinesInColumn);
  const int top = 2 * kEdge + std::min(used_, kLinesInColumn) * kLineHeight;
  SetClientWidth(columns * kColumnWidth);
  SetClientHeight(top + kHeight + kEdge);
  ok_.SetCaption("OK");
  ok_.SetBounds({ClientWidth() - 2 * (kWidth + kEdge), top, kWidth, kHeight});
  ok_.Default = true;
  ok_.ModalResult = mrOk;
  ok_.OnClick = [this] { Store(); };
  ok_.TabOrder = INT_MAX - 1;  // behind all lines
  cancel_.SetCaption("Cancel");
  cancel_.SetBounds({ClientWidth() - kWidth - kEdge, top, kWidth, kHeight});
  cancel_.Cancel = true;
  cancel_.ModalResult = mrCancel;
  cancel_.TabOrder = INT_MAX;
}

TWinControl* RecordForm::ControlOf(std::string_view field) const {
  const auto found = std::ranges::find_if(Controls(), [field](const TControl* control) {
    return dynamic_cast<const TWinControl*>(control) != nullptr && control->Name() == field;
  });
  return found == Controls().end() ? nullptr : dynamic_cast<TWinControl*>(*found);
}

void RecordForm::Store() {
  for (const Line& line : lines_) {
    if (line.Text() == line.before) continue;
    SetActiveControl(ControlOf(line.field->FieldName()));  // where the error is, if there is one
    StoreLine(*line.field, line.Text());
  }
  record_.Set().Post();
}

bool RecordForm::Edit() {
  return ShowModal() == mrOk;
}

}  // namespace kvshare::app
