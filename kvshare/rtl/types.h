// Names for the integers of the interface.
#pragma once

#include <cstdint>

namespace kvshare::inline rtl {

using Word = std::uint16_t;
using SmallInt = std::int16_t;

__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

}  // namespace kvshare::inline rtl
