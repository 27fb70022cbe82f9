// Numbers for messages that the windows of several programs send each other.
#pragma once

#include <cstdint>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// The number of a message name, 0xC000 .. 0xFFFF, the same in every process and for every letter
// case of a..z; 0 for an empty name. It is derived from the name alone, so two names share a number
// with a chance of 1 in 16384: a receiver of a few names tests them once.
KVSHARE_API std::uint32_t RegisterWindowMessage(std::string_view name);

}  // namespace kvshare::os
