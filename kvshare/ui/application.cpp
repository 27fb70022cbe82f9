#include "kvshare/ui/application.h"

#include "kvshare/rtl/formatsettings.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

TApplication Application;

void TApplication::SettingsChanged() const {
  if (UpdateFormatSettings) GetFormatSettings();
}

std::uintptr_t TApplication::MainFormHandle() const {
  return MainForm == nullptr || MainForm->Window() == nullptr ? 0 : MainForm->Window()->Handle();
}

void TApplication::ProcessMessages() const {
  UserInterface().ProcessMessages();
}

void TApplication::Run() const {
  if (MainForm == nullptr) return;
  MainForm->Show();
  UserInterface().RunUntilHidden(*MainForm);
}

}  // namespace kvshare
