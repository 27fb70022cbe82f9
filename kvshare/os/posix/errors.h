// The system's errors as the platform numbers them.
// Internal header.
#pragma once

#include <string>
#include <string_view>

namespace kvshare::os::posix {

inline constexpr int kFileNotFound = 2;
inline constexpr int kPathNotFound = 3;
inline constexpr int kAccessDenied = 5;
inline constexpr int kNoMoreFiles = 18;
inline constexpr int kGeneralFailure = 31;
inline constexpr int kNotEmpty = 145;

// The platform's number for an `errno`. The system knows one error for a missing file and a missing
// folder, the platform two: with the path it can tell.
int PlatformCode(int error);
int PlatformCode(const std::string& path, int error);

// Throws EInOutError with the platform's number, and the system's or the platform's message.
[[noreturn]] void ThrowFailed(const std::string& path, int error);
[[noreturn]] void ThrowInOut(int platformCode);

}  // namespace kvshare::os::posix
