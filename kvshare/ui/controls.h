// Forms and controls as models: a back end with windows follows them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

struct TBounds {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool operator==(const TBounds&) const = default;
};

class KVSHARE_API TControl : public TComponent {
 public:
  using TComponent::TComponent;

  int Left() const { return bounds_.Left; }
  int Top() const { return bounds_.Top; }
  int Width() const { return bounds_.Width; }
  int Height() const { return bounds_.Height; }
  void SetLeft(int left);
  void SetTop(int top);
  void SetWidth(int width);
  void SetHeight(int height);

  const TBounds& Bounds() const { return bounds_; }
  // A back end moves its window here. Any integers.
  virtual void SetBounds(const TBounds& bounds) { bounds_ = bounds; }

  bool Visible() const { return visible_; }
  virtual void SetVisible(bool visible) { visible_ = visible; }

 private:
  TBounds bounds_;
  bool visible_ = true;
};

// A control that can hold others and have the keyboard.
class KVSHARE_API TWinControl : public TControl {
 public:
  using TControl::TControl;
};

enum class TWindowState : std::uint8_t { wsNormal, wsMinimized, wsMaximized };

enum class TFormBorderStyle : std::uint8_t {
  bsNone,
  bsSingle,
  bsSizeable,
  bsDialog,  // the fixed one
  bsToolWindow,
  bsSizeToolWin,
};

class KVSHARE_API TForm : public TWinControl {
 public:
  using TWinControl::TWinControl;

  TWindowState WindowState() const { return state_; }
  virtual void SetWindowState(TWindowState state) { state_ = state; }

  TFormBorderStyle BorderStyle = TFormBorderStyle::bsSizeable;

 private:
  TWindowState state_ = TWindowState::wsNormal;
};

}  // namespace kvshare
