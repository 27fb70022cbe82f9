// Message boxes as windows.
#pragma once

#include "kvshare/ui/messages.h"

namespace kvshare::desktop {

// Shows the box over the program's active window until it is answered, and returns the answer, an
// mr value. Esc and the close box answer as the message says, and nothing where that is mrNone:
// then one of its buttons has to be pressed. Help ends nothing. The text can be selected, and
// Ctrl+C copies all of it.
int ShowMessageWindow(const TMessageBox& message);

}  // namespace kvshare::desktop
