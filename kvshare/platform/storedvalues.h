// Single values of the registry for callers to whom a failed read is a default and a failed write
// no event. Internal.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/os/registry.h"

namespace kvshare {

// The value, none when it or its key is missing, is of another kind, or cannot be read.
std::optional<std::string> StoredText(os::Hive hive, std::string_view key, std::string_view name);
std::optional<std::int32_t> StoredInteger(os::Hive hive, std::string_view key,
                                          std::string_view name);

// StoredText unless it is missing or blank.
std::string StoredTextOr(os::Hive hive, std::string_view key, std::string_view name,
                         std::string_view defaultValue);

// Opens the key, creating it, and lets `write` write: all of it is stored, or nothing.
void StoreUnder(os::Hive hive, std::string_view key,
                const std::function<void(os::TRegistry&)>& write);
void StoreText(os::Hive hive, std::string_view key, std::string_view name, std::string_view value);

}  // namespace kvshare
