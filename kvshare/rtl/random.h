// The process-wide pseudo-random generator: seed := (seed * 134775813 + 1) mod 2^32. Not for
// secrets.
#pragma once

#include <cstdint>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

extern KVSHARE_API std::uint32_t RandSeed;

// Steps the seed and gives 0 .. range - 1; Random(0) is 0. A negative range is taken as unsigned
// and gives a value without meaning.
KVSHARE_API std::int32_t Random(std::int32_t range);

// Seeds from the clock. Two calls in one tick differ too.
KVSHARE_API void Randomize();

}  // namespace kvshare::inline rtl
