// Environment variables.
#pragma once

#include <cstdlib>
#include <string_view>

namespace kvshare::inline rtl {

// The value of a variable, "" when it is not set.
inline std::string_view Environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// The locale that the user's environment names: LC_ALL, LC_TIME or LANG, the first that is set.
inline std::string_view UserLocale() {
  for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    if (const std::string_view name = Environment(variable); !name.empty()) return name;
  }
  return {};
}

}  // namespace kvshare::inline rtl
