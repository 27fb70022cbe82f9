// The formats that the suite's programs set, over English names.
#pragma once

#include "kvshare/rtl/formatsettings.h"

namespace kvshare {

inline TFormatSettings SuiteFormats() {
  TFormatSettings formats = TFormatSettings::UsEnglish();
  formats.ShortDateFormat = "dd/mm/yyyy";
  formats.LongDateFormat = "dddd, mmmm dd, yyyy";
  formats.ShortTimeFormat = "hh:nn ampm";
  formats.LongTimeFormat = "hh:nn:ss ampm";
  formats.TimeAMString = "am";
  formats.TimePMString = "pm";
  return formats;
}

}  // namespace kvshare
