#include "kvshare/settings/datetimeformat.h"

#include "kvshare/os/windowmessage.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/application.h"

namespace kvshare {

void SetDefaultDateTimeFormat() {
  msgKovraRefresh = os::RegisterWindowMessage("KovraRefresh");
  KovraMinDate = EncodeDate(2000, 1, 1);
  FormatSettings.ShortTimeFormat = "hh:nn ampm";
  FormatSettings.LongTimeFormat = "hh:nn:ss ampm";
  FormatSettings.TimeAMString = "am";
  FormatSettings.TimePMString = "pm";
  FormatSettings.ShortDateFormat = "dd/mm/yyyy";
  FormatSettings.LongDateFormat = "dddd, mmmm dd, yyyy";
  Application.UpdateFormatSettings = false;
}

}  // namespace kvshare
