// What a program finds by name in the library of windows.
#include "desktop/toolkit.h"
#include "desktop/windows.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/desktop.h"

extern "C" __attribute__((visibility("default"))) kvshare::TUserInterface* kvshare_desktop(
    int contract) {
  if (contract != kvshare::kDesktopContract) {
    throw kvshare::EOSError("The library kvshare-desktop is of another version");
  }
  kvshare::desktop::StartToolkit();
  static kvshare::desktop::WindowsInterface windows;
  return &windows;
}
