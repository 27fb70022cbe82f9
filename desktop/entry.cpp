// What a program finds by name in the library of windows and paper.
#include "desktop/paper.h"
#include "desktop/toolkit.h"
#include "desktop/windows.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/desktop.h"

namespace kvshare::desktop {

namespace {

TUserInterface& InterfaceFor(TDesktopUse use) {
  StartToolkit(use);
  if (use == TDesktopUse::Windows) {
    static WindowsInterface windows;
    return windows;
  }
  static PaperInterface paper;
  return paper;
}

}  // namespace

}  // namespace kvshare::desktop

extern "C" __attribute__((visibility("default"))) kvshare::TUserInterface* kvshare_desktop(
    int contract, kvshare::TDesktopUse use) {
  if (contract != kvshare::kDesktopContract) {
    throw kvshare::EOSError("The library kvshare-desktop is of another version");
  }
  return &kvshare::desktop::InterfaceFor(use);
}
