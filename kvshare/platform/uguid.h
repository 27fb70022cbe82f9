// Identifiers that are given once in the world.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare {

// "{" + 8-4-4-4-12 upper-case hex digits + "}".
KVSHARE_API std::string GetGuid();

}  // namespace kvshare
