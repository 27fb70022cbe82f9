// A record as a form: a line for each field.
#pragma once

#include <memory>
#include <vector>

#include "apps/kvshare/data/tablerecord.h"
#include "kvshare/ui/stdcontrols.h"

namespace kvshare::app {

// Of the record that is being edited. Fields of the key and those that cannot be typed are shown
// only; memos of several lines have them. A field that refuses its text, or a record that cannot be
// posted, throws from OK's click, and the form stays with all that was typed.
class RecordForm : public TForm {
 public:
  explicit RecordForm(TableRecord& record);

  // Shows the form and tells whether the user pressed OK: then what he has changed is in the fields
  // and posted.
  bool Edit();

  // The control of a field, by the field's name; nullptr for none.
  TWinControl* ControlOf(std::string_view field) const;

 private:
  struct Line {
    TField* field = nullptr;
    std::unique_ptr<TLabel> label;
    std::unique_ptr<TEdit> edit;  // one of both
    std::unique_ptr<TMemo> memo;

    const std::string& Text() const { return memo ? memo->Text() : edit->Text(); }
    std::string before;  // the text as it was shown first
  };

  TBounds Place(int lines);
  void AddLine(TField& field);
  void PlaceButtons();
  void Store();

  TableRecord& record_;
  std::vector<Line> lines_;
  int used_ = 0;  // lines of the columns
  TButton ok_{this, "OKBtn"};
  TButton cancel_{this, "CancelBtn"};
};

}  // namespace kvshare::app
