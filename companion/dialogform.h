// What the dialogs have in common: a fixed window in the middle of the screen, OK and Cancel.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/ui/controls.h"
#include "kvshare/ui/stdcontrols.h"

namespace kvshare::companion {

// Gives a control its caption and its place.
void Place(TControl& control, std::string_view caption, const TBounds& bounds);

class DialogForm : public TForm {
 public:
  // Whether the user pressed OK.
  bool Ask() { return ShowModal() == mrOk; }

 protected:
  static constexpr int kMargin = 12;

  DialogForm(std::string_view name, std::string_view caption, TSize client);

  // Puts both buttons at the lower right corner and behind all that is there in the order of Tab.
  void PlaceButtons(std::string_view okCaption);
  void PlaceButtons();

  // For an OK whose form cannot be taken as it is: tells why, and the form stays.
  void Refuse(std::string_view why, TWinControl& at);
  void Stay() { ModalResult = mrNone; }

  TButton OKBtn{this, "OKBtn"};
  TButton CancelBtn{this, "CancelBtn"};
};

}  // namespace kvshare::companion
