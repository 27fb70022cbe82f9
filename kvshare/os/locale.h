// The user's calendar.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare::os {

// The text of the era whose years the user's calendar shows, in code page 874: "พ.ศ." for the Thai
// Buddhist calendar, "" for the Christian one. The environment variable KVSHARE_ERA decides where
// it is `543` or `0`; else a Thai locale (LC_ALL, LC_TIME or LANG, the first that is set, begins
// with "th") has the Buddhist era.
KVSHARE_API std::string EraText();

// The calendar type of the user's locale as the platform's locale item tells it: "7" for the Thai
// Buddhist calendar, "1" for the Christian one. It always agrees with EraText.
KVSHARE_API std::string CalendarType();

}  // namespace kvshare::os
