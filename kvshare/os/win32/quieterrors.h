// Failures that are answers, about which the system must not ask its user.
// Internal header.
#pragma once

#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

// While it lives, this thread's calls fail without a message box of the system: for a drive without
// a disk, for a library that is damaged or lacks what it needs.
class QuietErrors {
 public:
  QuietErrors() {
    SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX,
                       &earlier_);
  }
  ~QuietErrors() { SetThreadErrorMode(earlier_, nullptr); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

 private:
  DWORD earlier_ = 0;
};

}  // namespace kvshare::os::win32
