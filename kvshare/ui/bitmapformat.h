// Sizes of a Windows bitmap's headers, in bytes.
// Internal header.
#pragma once

#include <cstdint>

namespace kvshare {

inline constexpr std::uint32_t kBitmapFileHeader = 14;
inline constexpr std::uint32_t kBitmapInfoHeader = 40;

}  // namespace kvshare
