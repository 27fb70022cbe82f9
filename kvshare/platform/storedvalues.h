// Single values of the registry for callers to whom a failed read is a default and a failed write
// no event.
// Internal header.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "kvshare/os/registry/registry.h"

namespace kvshare {

// The text, and the default where it is missing, blank or of another kind, or cannot be read.
std::string StoredTextOr(os::Hive hive, std::string_view key, std::string_view name,
                         std::string_view defaultValue);

// Opens the key, creating it, and lets `write` write: all of it is stored, or nothing.
void StoreUnder(os::Hive hive, std::string_view key,
                const std::function<void(os::TRegistry&)>& write);
void StoreText(os::Hive hive, std::string_view key, std::string_view name, std::string_view value);

}  // namespace kvshare
