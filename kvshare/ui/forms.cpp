// A form: its controls, its place, and being shown.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "kvshare/ui/application.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/controls.h"
#include "kvshare/ui/stdcontrols.h"

namespace kvshare {

TForm::TForm(TComponent* owner, std::string_view name) : TWinControl(owner, name, nullptr) {}

TForm::~TForm() {
  window_.reset();
  if (Application.MainForm == this) Application.MainForm = nullptr;
  for (TControl* control : controls_) control->parent_ = nullptr;
}

void TForm::Remove(const TControl& control) {
  std::erase(controls_, &control);
  if (active_ == &control) active_ = nullptr;
  if (window_) window_->ControlsChanged();
}

std::vector<TWinControl*> TForm::TabList() const {
  std::vector<TWinControl*> list;
  for (TControl* control : controls_) {
    if (auto* with = dynamic_cast<TWinControl*>(control)) list.push_back(with);
  }
  std::ranges::stable_sort(list, {}, &TWinControl::TabOrder);
  return list;
}

void TForm::SetFrame(TSize frame) {
  TBounds bounds = Bounds();
  if (HasAskedClientWidth()) bounds.Width = ClientWidth() + frame.Width;
  if (HasAskedClientHeight()) bounds.Height = ClientHeight() + frame.Height;
  TWinControl::SetFrame(frame);
  SetBounds(bounds);
}

void TForm::SetWindowState(TWindowState state) {
  if (state_ != state && window_ == nullptr) FollowWindowState(state);
  Set(state_, state);
}

void TForm::FollowWindowState(TWindowState state) {
  if (state == TWindowState::wsMaximized) {
    const TBounds workArea = UserInterface().WorkArea();
    if (workArea.Width == 0) return;
    if (!normalBounds_) normalBounds_ = Bounds();
    SetBounds(workArea);
  } else if (state == TWindowState::wsNormal && normalBounds_) {
    SetBounds(*std::exchange(normalBounds_, std::nullopt));
  }
}

void TForm::CenterOn(TSize screen) {
  TBounds bounds = Bounds();
  bounds.Left = std::max(0, (screen.Width - bounds.Width) / 2);
  bounds.Top = std::max(0, (screen.Height - bounds.Height) / 2);
  SetBounds(bounds);
}

void TForm::Create() {
  if (created_) return;
  created_ = true;
  if (OnCreate) OnCreate();
}

void TForm::Prepare() {
  TUserInterface& backEnd = UserInterface();
  Create();
  backEnd.PrepareForm(*this);
  if (Position == TPosition::poScreenCenter) CenterOn(backEnd.ScreenSize());
  ModalResult = mrNone;
  if (active_ == nullptr || !active_->CanFocus()) MoveTab();
  if (OnShow) OnShow();
}

int TForm::ShowModal() {
  Prepare();
  return ModalResult != mrNone ? ModalResult : UserInterface().ShowModalForm(*this);
}

void TForm::Show() {
  if (showing_) return;
  Prepare();
  showing_ = true;
  if (window_) window_->Show();
}

void TForm::Hide() {
  if (!showing_) return;
  showing_ = false;
  if (window_) window_->Hide();
  if (OnHide) OnHide();
}

void TForm::SetWindow(std::unique_ptr<TFormWindow> window) {
  window_ = std::move(window);
}

void TForm::SetActiveControl(TWinControl* control) {
  if (control == nullptr || (control->Parent() == this && control->CanFocus())) active_ = control;
}

TButton* TForm::FirstButton(bool TButton::*role) const {
  TButton* first = nullptr;
  for (TControl* control : controls_) {
    auto* button = dynamic_cast<TButton*>(control);
    if (button == nullptr || !(button->*role)) continue;
    if (button->CanFocus()) return button;
    if (first == nullptr) first = button;
  }
  return first;
}

TButton* TForm::DefaultButton() const {
  return FirstButton(&TButton::Default);
}

TButton* TForm::CancelButton() const {
  return FirstButton(&TButton::Cancel);
}

bool TForm::PressEnter() {
  if (active_ != nullptr && active_->CanFocus()) {
    if (auto* memo = dynamic_cast<TMemo*>(active_); memo != nullptr && !memo->ReadOnly) {
      return memo->TypeText("\r\n");
    }
    if (auto* button = dynamic_cast<TButton*>(active_)) return button->Click();
  }
  TButton* button = DefaultButton();
  return button != nullptr && button->Click();
}

bool TForm::PressEsc() {
  if (TButton* button = CancelButton()) return button->Click();
  Close();
  return true;
}

bool TForm::MoveTab(bool back) {
  std::vector<TWinControl*> list = TabList();
  if (back) std::ranges::reverse(list);
  // Walked from behind the active control once around; without one, from the first.
  const auto active = std::ranges::find(list, active_);
  if (active != list.end()) std::rotate(list.begin(), active + 1, list.end());
  const auto next = std::ranges::find_if(list, &TWinControl::CanFocus);
  if (next == list.end()) return false;
  active_ = *next;
  return true;
}

void TForm::Close() {
  ModalResult = mrCancel;
  Hide();
}

void TForm::Dismiss() {
  PressEsc();
  if (ModalResult == mrNone) Close();
}

}  // namespace kvshare
