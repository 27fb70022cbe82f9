// Prompts for one date and for a range of dates.
#pragma once

#include "companion/dialogform.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"

namespace kvshare::companion {

// A line for a date on a form, with its caption above, what was understood below, and a button that
// opens the calendar.
class DateField {
 public:
  static constexpr int kHeight = 68;

  // `name` begins the names of its controls: FromCaption, FromEdit, FromText, FromBtn.
  DateField(TForm& form, const std::string& name, std::string_view caption, TDateTime given,
            Word era, int top);

  // What is typed, with the given time of day; the given moment itself where the line is as it was.
  // False, and `moment` as it was, where that is no date.
  bool Read(TDateTime& moment) const;

  TEdit& Edit() { return edit_; }

 private:
  bool ReadDay(TDateTime& day) const;
  void ShowUnderstood();
  void OpenCalendar();

  TDateTime given_;
  Word era_;
  std::string givenText_;
  TLabel caption_;
  TEdit edit_;
  TButton button_;
  TLabel understood_;
};

class DateForm : public DialogForm {
 public:
  DateForm(std::string_view caption, TDateTime given, Word era);

  TDateTime Value() const { return value_; }

 private:
  DateField date_;
  TDateTime value_;
};

class DateRangeForm : public DialogForm {
 public:
  DateRangeForm(std::string_view firstCaption, std::string_view secondCaption, TDateTime from,
                TDateTime to, Word era);

  // The day of From is not after the day of To where the user has pressed OK.
  TDateTime From() const { return fromValue_; }
  TDateTime To() const { return toValue_; }

 private:
  void Accept();

  DateField from_;
  DateField to_;
  TDateTime fromValue_;
  TDateTime toValue_;
};

}  // namespace kvshare::companion
