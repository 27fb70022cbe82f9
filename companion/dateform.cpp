#include "companion/dateform.h"

#include "companion/calendarform.h"
#include "companion/datetexts.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"

namespace kvshare::companion {

namespace {

constexpr int kLeft = 12;
constexpr int kWidth = 460;  // for captions of 64 letters
constexpr int kButtons = 49;
constexpr TSize kOneDate{kWidth + 2 * kLeft, kLeft + DateField::kHeight + kButtons};
constexpr TSize kTwoDates{kOneDate.Width, kOneDate.Height + DateField::kHeight};

constexpr std::string_view kDate = "วันที่"_th;
constexpr std::string_view kFrom = "ตั้งแต่วันที่"_th;
constexpr std::string_view kTo = "ถึงวันที่"_th;

std::string_view CaptionOr(std::string_view caption, std::string_view usual) {
  return caption.empty() ? usual : caption;
}

// The message of the suite for a text that is no date.
std::string NoDate(const TEdit& edit) {
  return Format(LoadStr(rstrEInvalidDate), {edit.Text()});
}

}  // namespace

DateField::DateField(TForm& form, const std::string& name, std::string_view caption,
                     TDateTime given, Word era, int top)
    : given_(given),
      era_(era),
      givenText_(DateText(DayToShow(given), era)),
      caption_(&form, name + "Caption"),
      edit_(&form, name + "Edit"),
      button_(&form, name + "Btn"),
      understood_(&form, name + "Text") {
  Place(caption_, caption, {kLeft, top, kWidth, 13});
  Place(edit_, "", {kLeft, top + 17, 120, 21});
  Place(button_, "ปฏิทิน"_th, {kLeft + 126, top + 15, 75, 25});
  Place(understood_, "", {kLeft, top + 45, kWidth, 13});
  edit_.SetText(givenText_);
  edit_.OnChange = [this] { ShowUnderstood(); };
  button_.OnClick = [this] { OpenCalendar(); };
  ShowUnderstood();
}

// The reader guesses eras, and its guess of a year far away need not be the one that was shown.
bool DateField::ReadDay(TDateTime& day) const {
  if (edit_.Text() != givenText_) return ReadDate(edit_.Text(), era_, day);
  day = DayToShow(given_);
  return true;
}

bool DateField::Read(TDateTime& moment) const {
  TDateTime day;
  if (!ReadDay(day)) return false;
  moment = WithTimeOf(given_, day);
  return true;
}

void DateField::ShowUnderstood() {
  TDateTime day;
  understood_.SetCaption(ReadDay(day) ? FullDateText(day) : std::string());
}

void DateField::OpenCalendar() {
  TDateTime day;
  if (!ReadDay(day)) day = TDateTime();
  CalendarForm calendar(caption_.Caption(), day, era_);
  if (calendar.Ask()) edit_.SetText(DateText(calendar.Value(), era_));
}

DateForm::DateForm(std::string_view caption, TDateTime given, Word era)
    : DialogForm("DateForm", CaptionOr(caption, kDate), kOneDate),
      date_(*this, "Date", CaptionOr(caption, kDate), given, era, kLeft),
      value_(given) {
  PlaceButtons();
  OKBtn.OnClick = [this] {
    if (!date_.Read(value_)) Refuse(NoDate(date_.Edit()), date_.Edit());
  };
}

DateRangeForm::DateRangeForm(std::string_view firstCaption, std::string_view secondCaption,
                             TDateTime from, TDateTime to, Word era)
    : DialogForm("DateRangeForm", "ช่วงวันที่"_th, kTwoDates),
      from_(*this, "From", CaptionOr(firstCaption, kFrom), from, era, kLeft),
      to_(*this, "To", CaptionOr(secondCaption, kTo), to, era, kLeft + DateField::kHeight),
      fromValue_(from),
      toValue_(to) {
  PlaceButtons();
  OKBtn.OnClick = [this] { Accept(); };
}

void DateRangeForm::Accept() {
  TDateTime from;
  TDateTime to;
  if (!from_.Read(from)) return Refuse(NoDate(from_.Edit()), from_.Edit());
  if (!to_.Read(to)) return Refuse(NoDate(to_.Edit()), to_.Edit());
  if (DateOf(from).Days() > DateOf(to).Days()) {
    constexpr std::string_view kReversed = "%s: วันที่เริ่มต้นอยู่หลังวันที่สิ้นสุด"_th;
    return Refuse(Format(kReversed, {LoadStr(rstrEDateRange)}), to_.Edit());
  }
  fromValue_ = from;
  toValue_ = to;
}

}  // namespace kvshare::companion
