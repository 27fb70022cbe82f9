// Command lines, taken apart by the platform's rules.
// Internal header.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare::os {

// One way to read where the program's name ends.
struct ProgramReading {
  std::string name;       // without its quotes
  std::string_view rest;  // what follows: the arguments
};

// The readings of a command line, in the order in which they are tried. A quote hides blanks, a `\`
// is always itself: there is one reading. A name with a folder and without a quote may go on past
// each blank, `C:\Program Files\x.exe /a`: the shortest comes first, none is longer than 260 bytes.
// Empty when the line is blank.
KVSHARE_API std::vector<ProgramReading> ReadProgram(std::string_view commandLine);

// The arguments behind the program. Blanks and tabs separate them, quotes group; 2n `\` before a
// quote are n and the quote counts, 2n + 1 are n and a plain quote; `""` inside quotes is one plain
// quote. A quote that is not closed ends with the line.
KVSHARE_API std::vector<std::string> SplitArguments(std::string_view text);

}  // namespace kvshare::os
