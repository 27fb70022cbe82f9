// The libraries of the suite that are loaded in this process.
#pragma once

#include <string>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// One loaded library. It belongs to the library it describes, which registers it when it is loaded
// and takes it out when it is unloaded.
struct KVSHARE_API TLibModule {
  TLibModule* Next = nullptr;         // the list's own
  std::string Name;                   // full path of the library's file, as the system gives it
  const void* Instance = nullptr;     // where it is loaded
  const void* ResInstance = nullptr;  // its texts: Instance, or a translation of its own
};

// The latest registered library, nullptr without one; follow Next to the others. The list has no
// lock: the system loads and unloads one library at a time.
KVSHARE_API const TLibModule* LibModuleList();

// Puts `module` in front of the list. It stays at its address until it is unregistered.
KVSHARE_API void RegisterModule(TLibModule& module);

// Takes it out; nothing when the list does not have it.
KVSHARE_API void UnregisterModule(TLibModule& module);

}  // namespace kvshare::inline rtl
