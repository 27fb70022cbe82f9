// The toolkit and the texts that cross into it.
#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "kvshare/ui/desktop.h"

namespace kvshare::desktop {

// Makes the toolkit's application object unless there is one: on a display for Windows, without one
// for PaperOnly. Throws EOSError where there is no display that answers, or where there was none
// when the toolkit was started.
void StartToolkit(TDesktopUse use);

// Code page 874 outside, Unicode inside. A byte that stands for no letter is U+FFFD, a letter that
// the code page lacks is `?`: for what is shown. Typed texts go through TypedText.
QString Shown(std::string_view cp874);

// What a user has typed. Throws EConvertError for a letter that the code page lacks.
std::string TypedText(const QString& text);

// Whether some installed font has Thai letters.
bool HasThaiFont();

}  // namespace kvshare::desktop
