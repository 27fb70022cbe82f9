// A form at a terminal, without windows: shown as lines, worked with by typed lines.
// Internal header.
#pragma once

#include <string>

#include "kvshare/export.h"
#include "kvshare/os/console.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

// The form as it stands: caption, labels, memos, grids, choices, check boxes, buttons, each visible
// one with the key or number that reaches it, or `-` where it is disabled. UTF-8, lines end with
// LF.
KVSHARE_API std::string ShownForm(const TForm& form);

// Shows the form, does what typed lines say and shows it again, until ModalResult is set, and
// returns that. The end of the input dismisses the form. A line that cannot be understood or done
// gets a message, as does an Exception of a handler, and changes nothing else; an EAbort is silent.
KVSHARE_API int TalkAboutForm(TForm& form, const os::Console& console);

}  // namespace kvshare
