// The running program as its windows see it.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare {

class KVSHARE_API TApplication {
 public:
  // Whether a change of the system's regional settings changes FormatSettings.
  bool UpdateFormatSettings = true;

  std::string Title;     // code page 874; the caption of boxes without one of their own
  std::string HelpFile;  // name of the help file

  // What a back end calls when the regional settings changed: reads FormatSettings from the user's
  // locale again, unless UpdateFormatSettings is off.
  void SettingsChanged() const;
};

extern KVSHARE_API TApplication Application;

}  // namespace kvshare
