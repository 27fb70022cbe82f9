// Forms and controls as models: a back end with windows follows them, a test drives them without a
// display. Captions and texts are code page 874. Handlers run inside the call that causes them;
// what they throw reaches the caller. What a user does is a method that answers whether the control
// took it: a disabled or hidden one takes nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/ui/formwindow.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

class TButton;
class TForm;

using TNotifyEvent = std::function<void()>;

// Pixels, as everything here.
struct TSize {
  int Width = 0;
  int Height = 0;
  bool operator==(const TSize&) const = default;
};

struct TBounds {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool operator==(const TBounds&) const = default;
};

class KVSHARE_API TControl : public TComponent {
 public:
  // A control whose owner is a form is shown by it, until either is destroyed.
  explicit TControl(TComponent* owner, std::string_view name = "");
  ~TControl() override;
  TControl(const TControl&) = delete;
  TControl& operator=(const TControl&) = delete;

  TForm* Parent() const { return parent_; }  // the form that shows it, nullptr for none

  int Left() const { return bounds_.Left; }
  int Top() const { return bounds_.Top; }
  int Width() const { return bounds_.Width; }
  int Height() const { return bounds_.Height; }
  void SetLeft(int left);
  void SetTop(int top);
  void SetWidth(int width);
  void SetHeight(int height);

  const TBounds& Bounds() const { return bounds_; }
  // Any integers; a window follows.
  void SetBounds(const TBounds& bounds) { Set(bounds_, bounds); }

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Set(visible_, visible); }
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Set(enabled_, enabled); }
  const std::string& Caption() const { return caption_; }
  void SetCaption(std::string_view caption) { Set(caption_, std::string(caption)); }

 protected:
  TControl(TComponent* owner, std::string_view name, TForm* parent);

  // Tells the window of the form, where there is one.
  void Changed() const;

  template <typename T>
  void Set(T& member, T value) {
    if (member == value) return;
    member = std::move(value);
    Changed();
  }

 private:
  friend class TForm;
  TForm* parent_;
  TBounds bounds_;
  std::string caption_;
  bool visible_ = true;
  bool enabled_ = true;
};

// A control that can hold others and have the keyboard.
class KVSHARE_API TWinControl : public TControl {
 public:
  explicit TWinControl(TComponent* owner, std::string_view name = "");

  // Visible and enabled, and so is the form.
  bool CanFocus() const;

  // The place among the form's controls that Tab walks, lowest first; equal ones as they were made.
  // At first after all that the form has already.
  int TabOrder = 0;

  // The size without the frame: title, borders, scroll bars. Those take nothing until a back end
  // with windows tells it; a frame leaves the bounds as they are.
  int ClientWidth() const { return Width() - frame_.Width; }
  int ClientHeight() const { return Height() - frame_.Height; }
  void SetClientWidth(int width);
  void SetClientHeight(int height);
  virtual void SetFrame(TSize frame) { frame_ = frame; }

 protected:
  using TControl::TControl;

  // Whether the inner size is the one that was asked for, and not what the bounds have left.
  bool HasAskedClientWidth() const { return askedClientWidth_ == ClientWidth(); }
  bool HasAskedClientHeight() const { return askedClientHeight_ == ClientHeight(); }

 private:
  TSize frame_;
  std::optional<int> askedClientWidth_;
  std::optional<int> askedClientHeight_;
};

enum class TWindowState : std::uint8_t { wsNormal, wsMinimized, wsMaximized };
using enum TWindowState;

enum class TFormBorderStyle : std::uint8_t {
  bsNone,
  bsSingle,
  bsSizeable,
  bsDialog,  // the fixed one
  bsToolWindow,
  bsSizeToolWin,
};
using enum TFormBorderStyle;

enum class TPosition : std::uint8_t {
  poDesigned,      // where its bounds are
  poScreenCenter,  // in the middle of the screen at each show
};
using enum TPosition;

class KVSHARE_API TForm : public TWinControl {
 public:
  explicit TForm(TComponent* owner, std::string_view name = "");
  ~TForm() override;

  // As they were made.
  const std::vector<TControl*>& Controls() const { return controls_; }
  // Those that can have the keyboard at times, in the order in which Tab walks them.
  std::vector<TWinControl*> TabList() const;

  TWindowState WindowState() const { return state_; }
  // Without a window a maximised form has the work area of the back end's screen, and comes back to
  // the bounds that it had before. A window does the same by itself.
  void SetWindowState(TWindowState state);
  // The bounds to which a form that was maximised without a window comes back, else Bounds().
  const TBounds& NormalBounds() const { return normalBounds_ ? *normalBounds_ : Bounds(); }

  // The bounds are with the frame, and stay; an inner size that SetClientWidth or SetClientHeight
  // asked for stays instead, and the bounds follow.
  void SetFrame(TSize frame) override;

  TFormBorderStyle BorderStyle = TFormBorderStyle::bsSizeable;
  TPosition Position = TPosition::poDesigned;

  TNotifyEvent OnCreate;
  TNotifyEvent OnShow;
  TNotifyEvent OnHide;  // when Hide, Close or the user ends what Show began

  // Runs OnCreate, once: for whoever has made the form. ShowModal does it where nobody has.
  void Create();

  // An mr value ends ShowModal.
  int ModalResult = mrNone;

  // Shows the form until ModalResult is not mrNone, and returns it. It is mrNone when OnShow runs;
  // a form whose OnShow sets it is not shown. The keyboard is where ActiveControl says, else with
  // the first control that can have it. Not for a form that is shown already.
  int ShowModal();

  // Shows the form and returns, and the program goes on: TApplication::ProcessMessages and Run let
  // the user work with it. Without windows that is a form nobody sees. Nothing happens to one that
  // is shown already.
  void Show();
  void Hide();
  bool Showing() const { return showing_; }

  // The back end's window while there is one; it has the form's bounds as long as it lives. A form
  // that nobody shows may get one by the back end's PrepareForm.
  TFormWindow* Window() const { return window_.get(); }
  void SetWindow(std::unique_ptr<TFormWindow> window);

  // The control that has the keyboard, nullptr for none. One that cannot have it, or that another
  // form shows, is not taken.
  TWinControl* ActiveControl() const { return active_; }
  void SetActiveControl(TWinControl* control);

  // The button that Enter clicks and the button that Esc clicks: the first one that can be clicked,
  // else the first one, else nullptr.
  TButton* DefaultButton() const;
  TButton* CancelButton() const;

  // The user's keys. Enter clicks the button that has the keyboard, else the default one; in a memo
  // that can be written it starts a line. Esc clicks the cancel button; without one it closes the
  // form. Tab goes to the next control that can have the keyboard, from the last to the first.
  bool PressEnter();
  bool PressEsc();
  bool MoveTab(bool back = false);
  // The close box: mrCancel, and a form that Show has shown is hidden.
  void Close();

  // Answers for a user who is not there: Esc, and the close box if the form stays. ModalResult is
  // set afterwards.
  void Dismiss();

 private:
  friend class TControl;
  void Remove(const TControl& control);
  void FollowWindowState(TWindowState state);
  TButton* FirstButton(bool TButton::*role) const;
  void CenterOn(TSize screen);
  void Prepare();

  std::vector<TControl*> controls_;
  TWinControl* active_ = nullptr;
  TWindowState state_ = TWindowState::wsNormal;
  std::optional<TBounds> normalBounds_;
  bool created_ = false;
  bool showing_ = false;
  std::unique_ptr<TFormWindow> window_;
};

}  // namespace kvshare
