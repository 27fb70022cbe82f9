// A back end's window of a form.
#pragma once

#include <cstdint>

#include "kvshare/export.h"

namespace kvshare {

class TControl;

// Made by a back end with windows, owned by the form (TForm::SetWindow), and destroyed before it.
class KVSHARE_API TFormWindow {
 public:
  TFormWindow() = default;
  virtual ~TFormWindow() = default;
  TFormWindow(const TFormWindow&) = delete;
  TFormWindow& operator=(const TFormWindow&) = delete;

  // The form itself or a control on it has other bounds, texts or states. Other members of controls
  // may change unsaid: a window looks at all of them after each event and in ProcessMessages.
  virtual void ControlChanged(const TControl& control) = 0;
  // A control came or goes: called in its destructor, so that only its address counts.
  virtual void ControlsChanged() = 0;

  // Without waiting for the user.
  virtual void Show() = 0;
  virtual void Hide() = 0;

  // The system's own number of the window, 0 for none.
  virtual std::uintptr_t Handle() const = 0;
};

}  // namespace kvshare
