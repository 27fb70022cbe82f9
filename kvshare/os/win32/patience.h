// Calls that somebody else's short look at a file makes fail: a virus scanner's, an indexer's.
// Internal header.
#pragma once

#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

// 0 for a call that was done, else the system's error. To be asked right behind the call.
inline SystemError ErrorOf(BOOL done) {
  return done != 0 ? ERROR_SUCCESS : GetLastError();
}

// Whether somebody has the file open in a way that keeps others from it.
constexpr bool IsInUse(SystemError error) {
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
         error == ERROR_USER_MAPPED_FILE;
}

// Runs `call`, which gives 0 or the system's error, until its error is none that `passes` takes for
// one that goes by, at most for so many milliseconds and one call more. Its last result.
template <typename Passes, typename Call>
SystemError Patiently(DWORD milliseconds, Passes passes, Call call) {
  constexpr int kShortPauses = 10;
  constexpr DWORD kShort = 1;
  constexpr DWORD kLong = 20;
  const ULONGLONG end = GetTickCount64() + milliseconds;
  for (int i = 0;; ++i) {
    const SystemError error = call();
    if (error == ERROR_SUCCESS || !passes(error) || GetTickCount64() >= end) return error;
    Sleep(i < kShortPauses ? kShort : kLong);
  }
}

}  // namespace kvshare::os::win32
