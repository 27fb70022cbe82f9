#include "companion/yearform.h"

#include <algorithm>

#include "kvshare/dates/date.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::companion {

namespace {

constexpr TSize kClient{484, 120};
constexpr std::string_view kYear = "ปี"_th;
constexpr std::int32_t kFirst = 1;
constexpr std::int32_t kLast = 9999;

// A year that is nearer to this one's number of the Buddhist era than to the Christian one is of
// the former.
bool IsBuddhist(std::int32_t year) {
  return year > DecodeDate(Date()).Year + kBuddhistEraOffset / 2;
}

}  // namespace

YearForm::YearForm(std::string_view caption, std::int32_t given)
    : DialogForm("YearForm", caption.empty() ? kYear : caption, kClient), value_(given) {
  Place(YearCaption, Caption(), {kMargin, kMargin, kClient.Width - 2 * kMargin, 13});
  Place(YearEdit, "", {kMargin, 29, 80, 21});
  Place(PrevBtn, "<", {98, 27, 32, 25});
  Place(NextBtn, ">", {134, 27, 32, 25});
  Place(OtherEra, "", {176, 33, kClient.Width - 176 - kMargin, 13});
  PlaceButtons();
  YearEdit.RightAligned = true;
  YearEdit.OnChange = [this] { ShowOtherEra(); };
  YearEdit.SetText(IntToStr(given));
  PrevBtn.OnClick = [this] { GoBy(-1); };
  NextBtn.OnClick = [this] { GoBy(1); };
  OKBtn.OnClick = [this] {
    if (!Read(value_)) Refuse(Format(LoadStr(rstrEInvalidYear), {YearEdit.Text()}), YearEdit);
  };
}

bool YearForm::Read(std::int32_t& year) const {
  const std::string_view digits = Trim(YearEdit.Text());
  std::int32_t typed = 0;
  const bool isNumber = digits.find_first_not_of("0123456789") == std::string_view::npos &&
                        TryStrToInt(digits, typed);
  if (!isNumber || typed < kFirst || typed > kLast) return false;
  year = typed;
  return true;
}

void YearForm::GoBy(std::int32_t years) {
  std::int32_t year = 0;
  if (Read(year)) YearEdit.SetText(IntToStr(std::clamp(year + years, kFirst, kLast)));
}

void YearForm::ShowOtherEra() {
  std::int32_t year = 0;
  if (!Read(year)) {
    OtherEra.SetCaption("");
  } else if (IsBuddhist(year)) {
    OtherEra.SetCaption(Format("ค.ศ. %d"_th, {year - kBuddhistEraOffset}));
  } else {
    OtherEra.SetCaption(Format("พ.ศ. %d"_th, {year + kBuddhistEraOffset}));
  }
}

}  // namespace kvshare::companion
