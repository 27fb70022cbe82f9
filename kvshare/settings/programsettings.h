// What a program reads once after its start.
#pragma once

#include "kvshare/export.h"

namespace kvshare {

class TKovraRegistry;

// Reads the settings of the running program and prepares what every program shares, in this order:
// the digits of quantities (4 where none are stored), unit prices (2), amounts (2) and weights (3)
// from the user's section "Default"; ExePath, and Application.HelpFile put behind it; BaseLanguage;
// YearBase; the folder Temp in the application data; ScreencamPath and KovraAppDataPath; the number
// masks and patterns (numberformats.h); BTrace from "Btrace.ini" beside the program, where there is
// one. Call it after Initialize and once, since the help file's name grows by the folder each time.
//
// Throws EConvertError `'%s' is not a valid integer value` for stored digits that are no number
// from 0 to 65535; the earlier ones are set then.
KVSHARE_API void SetEditMaskAndFormatStr();

// The part of it that is about numbers: the digits, masks and patterns. It changes nothing on the
// disk. Throws likewise.
KVSHARE_API void ReadNumberSettings(const TKovraRegistry& store);

}  // namespace kvshare
