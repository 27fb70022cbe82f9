// The kvshare command without its process: arguments in, exit status out.
#pragma once

#include <string>
#include <vector>

#include "apps/kvshare/terminal/stream.h"

namespace kvshare::app {

// Runs one command line (without the program's name). 0: done; 1: an item or a row could not be
// read, or a stream failed; 2: wrong usage. Results go to stdio.out, all messages to stdio.err.
int RunCommandLine(std::vector<std::string> arguments, const Stdio& stdio);

}  // namespace kvshare::app
