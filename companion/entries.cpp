// The entries of the library. What one throws ends in the bridge, as it says.
#include <type_traits>

#include "companion/aboutform.h"
#include "companion/calculatorform.h"
#include "companion/calendarform.h"
#include "companion/dateform.h"
#include "companion/datetexts.h"
#include "companion/sqlform.h"
#include "companion/sysinfo.h"
#include "companion/yearform.h"
#include "kvshare/export.h"
#include "kvshare/platform/kovrawin.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::companion {

namespace {

constexpr std::int32_t kChosen = 1;
constexpr std::int32_t kCancelled = 0;

std::string_view TextOf(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

// A text that stays for the program.
const char* Keep(std::string text) {
  static std::string kept;
  kept = std::move(text);
  return kept.c_str();
}

}  // namespace

extern "C" {

// NOLINTBEGIN(misc-use-internal-linkage): found by their names

KVSHARE_API double ExecCalculator(std::uintptr_t /*window*/, std::int32_t /*mode*/, double value) {
  CalculatorForm form(value);
  return form.Ask() ? form.Value() : value;
}

KVSHARE_API double ExecCalendar(std::uintptr_t /*window*/, std::int32_t mode, double date) {
  CalendarForm form("ปฏิทิน"_th, TDateTime(date), EraOfMode(mode));
  return form.Ask() ? form.Value().Days() : date;
}

KVSHARE_API const char* ExecReadSQLCmd(std::uintptr_t /*window*/, std::int32_t /*mode*/,
                                       const char* sql) {
  SqlForm form(TextOf(sql));
  return Keep(std::string(form.Ask() ? std::string_view(form.Text()) : TextOf(sql)));
}

KVSHARE_API void ExecAboutBox(std::uintptr_t /*window*/, std::int32_t /*mode*/) {
  AboutForm().Ask();
}

KVSHARE_API std::int32_t ExecGetDate(std::uintptr_t /*window*/, std::int32_t mode,
                                     const char* caption, double* date) {
  DateForm form(TextOf(caption), TDateTime(*date), EraOfMode(mode));
  if (!form.Ask()) return kCancelled;
  *date = form.Value().Days();
  return kChosen;
}

KVSHARE_API std::int32_t ExecPickDate(std::uintptr_t /*window*/, std::int32_t mode,
                                      const char* caption, double* date) {
  CalendarForm form(TextOf(caption), TDateTime(*date), EraOfMode(mode));
  if (!form.Ask()) return kCancelled;
  *date = form.Value().Days();
  return kChosen;
}

KVSHARE_API std::uint8_t ExecGetDateRange(std::uintptr_t /*window*/, std::int32_t mode,
                                          const char* firstCaption, const char* secondCaption,
                                          double* from, double* to) {
  DateRangeForm form(TextOf(firstCaption), TextOf(secondCaption), TDateTime(*from), TDateTime(*to),
                     EraOfMode(mode));
  if (!form.Ask()) return kCancelled;
  *from = form.From().Days();
  *to = form.To().Days();
  return kChosen;
}

KVSHARE_API std::int32_t ExecGetYear(std::uintptr_t /*window*/, std::int32_t /*mode*/,
                                     const char* caption, std::int32_t* year) {
  YearForm form(TextOf(caption), *year);
  if (!form.Ask()) return kCancelled;
  *year = form.Value();
  return kChosen;
}

KVSHARE_API const char* ExecReadKovraSysInfo() {
  return Keep(SysInfo());
}

// NOLINTEND(misc-use-internal-linkage)

}  // extern "C"

static_assert(std::is_same_v<decltype(ExecCalculator), TExecCalculatorEntry>);
static_assert(std::is_same_v<decltype(ExecCalendar), TExecCalendarEntry>);
static_assert(std::is_same_v<decltype(ExecReadSQLCmd), TExecReadSQLCmdEntry>);
static_assert(std::is_same_v<decltype(ExecAboutBox), TExecAboutBoxEntry>);
static_assert(std::is_same_v<decltype(ExecGetDate), TExecGetDateEntry>);
static_assert(std::is_same_v<decltype(ExecPickDate), TExecGetDateEntry>);
static_assert(std::is_same_v<decltype(ExecGetDateRange), TExecGetDateRangeEntry>);
static_assert(std::is_same_v<decltype(ExecGetYear), TExecGetYearEntry>);
static_assert(std::is_same_v<decltype(ExecReadKovraSysInfo), TExecReadKovraSysInfoEntry>);

}  // namespace kvshare::companion
