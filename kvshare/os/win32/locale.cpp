#include "kvshare/os/locale.h"

#include <array>
#include <string_view>

#include "kvshare/os/win32/environment.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::os {

namespace {

constexpr std::string_view kBuddhist = "7";

// "" where the system does not tell.
std::string UserCalendar() {
  std::array<wchar_t, 8> text{};  // the number of a calendar and its zero byte
  const int size = GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_ICALENDARTYPE, text.data(),
                                   static_cast<int>(text.size()));
  return size > 0 ? win32::Utf8(text.data()) : std::string();
}

bool HasBuddhistCalendar() {
  const std::string chosen = win32::Variable("KVSHARE_ERA");
  return chosen == "543" || (chosen != "0" && UserCalendar() == kBuddhist);
}

}  // namespace

std::string EraText() {
  constexpr std::string_view kBuddhistEra = "พ.ศ."_th;
  return std::string(HasBuddhistCalendar() ? kBuddhistEra : std::string_view());
}

std::string CalendarType() {
  return std::string(HasBuddhistCalendar() ? kBuddhist : "1");
}

}  // namespace kvshare::os
