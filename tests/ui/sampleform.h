// A dialog of every control: an entry that a user may post as it is, or correct.
#pragma once

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare {

class SampleForm : public TForm {
 public:
  enum Action { Skip = 3, Correct = 7 };

  SampleForm() : TForm(nullptr, "SampleForm") {
    SetCaption("ใบสำคัญ"_th);
    SetClientWidth(400);
    SetClientHeight(300);
    Place(kind, "Type:", 10, 5);
    Place(type, "Modified", 60, 5);
    Place(reason, "Error:", 10, 25);
    Place(message, "", 10, 40);
    Place(actions, " Action ", 300, 10);
    Place(grid, "", 10, 120);
    Place(changed, "Only changed", 10, 230);
    Place(ok, "OK", 200, 260);
    Place(cancel, "Cancel", 290, 260);
    message.SetText("ยอดไม่เท่ากัน"_th);
    message.Lines.Add("debit 10.00");
    message.ReadOnly = true;
    actions.AddItem("Skip", Skip);
    actions.AddItem("Correct", Correct);
    ok.Default = cancel.Cancel = true;
    ok.ModalResult = mrOk;
    cancel.ModalResult = mrCancel;
    FillGrid();
  }

  TLabel kind{this}, type{this}, reason{this};
  TImage icon{this};
  TMemo message{this, "Message"};
  TRadioGroup actions{this, "Actions"};
  TStringGrid grid{this, "Grid"};
  TCheckBox changed{this, "Changed"};
  TButton ok{this, "OK"}, cancel{this, "Cancel"};

 private:
  static void Place(TControl& control, std::string_view caption, int left, int top) {
    control.SetCaption(caption);
    control.SetBounds({left, top, 80, 20});
  }

  // The new values may be typed over while Correct is chosen.
  void FillGrid() {
    constexpr std::string_view kCells[][3] = {
        {"Field", "New Value", "Old Value"}, {"NAME", "น้ำ"_th, "กา"_th}, {"SUM", "12.50", ""}};
    grid.SetColCount(3);
    grid.SetRowCount(3);
    for (int row = 0; row < 3; ++row) {
      for (int col = 0; col < 3; ++col) grid.SetCells(col, row, kCells[row][col]);
    }
    grid.OnSelectCell = [this](int col, int /*row*/, bool& /*can*/) {
      grid.Options.goEditing =
          col == 1 && actions.ItemIndex() >= 0 && actions.ItemValue(actions.ItemIndex()) == Correct;
    };
  }
};

}  // namespace kvshare
