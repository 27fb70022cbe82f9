// This computer and its user.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "kvshare/export.h"

namespace kvshare::os {

// The computer's name in upper case, code page 874: the environment variable KVSHARE_COMPUTER, else
// the host name up to its first point. None when it has `bufferSize` bytes and more (the zero byte
// needs one), is empty or has a letter that the code page lacks.
KVSHARE_API std::optional<std::string> ComputerName(std::size_t bufferSize);

// The login name: KVSHARE_USER, else the name of the effective user. None likewise.
KVSHARE_API std::optional<std::string> LoginName(std::size_t bufferSize);

// The first IPv4 address of the computer's host name, dotted; "" when it has none.
KVSHARE_API std::string HostAddress();

// Milliseconds since some moment, as a counter that wraps.
KVSHARE_API std::uint32_t TickCount();

// A new random identifier: "{" + 8-4-4-4-12 upper-case hex digits + "}", version 4 of RFC 9562.
// Throws EOSError when the system has no random bytes.
KVSHARE_API std::string NewGuid();

}  // namespace kvshare::os
