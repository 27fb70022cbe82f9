#include "companion/datetexts.h"

#include <array>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"

namespace kvshare::companion {

namespace {

constexpr std::array<std::string_view, 7> kDays = {"อาทิตย์"_th,  "จันทร์"_th, "อังคาร"_th, "พุธ"_th,
                                                   "พฤหัสบดี"_th, "ศุกร์"_th,  "เสาร์"_th};

// Whether the moment has a date and a time of day.
bool IsMoment(TDateTime moment) {
  try {
    const int year = DecodeDate(moment).Year;
    return year >= 1 && year <= 9999;
  } catch (const EExternal&) {
    return false;
  }
}

}  // namespace

Word EraOfMode(std::int32_t mode) {
  constexpr std::int32_t kChristian = 1;
  return mode == kChristian ? 0 : kBuddhistEraOffset;
}

TDateTime DayToShow(TDateTime moment) {
  return moment == TDateTime() || !IsMoment(moment) ? Date() : DateOf(moment);
}

TDateTime WithTimeOf(TDateTime moment, TDateTime day) {
  return IsMoment(moment) ? JoinDateTime(day, TimeOf(moment)) : day;
}

std::string DateText(TDateTime day, Word era) {
  std::string text = era == 0 ? TKovraDate::ddmmyyyy19(day) : TKovraDate::ddmmyyyy25(day);
  text.insert(4, 1, '/');
  text.insert(2, 1, '/');
  return text;
}

std::string FullDateText(TDateTime day) {
  const TDateParts parts = DecodeDate(day);
  const auto weekday = static_cast<std::size_t>(DayOfWeek(day) - 1);
  constexpr std::string_view kText = "วัน%sที่ %d %s %d (ค.ศ. %d)"_th;
  return Format(kText, {kDays.at(weekday), parts.Day, kThaiLongMonths.at(parts.Month - 1u),
                        parts.Year + kBuddhistEraOffset, parts.Year});
}

bool ReadDate(std::string_view text, Word era, TDateTime& day) {
  text = Trim(text);
  return TKovraDate::ForceStrToKovraDate(text, day) || TKovraDate::StrToKovraDate(text, era, day);
}

}  // namespace kvshare::companion
