// What stands between the toolkit's events and the program's handlers.
#pragma once

#include <exception>
#include <functional>

#include "kvshare/ui/controls.h"

namespace kvshare::desktop {

// Runs what an event causes on the form. No exception passes through the toolkit: an Exception is
// shown to the user and the form stays, an EAbort is silent, and anything else is kept for whoever
// waits for the form.
void RunGuarded(TForm& form, const std::function<void()>& action);

// Throws what was kept, once.
void ThrowKept();
bool HasKept();

}  // namespace kvshare::desktop
