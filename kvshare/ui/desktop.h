// The back end with real windows. It lives in a library of its own that is loaded on the first call
// and stays loaded, so that servers and the command need neither it nor its toolkit.
#pragma once

#include "kvshare/export.h"
#include "kvshare/ui/backend.h"

namespace kvshare {

// Windows on the display, and what Paper() prints. Main thread only. Throws EOSError with what is
// missing: the library, its toolkit, a display that answers.
KVSHARE_API TUserInterface& Desktop();

// The entry that the library kvshare-desktop exports as `kvshare_desktop`; throws EOSError. The
// number tells whether both were built from the same declarations.
inline constexpr int kDesktopContract = 2;
using TDesktopEntry = TUserInterface*(int contract);

}  // namespace kvshare
