#include "kvshare/ui/application.h"

#include "kvshare/rtl/formatsettings.h"

namespace kvshare {

TApplication Application;

void TApplication::SettingsChanged() const {
  if (UpdateFormatSettings) GetFormatSettings();
}

}  // namespace kvshare
