#include "companion/calendarform.h"

#include "companion/datetexts.h"
#include "kvshare/dates/date.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"

namespace kvshare::companion {

namespace {

constexpr TSize kClient{392, 336};
constexpr int kColumns = 7;
constexpr int kWeeks = 6;
constexpr std::string_view kHeadings[kColumns] = {"อา"_th, "จ"_th, "อ"_th, "พ"_th,
                                                  "พฤ"_th, "ศ"_th, "ส"_th};

TDateTime FirstOfMonth(TDateTime day) {
  const TDateParts parts = DecodeDate(day);
  return EncodeDate(parts.Year, parts.Month, 1);
}

}  // namespace

CalendarForm::CalendarForm(std::string_view caption, TDateTime given, Word era)
    : DialogForm("CalendarForm", caption, kClient), given_(given), era_(era) {
  Design();
  Connect();
  Choose(DayToShow(given));
  SetActiveControl(&Days);
}

void CalendarForm::Design() {
  Place(PrevYearBtn, "<<", {kMargin, kMargin, 32, 25});
  Place(PrevMonthBtn, "<", {kMargin + 36, kMargin, 32, 25});
  Place(NextMonthBtn, ">", {312, kMargin, 32, 25});
  Place(NextYearBtn, ">>", {348, kMargin, 32, 25});
  Place(MonthLabel, "", {88, kMargin + 6, 216, 13});
  Place(Days, "", {kMargin, 46, kClient.Width - 2 * kMargin, 180});
  Place(DateEdit, "", {kMargin, 236, 110, 21});
  Place(TodayBtn, "วันนี้"_th, {130, 234, 75, 25});
  Place(FullDate, "", {kMargin, 268, kClient.Width - 2 * kMargin, 13});
  PlaceButtons();

  constexpr int kLine = 1;  // between cells
  Days.SetColCount(kColumns);
  Days.SetRowCount(1 + kWeeks);
  Days.SetFixedCols(0);
  Days.SetDefaultColWidth(Days.Width() / kColumns - kLine);
  for (int col = 0; col < kColumns; ++col) Days.SetCells(col, 0, kHeadings[col]);
}

void CalendarForm::Connect() {
  PrevYearBtn.OnClick = [this] { GoBy(-1, 0); };
  PrevMonthBtn.OnClick = [this] { GoBy(0, -1); };
  NextMonthBtn.OnClick = [this] { GoBy(0, 1); };
  NextYearBtn.OnClick = [this] { GoBy(1, 0); };
  TodayBtn.OnClick = [this] { Choose(Date()); };
  DateEdit.OnChange = [this] { ReadTyped(); };
  OKBtn.OnClick = [this] { Accept(); };
  Days.OnDblClick = [this] { OKBtn.Click(); };
  Days.OnSelectCell = [this](int col, int row, bool& can) {
    const int day = StrToIntDef(Days.Cells(col, row), 0);
    can = day > 0;
    if (!can || day == DecodeDate(day_).Day) return;
    day_ = firstOfShown_ + (day - 1);
    DateEdit.SetText(DateText(day_, era_));
    FullDate.SetCaption(FullDateText(day_));
  };
}

TDateTime CalendarForm::Value() const {
  return WithTimeOf(given_, day_);
}

void CalendarForm::Choose(TDateTime day) {
  Show(day);
  DateEdit.SetText(DateText(day, era_));
}

void CalendarForm::Show(TDateTime day) {
  day_ = day;
  FullDate.SetCaption(FullDateText(day));
  firstOfShown_ = FirstOfMonth(day);
  ShowMonth();
}

// The grid's selection follows the day, and the keyboard stays where the user has it.
void CalendarForm::ShowMonth() {
  const TDateParts parts = DecodeDate(firstOfShown_);
  const int shown = parts.Year + era_;
  MonthLabel.SetCaption(Format("%s %d", {kThaiLongMonths.at(parts.Month - 1u), shown}));
  const int before = DayOfWeek(firstOfShown_) - 1;
  const int days = TKovraDate::DaysOfMonth(firstOfShown_);
  for (int cell = 0; cell < kColumns * kWeeks; ++cell) {
    const int day = cell - before + 1;
    const bool there = day >= 1 && day <= days;
    Days.SetCells(cell % kColumns, 1 + cell / kColumns, there ? IntToStr(day) : std::string());
  }
  const int chosen = before + DecodeDate(day_).Day - 1;
  TWinControl* const keyboard = ActiveControl();
  Days.SelectCell(chosen % kColumns, 1 + chosen / kColumns);
  SetActiveControl(keyboard);
}

// Stays where the years end.
void CalendarForm::GoBy(int years, int months) {
  const TDateParts parts = DecodeDate(day_);
  const int year = parts.Year + years;
  if (year < 1) return;
  try {
    Choose(months == 0 ? TKovraDate::Encodedatedd(static_cast<Word>(year), parts.Month, parts.Day)
                       : TKovraDate::ChangeMonth(day_, static_cast<std::int8_t>(months)));
  } catch (const EConvertError&) {
    return;
  }
}

// What is typed is not written over while it is typed.
void CalendarForm::ReadTyped() {
  if (DateEdit.Text() == DateText(day_, era_)) return;
  TDateTime day;
  if (ReadDate(DateEdit.Text(), era_, day)) Show(day);
}

void CalendarForm::Accept() {
  TDateTime day = day_;
  if (DateEdit.Text() == DateText(day_, era_) || ReadDate(DateEdit.Text(), era_, day)) {
    day_ = day;
  } else {
    Refuse(Format(LoadStr(rstrEInvalidDate), {DateEdit.Text()}), DateEdit);
  }
}

}  // namespace kvshare::companion
