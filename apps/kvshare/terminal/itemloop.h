// The loop that every command for items shares: one item in, exactly one line out.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/terminal/outputrow.h"
#include "apps/kvshare/terminal/stream.h"

namespace kvshare::app {

inline constexpr int kDone = 0;
inline constexpr int kBadInput = 1;
inline constexpr int kWrongUsage = 2;
inline constexpr int kReaderGone = 141;  // as a shell tells SIGPIPE

// Makes the row of one item (code page 874). Throws an Exception for an item that cannot be read.
using Transform = std::function<void(std::string_view item, Row& row)>;

// Runs `transform` over the operands, or over the lines of standard input when there are none. An
// item that cannot be read gives an empty line (with `json`, an object with its number and
// `error`) and `line N: reason` or `argument N: reason` on standard error.
// Returns kDone, or kBadInput when an item could not be read. Throws StreamError.
int RunItems(const Transform& transform, const std::vector<std::string>& operands, bool json,
             const Stdio& stdio);

}  // namespace kvshare::app
