// What happened to a record since the log began.
#pragma once

#include <cstdint>

namespace kvshare {

enum class TUpdateStatus : std::uint8_t { usUnmodified, usModified, usInserted, usDeleted };
}  // namespace kvshare
