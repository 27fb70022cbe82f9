// Other programs.
#pragma once

#include <cstdint>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

inline constexpr int kStillActive = 259;  // exit code of a process that has not ended

// A program that was started. Destroying it lets the program run on; it starts no thread and
// installs no signal handler, so that a program that ends later stays in the system's process table
// until this one ends. A program whose exit code matters is waited for.
class KVSHARE_API Process {
 public:
  // Starts `commandLine`: the program, then its arguments, in code page 874 (passed on in UTF-8);
  // no shell reads it. Blanks separate; quotes group, `\"` is a quote, and so is `""` within
  // quotes; 2n
  // `\` before a quote are n, elsewhere each is itself. The program is a name of the interface (in
  // quotes when it has blanks; without them the shortest name that is a program counts), or a bare
  // name that is looked for in the running program's folder and in PATH, letter case ignored;
  // `.exe` behind it is dropped when no such file exists. The child has the standard streams of
  // this program with `inheritStreams`, else empty ones, and no other open file. Started() tells
  // whether it runs: false for a program that is missing or that the system cannot run, and for a
  // byte that stands for no letter.
  Process(std::string_view commandLine, bool inheritStreams);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  bool Started() const { return id_ > 0; }
  int Id() const { return id_; }

  // Waits without limit. The exit code; 128 + n for a program that signal n ended; kStillActive for
  // one that did not start, and where the host ignores SIGCHLD or has waited for it itself. Later
  // calls give the same.
  int Wait();

 private:
#ifdef _WIN32
  std::uintptr_t handle_ = 0;  // the process, as the system names it to this one
#endif
  int id_ = 0;
  int exitCode_ = kStillActive;
  bool ended_ = false;
};

// Whether the running program is one of the console. True from the start; a program with windows
// sets it to false.
extern KVSHARE_API bool IsConsole;

}  // namespace kvshare::os
