// The usual controls of a form. An event says nothing of who caused it: a change by code fires it
// as one by the user does. What a user changes gets the keyboard; a button, which keys click too,
// leaves it where it is.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

class KVSHARE_API TLabel : public TControl {
 public:
  using TControl::TControl;
};

// A place for a picture, which a back end with windows chooses.
class KVSHARE_API TImage : public TControl {
 public:
  using TControl::TControl;
};

// The lines of a memo. CR LF, CR and LF each end one.
class KVSHARE_API TMemoLines {
 public:
  const std::string& Text() const { return text_; }
  void SetText(std::string_view text) { text_ = std::string(text); }

  int Count() const;
  // Throws EStringListError `List index out of bounds (%d)`.
  std::string operator[](int index) const;

  // At the end: behind CR LF where a line stands there that has no end yet.
  void Add(std::string_view line);
  void Clear() { text_.clear(); }

 private:
  std::string text_;
};

class KVSHARE_API TMemo : public TWinControl {
 public:
  using TWinControl::TWinControl;

  TMemoLines Lines;
  const std::string& Text() const { return Lines.Text(); }
  void SetText(std::string_view text) { Lines.SetText(text); }

  bool ReadOnly = false;  // for the user; code may write
  TNotifyEvent OnChange;  // after the user has typed

  // The user types at the end.
  bool TypeText(std::string_view text);
  // The user changes the text to this one.
  bool EditText(std::string_view text);
};

// One line to type into.
class KVSHARE_API TEdit : public TWinControl {
 public:
  using TWinControl::TWinControl;

  const std::string& Text() const { return text_; }
  void SetText(std::string_view text);  // OnChange when it changes

  bool ReadOnly = false;      // for the user; code may write
  bool RightAligned = false;  // as amounts are
  int MaxLength = 0;          // bytes that the user may type, 0 for any number
  TNotifyEvent OnChange;

  // The user types this text in place of the one that stands there, as much of it as MaxLength
  // allows; line ends and other control characters are left out.
  bool TypeText(std::string_view text);

 private:
  std::string text_;
};

class KVSHARE_API TRadioGroup : public TWinControl {
 public:
  using TWinControl::TWinControl;

  // An item with a value of the program's, such as an enumerator. Returns the index.
  int AddItem(std::string_view text, int value = 0);
  void ClearItems();  // and the choice with them; no event
  const TStringList& Items() const { return items_; }
  // Throws EStringListError `List index out of bounds (%d)`.
  int ItemValue(int index) const;

  // The chosen item, -1 for none. An index below is -1, one past the end is the last. OnClick fires
  // when another item is chosen, not when the choice is taken back.
  int ItemIndex() const { return itemIndex_; }
  void SetItemIndex(int index);
  TNotifyEvent OnClick;

  // The user's click on an item; false also for one that is not there.
  bool Choose(int index);

 private:
  TStringList items_;
  std::vector<int> values_;  // one an item
  int itemIndex_ = -1;
};

class KVSHARE_API TCheckBox : public TWinControl {
 public:
  using TWinControl::TWinControl;

  bool Checked() const { return checked_; }
  void SetChecked(bool checked);  // OnClick when it changes
  TNotifyEvent OnClick;

  bool Click();  // the user's

 private:
  bool checked_ = false;
};

class KVSHARE_API TButton : public TWinControl {
 public:
  using TWinControl::TWinControl;

  bool Default = false;      // Enter clicks it
  bool Cancel = false;       // Esc clicks it
  int ModalResult = mrNone;  // what a click gives to the form
  TNotifyEvent OnClick;      // runs afterwards, and may take the form's result back

  bool Click();  // the user's
};

}  // namespace kvshare
