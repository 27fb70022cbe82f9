// Text files at whose ends several processes write at once.
// Internal header.
#pragma once

#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// Puts `bytes` at the end of a file in one piece: what several processes append at once neither
// mixes nor tears, and of an append that fails (a full disk) nothing stays. A missing file is
// created with the folders that lead to it. Where a file ends in Ctrl-Z bytes, at most 128 of them
// are written over. Throws EInOutError with the platform's code and message.
KVSHARE_API void AppendToFile(std::string_view name, std::string_view bytes);

}  // namespace kvshare::os
