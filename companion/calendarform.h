// The calendar.
#pragma once

#include "companion/dialogform.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"
#include "kvshare/ui/stringgrid.h"

namespace kvshare::companion {

// A month of seven columns, Sunday first, and a line to type a date into. A double click on a day
// is an OK.
class CalendarForm : public DialogForm {
 public:
  CalendarForm(std::string_view caption, TDateTime given, Word era);

  // The day that was chosen with the given time of day.
  TDateTime Value() const;

  TButton PrevYearBtn{this, "PrevYearBtn"};
  TButton PrevMonthBtn{this, "PrevMonthBtn"};
  TButton NextMonthBtn{this, "NextMonthBtn"};
  TButton NextYearBtn{this, "NextYearBtn"};
  TLabel MonthLabel{this, "MonthLabel"};
  TStringGrid Days{this, "Days"};
  TEdit DateEdit{this, "DateEdit"};
  TLabel FullDate{this, "FullDate"};
  TButton TodayBtn{this, "TodayBtn"};

 private:
  void Design();
  void Connect();

  // Goes to the day and shows it, in the line too.
  void Choose(TDateTime day);
  void Show(TDateTime day);
  void ShowMonth();
  void GoBy(int years, int months);
  void ReadTyped();
  void Accept();

  TDateTime given_;
  Word era_;
  TDateTime day_;
  TDateTime firstOfShown_;
};

}  // namespace kvshare::companion
