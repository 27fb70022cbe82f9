// How numbers, dates and times are written and read.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// A separator of '\0' prints nothing and matches nothing.
struct KVSHARE_API TFormatSettings {
  std::string ShortDateFormat;
  std::string LongDateFormat;
  std::string ShortTimeFormat;
  std::string LongTimeFormat;
  std::string TimeAMString;
  std::string TimePMString;
  char DateSeparator = '/';
  char TimeSeparator = ':';
  char DecimalSeparator = '.';
  char ThousandSeparator = ',';
  char ListSeparator = ',';
  std::string CurrencyString;
  int CurrencyFormat = 0;  // 0 `$1`, 1 `1$`, 2 `$ 1`, 3 `1 $`
  int NegCurrFormat = 0;   // 0 .. 15, from `($1)` to `(1 $)`
  int CurrencyDecimals = 2;
  int TwoDigitYearCenturyWindow = 50;
  std::array<std::string, 12> ShortMonthNames;  // January first
  std::array<std::string, 12> LongMonthNames;
  std::array<std::string, 7> ShortDayNames;  // Sunday first
  std::array<std::string, 7> LongDayNames;

  static TFormatSettings UsEnglish();
  static TFormatSettings Thai();

  // Thai() for a locale name that begins with "th" (any letter case), else UsEnglish().
  static TFormatSettings ForLocale(std::string_view name);
};

// The process-wide settings, taken from the user's locale (LC_ALL, LC_TIME or LANG, the first that
// is set) until a program changes them. A plain variable: change it before other threads format.
extern KVSHARE_API TFormatSettings FormatSettings;

// Reads the user's locale again into FormatSettings.
KVSHARE_API void GetFormatSettings();

}  // namespace kvshare::inline rtl
