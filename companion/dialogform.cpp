#include "companion/dialogform.h"

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/messages.h"

namespace kvshare::companion {

void Place(TControl& control, std::string_view caption, const TBounds& bounds) {
  control.SetCaption(caption);
  control.SetBounds(bounds);
}

DialogForm::DialogForm(std::string_view name, std::string_view caption, TSize client)
    : TForm(nullptr, name) {
  SetCaption(caption);
  BorderStyle = TFormBorderStyle::bsDialog;
  Position = TPosition::poScreenCenter;
  SetClientWidth(client.Width);
  SetClientHeight(client.Height);
  OKBtn.Default = true;
  OKBtn.ModalResult = mrOk;
  CancelBtn.Cancel = true;
  CancelBtn.ModalResult = mrCancel;
}

void DialogForm::PlaceButtons() {
  PlaceButtons("ตกลง"_th);
}

void DialogForm::PlaceButtons(std::string_view okCaption) {
  constexpr TSize kButton{75, 25};
  constexpr int kGap = 8;
  const int top = ClientHeight() - kMargin - kButton.Height;
  const int left = ClientWidth() - kMargin - kButton.Width;
  Place(OKBtn, okCaption, {left - kGap - kButton.Width, top, kButton.Width, kButton.Height});
  Place(CancelBtn, "ยกเลิก"_th, {left, top, kButton.Width, kButton.Height});
  OKBtn.TabOrder = TabList().back()->TabOrder + 1;
  CancelBtn.TabOrder = OKBtn.TabOrder + 1;
}

void DialogForm::Refuse(std::string_view why, TWinControl& at) {
  Stay();
  SetActiveControl(&at);
  MessageDlg(why, TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
}

}  // namespace kvshare::companion
