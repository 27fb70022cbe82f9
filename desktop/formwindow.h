// A form of the library as a window.
#pragma once

#include <QEventLoop>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/controlparts.h"
#include "kvshare/ui/controls.h"
#include "kvshare/ui/formwindow.h"

namespace kvshare::desktop {

// The form says what is shown; the window brings it what the user does, and looks at the form again
// after each event. Sizes are pixels of an unscaled screen, places count from the main screen's top
// left.
class FormWindow final : public TFormWindow, public FormEvents {
 public:
  explicit FormWindow(TForm& form);
  ~FormWindow() override;

  void ControlChanged(const TControl& control) override;
  void ControlsChanged() override;
  void Show() override;
  void Hide() override;
  std::uintptr_t Handle() const override;

  // Shows the form over its owner until ModalResult is not mrNone.
  void RunModal();

  // Does what a user does, and then shows what the form has become.
  void Do(const std::function<void()>& action) override;
  void Refresh() override;

  // What title and borders take, as far as the system has reported it.
  TSize FrameSize() const;

  QWidget& Widget() const;

  // The form's window that the widget is, nullptr for another.
  static FormWindow* Of(QWidget& widget);

 private:
  class Frame;

  void BuildParts();
  void DropParts();
  void ChainTabs();
  void PutFocus();
  void TakeFocus();
  void FollowForm();
  void TakeBounds();
  void TakeFrame(TWindowState state);
  void SetInnerSize(QSize size);
  void CenterOnScreen();
  void KeepOnScreens();
  void RefreshLater();

  TForm& form_;
  std::unique_ptr<Frame> frame_;
  std::vector<std::unique_ptr<ControlPart>> parts_;
  QTimer soon_;  // a look at the form that is due
  TSize frameSize_;
  // The form's bounds while the window was normal and its frame unknown: the window's inner size is
  // too large by the frame.
  std::optional<TBounds> unframed_;
  bool stale_ = true;    // the parts do not match the form's controls
  bool moving_ = false;  // the window is made to follow the form, or the form the window
  bool refreshing_ = false;
  QEventLoop* loop_ = nullptr;  // of RunModal
};

}  // namespace kvshare::desktop
