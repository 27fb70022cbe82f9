// Names of tables as drivers give them.
// Internal header.
#pragma once

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// Takes owner and quotes off the names, as GetAllTableNames says.
KVSHARE_API void StripTableNames(TStrings& names);

}  // namespace kvshare
