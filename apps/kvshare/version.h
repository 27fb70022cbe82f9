#pragma once

#include <string_view>

namespace kvshare::app {

inline constexpr std::string_view kVersion = KVSHARE_VERSION;

}  // namespace kvshare::app
