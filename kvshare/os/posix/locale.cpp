#include "kvshare/os/locale.h"

#include <string_view>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

bool HasBuddhistCalendar() {
  const std::string_view chosen = Environment("KVSHARE_ERA");
  const bool thai = SameText(UserLocale().substr(0, 2), "th");
  return chosen == "543" || (chosen != "0" && thai);
}

}  // namespace

std::string EraText() {
  constexpr std::string_view kBuddhistEra = "พ.ศ."_th;
  return std::string(HasBuddhistCalendar() ? kBuddhistEra : std::string_view());
}

std::string CalendarType() {
  return HasBuddhistCalendar() ? "7" : "1";
}

}  // namespace kvshare::os
