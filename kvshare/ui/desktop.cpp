#include "kvshare/ui/desktop.h"

#include <string>

#include "kvshare/os/sharedlibrary.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

namespace {

// What the system says of the library, which may name a folder of any letters.
std::string InCp874(const std::string& utf8) {
  return TryUtf8ToCp874(utf8).value_or("the library kvshare-desktop cannot be loaded");
}

TDesktopEntry* LoadDesktop() {
  static const os::SharedLibrary library("kvshare-desktop");
  if (!library.Loaded()) {
    throw EOSError("No windows and no printing here: " + InCp874(library.ErrorText()));
  }
  auto* entry = reinterpret_cast<TDesktopEntry*>(library.Entry("kvshare_desktop"));
  if (entry == nullptr) throw EOSError("The library kvshare-desktop is of another version");
  return entry;
}

}  // namespace

TUserInterface& Desktop(TDesktopUse use) {
  static TDesktopEntry* const entry = LoadDesktop();
  return *entry(kDesktopContract, use);
}

}  // namespace kvshare
