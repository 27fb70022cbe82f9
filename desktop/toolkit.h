// The toolkit and the texts that cross into it.
#pragma once

#include <QRect>
#include <QString>
#include <string>
#include <string_view>

#include "kvshare/ui/desktop.h"

namespace kvshare::desktop {

// Makes the toolkit's application object unless there is one. Throws EOSError where there is no
// display that answers.
void StartToolkit();

// A text of the library for the screen; a byte that stands for no letter is U+FFFD.
QString Shown(std::string_view cp874);

// What a user has typed. Throws EConvertError for a letter that the code page lacks.
std::string TypedText(const QString& text);

// The bounds as far as the screen's system can count.
QRect Reachable(const TBounds& bounds);

}  // namespace kvshare::desktop
