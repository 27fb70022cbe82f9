// What the dialogs for a refused post and for a refused change have in common: the record field by
// field, and a choice of what to do. Their differences are data.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/records/updates.h"
#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/variant.h"
#include "kvshare/ui/controls.h"
#include "kvshare/ui/stdcontrols.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare {

// One field of the record, its values as texts.
struct KVSHARE_API TErrorFieldRow : TObject {
  TField* Field = nullptr;
  std::string NewValue;
  std::string OldValue;
  std::string CurrentValue;  // what the server has now
  std::string EditValue;     // what the user has typed
  bool Edited = false;       // whether he has
};

// A value as the dialogs show it: `<Unchanged>` for Unassigned, `(Binary)`, `(ADT)` and `(Array)`
// for fields of these kinds, else VarToStr. Memos are text.
KVSHARE_API std::string ErrorValueText(const Variant& value, TFieldType type);
// The same for a field: where it has OnGetText or an EditMask for its text, a value that is not
// Null is shown as the field shows it. Throws what OnGetText does.
KVSHARE_API std::string ErrorValueText(const Variant& value, TField& field);

// An action that a user may choose, and what the grid shows while it is chosen.
struct TErrorChoice {
  enum class Shown : std::uint8_t { NewValue, EditValue, Unchanged };

  std::string_view text;
  int action;
  Shown modified;         // in the column of modified values; EditValue: that can be typed over
  bool originalIsServer;  // the server's value, where there is one, instead of the original one
  bool needsConflict;     // is offered only where there are values of the server
};

class KVSHARE_API TUpdateErrorForm : public TForm {
 public:
  static constexpr std::string_view UpdateKindStr[] = {"Modified", "Inserted", "Deleted"};

  // What the form is about. Create fills it from the current record, which has to stay the current
  // one; without a dataset the form stays as it is designed.
  struct Content {
    TDataSet* dataSet = nullptr;
    TUpdateKind kind = TUpdateKind::ukModify;
    std::string error;
    std::string moreOfError;  // a further line, unless it is empty
  };

  TLabel UpdateTypeLabel{this, "UpdateTypeLabel"};
  TLabel UpdateType{this, "UpdateType"};
  TLabel ErrorLabel{this, "ErrorLabel"};
  TImage IconImage{this, "IconImage"};
  TMemo ErrorMsg{this, "ErrorMsg"};
  TRadioGroup ActionGroup{this, "ActionGroup"};
  TStringGrid UpdateData{this, "UpdateData"};
  TCheckBox ConflictsOnly{this, "ConflictsOnly"};
  TCheckBox ChangedOnly{this, "ChangedOnly"};
  TButton OKBtn{this, "OKBtn"};
  TButton CancelBtn{this, "CancelBtn"};

  const std::vector<TErrorFieldRow>& Rows() const { return rows_; }

  // Shows the form and tells whether the user pressed OK. Then what he has typed is in the fields,
  // where the action chosen takes it: all of it or nothing. Fields with OnSetText or an EditMask
  // take it as a line (TField::SetTextOfLine), others as a Variant. A text that a field refuses
  // throws the field's error while the form is still shown.
  bool Ask();
  int Action() const { return Choice().action; }

 protected:
  // The choices outlive the form.
  TUpdateErrorForm(std::string_view name, std::string_view caption,
                   std::span<const TErrorChoice> choices, Content content);

 private:
  static constexpr int kNoColumn = 0;

  void Design();
  void Connect();
  void Fill();
  void BuildRows();
  void PlaceColumns();
  void OfferChoices();
  void DisplayFieldValues();
  void PutHeadings();
  void PutRow(int at, TErrorFieldRow& row);
  std::string_view ShownModified(const TErrorFieldRow& row) const;
  void ShareWidth();
  bool IsHidden(const TErrorFieldRow& row) const;
  bool MayType(int col) const;
  void WriteEdits();
  const TErrorChoice& Choice() const;

  std::span<const TErrorChoice> choices_;
  Content content_;
  std::vector<TErrorFieldRow> rows_;
  int modifiedCol_ = kNoColumn;
  int conflictCol_ = kNoColumn;
  int originalCol_ = kNoColumn;
};

}  // namespace kvshare
