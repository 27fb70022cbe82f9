#include "kvshare/ui/stdcontrols.h"

#include <algorithm>
#include <cstddef>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/lines.h"

namespace kvshare {

namespace {

bool TakeFocus(TWinControl& control) {
  if (!control.CanFocus()) return false;
  if (control.Parent() != nullptr) control.Parent()->SetActiveControl(&control);
  return true;
}

}  // namespace

int TMemoLines::Count() const {
  int count = 0;
  for (std::string_view rest = text_; !rest.empty(); TakeLine(rest)) ++count;
  return count;
}

std::string TMemoLines::operator[](int index) const {
  int at = 0;
  for (std::string_view rest = text_; !rest.empty(); ++at) {
    const std::string_view line = TakeLine(rest);
    if (at == index) return std::string(line);
  }
  throw EStringListError("List index out of bounds (" + std::to_string(index) + ")");
}

void TMemoLines::Add(std::string_view line) {
  const std::string added(line);  // `line` may lie in the text
  if (!text_.empty() && !text_.ends_with('\n') && !text_.ends_with('\r')) text_ += "\r\n";
  text_ += added;
}

bool TMemo::TypeText(std::string_view text) {
  return EditText(Text() + std::string(text));
}

bool TMemo::EditText(std::string_view text) {
  if (ReadOnly || !TakeFocus(*this)) return false;
  SetText(text);
  if (OnChange) OnChange();
  return true;
}

void TEdit::SetText(std::string_view text) {
  if (text == text_) return;
  text_ = std::string(text);
  Changed();
  if (OnChange) OnChange();
}

bool TEdit::TypeText(std::string_view text) {
  if (ReadOnly || !TakeFocus(*this)) return false;
  std::string typed(text);
  std::erase_if(typed, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
  if (MaxLength > 0) typed.resize(std::min(typed.size(), static_cast<std::size_t>(MaxLength)));
  SetText(typed);
  return true;
}

int TRadioGroup::AddItem(std::string_view text, int value) {
  values_.push_back(value);
  return items_.Add(text);
}

void TRadioGroup::ClearItems() {
  items_.Clear();
  values_.clear();
  itemIndex_ = -1;
}

int TRadioGroup::ItemValue(int index) const {
  items_.Objects(index);  // the error of a bad index
  return values_[static_cast<std::size_t>(index)];
}

void TRadioGroup::SetItemIndex(int index) {
  index = std::clamp(index, -1, items_.Count() - 1);
  if (index == itemIndex_) return;
  itemIndex_ = index;
  Changed();
  if (index >= 0 && OnClick) OnClick();
}

bool TRadioGroup::Choose(int index) {
  if (index < 0 || index >= items_.Count() || !TakeFocus(*this)) return false;
  SetItemIndex(index);
  return true;
}

void TCheckBox::SetChecked(bool checked) {
  if (checked == checked_) return;
  checked_ = checked;
  Changed();
  if (OnClick) OnClick();
}

bool TCheckBox::Click() {
  if (!TakeFocus(*this)) return false;
  SetChecked(!checked_);
  return true;
}

bool TButton::Click() {
  if (!CanFocus()) return false;
  if (Parent() != nullptr) Parent()->ModalResult = ModalResult;
  if (OnClick) OnClick();
  return true;
}

}  // namespace kvshare
