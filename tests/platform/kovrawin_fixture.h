// What a test asks of its companion library, by mode.
#pragma once

#include <cstdint>

#include "kvshare/platform/kovrawin.h"

namespace kvshare::fixture {

enum Mode : std::int32_t {
  kEcho,
  kNull,     // null pointers instead of texts
  kReplace,  // texts of the library's own
  kNest,     // calls the bridge again, twice
  kThrow,    // the library's Exception, after the results are given
  kAbort,
  kThrowStandard,
  kThrowOther,
};

}  // namespace kvshare::fixture
