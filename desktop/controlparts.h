// The widgets that stand for a form's controls.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "kvshare/ui/controls.h"

namespace kvshare::desktop {

// Where the widgets bring what a user does.
class FormEvents {
 public:
  virtual ~FormEvents() = default;
  virtual void Do(const std::function<void()>& action) = 0;
  virtual void Refresh() = 0;
};

// Destroys a widget once its own events have ended, since one of them may be what destroys it.
struct DestroyLater {
  void operator()(QWidget* widget) const;
};
template <typename Widget>
using WidgetPtr = std::unique_ptr<Widget, DestroyLater>;

template <typename Widget, typename... Arguments>
WidgetPtr<Widget> MakeWidget(Arguments&&... arguments) {
  return WidgetPtr<Widget>(
      std::make_unique<Widget>(std::forward<Arguments>(arguments)...).release());
}

class ControlPart {
 public:
  explicit ControlPart(TControl& control) : model_(control) {}
  virtual ~ControlPart() = default;
  ControlPart(const ControlPart&) = delete;
  ControlPart& operator=(const ControlPart&) = delete;

  TControl& Model() const { return model_; }
  virtual QWidget& Widget() const = 0;
  // Those that can have the keyboard, in the order in which Tab walks them.
  virtual std::vector<QWidget*> Stops() const { return {&Widget()}; }
  // What takes the keyboard when the control is to have it.
  virtual QWidget& FocusWidget() const { return Widget(); }

  // Makes the widget what the control says.
  void Refresh();
  // A text that is being typed becomes the control's.
  virtual void Commit() {}
  // How much of the bounds is no client area.
  virtual TSize Frame() const { return {}; }

 protected:
  virtual void RefreshContent() {}
  // Where the widget stands, once it has its content.
  virtual QRect Place() const;

 private:
  TControl& model_;
};

// The part for a control on the window; nullptr for a kind that is not shown.
std::unique_ptr<ControlPart> MakePart(TControl& control, QWidget& window, FormEvents& events);

// What a screen reader calls a control without a caption: the label beside or above it, else its
// name in words.
QString SpokenName(const TControl& control);

}  // namespace kvshare::desktop
