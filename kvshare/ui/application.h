// The running program as its windows see it.
#pragma once

#include <cstdint>
#include <string>

#include "kvshare/export.h"

namespace kvshare {

class TForm;

class KVSHARE_API TApplication {
 public:
  // Whether a change of the system's regional settings changes FormatSettings.
  bool UpdateFormatSettings = true;

  std::string Title;     // code page 874; the caption of boxes without one of their own
  std::string HelpFile;  // name of the help file

  // The program's main window, which owns its dialogs; nullptr for none. A form takes itself out
  // when it is destroyed.
  TForm* MainForm = nullptr;
  // The system's number of its window; 0 where there is none.
  std::uintptr_t MainFormHandle() const;

  // Lets windows do what is waiting for them, without waiting for the user.
  void ProcessMessages() const;
  // Shows the main form and returns when the user has closed it; at once without one, or without a
  // back end that has windows.
  void Run() const;

  // What a back end calls when the regional settings changed: reads FormatSettings from the user's
  // locale again, unless UpdateFormatSettings is off.
  void SettingsChanged() const;
};

extern KVSHARE_API TApplication Application;

}  // namespace kvshare
