// Start and stop of the library's modules. Initialize and Finalize run the table from its first row
// to the last and back; a host may also walk the table itself. Hosts that load the library at run
// time find the routines under these very names without the namespace too, with C linkage. A
// program may have C routines of such names of its own: those below stay the library's.
//
// A counter a module makes repeated starts harmless: the first one starts the module, and the stop
// that brings the counter back to 0 stops it. A stop without a start does nothing.
//
// All on one thread: the program's main one. Only the lack of memory can make them throw.
#pragma once

#include <cstdint>

#include "kvshare/export.h"

namespace kvshare {

// Start and stop of one module, with its counter.
struct TPackageUnit {
  void (*Start)();
  void (*Stop)();
};

struct TPackageInfoTable {
  std::int32_t UnitCount;     // 21
  const TPackageUnit* Units;  // in start order
};

// The name of a module for a host's log, `index` from 0; "" for one that does not exist.
KVSHARE_API const char* PackageUnitName(std::int32_t index);

KVSHARE_API void Initialize();
KVSHARE_API void Finalize();
KVSHARE_API const TPackageInfoTable* GetPackageInfoTable();

}  // namespace kvshare
