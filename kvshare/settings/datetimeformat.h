// The one look of dates and times in all programs of the suite.
#pragma once

#include "kvshare/export.h"

namespace kvshare {

// A program calls it once after start. Registers the window message "KovraRefresh"
// (msgKovraRefresh), sets KovraMinDate to 1 January 2000, fixes the date and time formats of
// FormatSettings (15/07/2003, 02:05 pm) and stops the reload of FormatSettings when the system's
// regional settings change, so that the formats stay in force. Separators and names of months and
// days remain the locale's.
KVSHARE_API void SetDefaultDateTimeFormat();

}  // namespace kvshare
