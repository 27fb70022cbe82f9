// Open files by their numbers.
// Internal header.
#pragma once

#include <io.h>

#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

inline constexpr int kStandardStreams = 3;

// 0, 1 and 2 are the standard streams as the system knows them, other numbers are those of the C
// run-time. The handle stays where it belongs. A number without an open file gives a handle with
// which every call fails.
inline HANDLE StreamHandle(int number) {
  constexpr DWORD kStandard[kStandardStreams] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE,
                                                 STD_ERROR_HANDLE};
  if (number < 0) return nullptr;
  if (number < kStandardStreams) return GetStdHandle(kStandard[number]);
  return reinterpret_cast<HANDLE>(_get_osfhandle(number));
}

// Whether it is a console, where texts are wide and somebody may be there to answer. False for a
// terminal that is a pipe to its programs.
inline bool IsConsoleHandle(HANDLE handle) {
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0;
}

}  // namespace kvshare::os::win32
