#include "kvshare/ui/desktop.h"

#include "kvshare/ui/ondemand.h"

namespace kvshare {

TUserInterface& Desktop() {
  static auto* const entry =
      LoadEntry<TDesktopEntry>({"kvshare-desktop", "kvshare_desktop", "No windows here: "});
  return *entry(kDesktopContract);
}

}  // namespace kvshare
