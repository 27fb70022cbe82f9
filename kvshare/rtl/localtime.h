// The way from rtl to the system's clock. The layer that knows the system supplies it.
// Internal header.
#pragma once

#include <ctime>

namespace kvshare::inline rtl {

// A moment as the clocks on the wall of this machine's time zone show it. Safe in every thread.
std::tm LocalTimeOf(std::time_t moment);

}  // namespace kvshare::inline rtl
