// Forms and message boxes of a command that is worked with at a terminal or through a pipe.
#pragma once

#include "apps/kvshare/terminal/stream.h"
#include "kvshare/os/console.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/consoleform.h"

namespace kvshare::app {

// A console that shows the lines it reads, so that its output reads as a talk.
inline os::Console EchoingConsole(int input, int output) {
  os::Console console(input, output);
  console.EchoLines();
  return console;
}

// The terminal's back end, whose forms also take their lines from a pipe.
class TalkingInterface : public TConsoleInterface {
 public:
  // Forms talk on `console`, message boxes are written to the command's standard error.
  TalkingInterface(const Stdio& stdio, const os::Console& console)
      : TConsoleInterface(stdio.in, stdio.err), console_(console) {}

  int ShowModalForm(TForm& form) override { return TalkAboutForm(form, console_); }

 private:
  os::Console console_;
};

}  // namespace kvshare::app
