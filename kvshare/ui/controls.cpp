#include "kvshare/ui/controls.h"

#include <algorithm>

namespace kvshare {

TControl::TControl(TComponent* owner, std::string_view name)
    : TControl(owner, name, dynamic_cast<TForm*>(owner)) {}

TControl::TControl(TComponent* owner, std::string_view name, TForm* parent)
    : TComponent(owner, name), parent_(parent) {
  if (parent_ == nullptr) return;
  parent_->controls_.push_back(this);
  if (parent_->window_) parent_->window_->ControlsChanged();
}

TControl::~TControl() {
  if (parent_ != nullptr) parent_->Remove(*this);
}

void TControl::Changed() const {
  const auto* form = parent_ != nullptr ? parent_ : dynamic_cast<const TForm*>(this);
  if (form != nullptr && form->window_) form->window_->ControlChanged(*this);
}

void TControl::SetLeft(int left) {
  TBounds bounds = bounds_;
  bounds.Left = left;
  SetBounds(bounds);
}

void TControl::SetTop(int top) {
  TBounds bounds = bounds_;
  bounds.Top = top;
  SetBounds(bounds);
}

void TControl::SetWidth(int width) {
  TBounds bounds = bounds_;
  bounds.Width = width;
  SetBounds(bounds);
}

void TControl::SetHeight(int height) {
  TBounds bounds = bounds_;
  bounds.Height = height;
  SetBounds(bounds);
}

TWinControl::TWinControl(TComponent* owner, std::string_view name) : TControl(owner, name) {
  if (Parent() == nullptr) return;
  for (const TWinControl* other : Parent()->TabList()) {
    if (other != this) TabOrder = std::max(TabOrder, other->TabOrder + 1);
  }
}

void TWinControl::SetClientWidth(int width) {
  askedClientWidth_ = width;
  SetWidth(width + frame_.Width);
}

void TWinControl::SetClientHeight(int height) {
  askedClientHeight_ = height;
  SetHeight(height + frame_.Height);
}

bool TWinControl::CanFocus() const {
  return Visible() && Enabled() && (Parent() == nullptr || Parent()->CanFocus());
}

}  // namespace kvshare
