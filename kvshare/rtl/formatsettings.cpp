#include "kvshare/rtl/formatsettings.h"

#include <algorithm>
#include <cstddef>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"

namespace kvshare::inline rtl {

namespace {

using Text = std::string_view;

// What differs between the locales; the marks and AM, PM are the same in both.
struct Locale {
  Text shortDate, longDate, shortTime, longTime;
  Text currency;
  int positive, negative;  // CurrencyFormat, NegCurrFormat
  std::array<Text, 12> shortMonths, longMonths;
  std::array<Text, 7> shortDays, longDays;
};

// clang-format off
constexpr Locale kUsEnglish = {
    "M/d/yyyy", "dddd, MMMM dd, yyyy", "h:mm AMPM", "h:mm:ss AMPM",
    "$", 0, 0,
    {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"},
    {"January", "February", "March", "April", "May", "June",
     "July", "August", "September", "October", "November", "December"},
    {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
    {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}};

constexpr Locale kThai = {
    "d/M/yyyy", "d MMMM yyyy", "h:mm", "h:mm:ss",
    "฿"_th, 0, 1,
    {"ม.ค."_th, "ก.พ."_th, "มี.ค."_th, "เม.ย."_th, "พ.ค."_th, "มิ.ย."_th,
     "ก.ค."_th, "ส.ค."_th, "ก.ย."_th, "ต.ค."_th, "พ.ย."_th, "ธ.ค."_th},
    {"มกราคม"_th, "กุมภาพันธ์"_th, "มีนาคม"_th, "เมษายน"_th, "พฤษภาคม"_th, "มิถุนายน"_th,
     "กรกฎาคม"_th, "สิงหาคม"_th, "กันยายน"_th, "ตุลาคม"_th, "พฤศจิกายน"_th, "ธันวาคม"_th},
    {"อา."_th, "จ."_th, "อ."_th, "พ."_th, "พฤ."_th, "ศ."_th, "ส."_th},
    {"อาทิตย์"_th, "จันทร์"_th, "อังคาร"_th, "พุธ"_th, "พฤหัสบดี"_th, "ศุกร์"_th, "เสาร์"_th}};
// clang-format on

TFormatSettings SettingsOf(const Locale& locale) {
  TFormatSettings result;
  result.ShortDateFormat = locale.shortDate;
  result.LongDateFormat = locale.longDate;
  result.ShortTimeFormat = locale.shortTime;
  result.LongTimeFormat = locale.longTime;
  result.TimeAMString = Text("AM");
  result.TimePMString = Text("PM");
  result.CurrencyString = locale.currency;
  result.CurrencyFormat = locale.positive;
  result.NegCurrFormat = locale.negative;
  std::ranges::copy(locale.shortMonths, result.ShortMonthNames.begin());
  std::ranges::copy(locale.longMonths, result.LongMonthNames.begin());
  std::ranges::copy(locale.shortDays, result.ShortDayNames.begin());
  std::ranges::copy(locale.longDays, result.LongDayNames.begin());
  return result;
}

constexpr bool IsLetter(char byte, char lower) {
  return byte == lower || byte == lower - 'a' + 'A';
}

}  // namespace

TFormatSettings TFormatSettings::UsEnglish() {
  return SettingsOf(kUsEnglish);
}

TFormatSettings TFormatSettings::Thai() {
  return SettingsOf(kThai);
}

TFormatSettings TFormatSettings::ForLocale(std::string_view name) {
  const bool thai = name.size() >= 2 && IsLetter(name[0], 't') && IsLetter(name[1], 'h');
  return thai ? Thai() : UsEnglish();
}

TFormatSettings FormatSettings = TFormatSettings::ForLocale(UserLocale());

void GetFormatSettings() {
  FormatSettings = TFormatSettings::ForLocale(UserLocale());
}

}  // namespace kvshare::inline rtl
