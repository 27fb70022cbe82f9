// Fonts and pictures of the windows.
#pragma once

#include <QFont>
#include <QPixmap>
#include <cstdint>

#include "kvshare/ui/messages.h"

namespace kvshare::desktop {

// The font of forms and boxes: 11 pixels, of a family that has Thai letters where one is installed.
const QFont& WindowFont();

// A picture of ours for what a box says; sharp at any scale of the screen.
QPixmap IconFor(TMsgDlgType type, int size, double scale);

}  // namespace kvshare::desktop
