// The back end with real windows and real paper. It lives in a library of its own that is loaded on
// the first call and stays loaded, so that servers and the command need neither it nor its toolkit.
#pragma once

#include <cstdint>

#include "kvshare/export.h"
#include "kvshare/ui/backend.h"

namespace kvshare {

enum class TDesktopUse : std::uint8_t {
  Windows,    // needs a display
  PaperOnly,  // printing and PDF; no display is looked for, and messages and forms are the
              // console's
};

// Whichever use is asked for first decides for the whole run: after PaperOnly there are no windows;
// after Windows both are there. Main thread only. Throws EOSError with what is missing: the
// library, its toolkit, a display.
KVSHARE_API TUserInterface& Desktop(TDesktopUse use);

// The entry that the library kvshare-desktop exports as `kvshare_desktop`; throws EOSError. The
// number tells whether both were built from the same declarations.
inline constexpr int kDesktopContract = 1;
using TDesktopEntry = TUserInterface*(int contract, TDesktopUse use);

}  // namespace kvshare
