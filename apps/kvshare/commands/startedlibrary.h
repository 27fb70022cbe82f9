// The library as a program of the suite has it.
#pragma once

#include "kvshare/database/connectinfo.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/settings/datetimeformat.h"
#include "kvshare/settings/programsettings.h"
#include "kvshare/start/package.h"

namespace kvshare::app {

// Started as each program starts it, with its formats and the user's settings; at the end no
// company is open, and the process has its formats back.
class StartedLibrary {
 public:
  StartedLibrary() {
    Initialize();
    try {
      SetDefaultDateTimeFormat();
      SetEditMaskAndFormatStr();
    } catch (...) {
      End();
      throw;
    }
  }
  ~StartedLibrary() { End(); }
  StartedLibrary(const StartedLibrary&) = delete;
  StartedLibrary& operator=(const StartedLibrary&) = delete;

 private:
  void End() {
    ClearDBMSConnectInfo();
    Finalize();
    FormatSettings = formats_;
  }

  TFormatSettings formats_ = FormatSettings;
};

}  // namespace kvshare::app
