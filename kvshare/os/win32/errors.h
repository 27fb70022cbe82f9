// The system's errors as the platform numbers them: mostly the same numbers.
// Internal header.
#pragma once

#include <cstdint>
#include <string>

namespace kvshare::os::win32 {

inline constexpr int kFileNotFound = 2;
inline constexpr int kPathNotFound = 3;
inline constexpr int kAccessDenied = 5;
inline constexpr int kNoMoreFiles = 18;
inline constexpr int kGeneralFailure = 31;
inline constexpr int kNotEmpty = 145;

using SystemError = std::uint32_t;  // what GetLastError gives

// The platform's number: a full disk is 101, others are the system's own.
int PlatformCode(SystemError error);

// The system's words for it, UTF-8, one line without its full stop's line end; "error N" where it
// has none.
std::string MessageOf(SystemError error);

// Throws EInOutError with the system's message in code page 874 and the platform's number.
[[noreturn]] void ThrowFailed(SystemError error);
[[noreturn]] void ThrowLastError();

// Throws EInOutError with the platform's own message: `File not found`, `Invalid filename`, `Too
// many open files`, `File access denied`, `Read beyond end of file`, `Disk full`, else `I/O error
// N`.
[[noreturn]] void ThrowInOut(int platformCode);

}  // namespace kvshare::os::win32
