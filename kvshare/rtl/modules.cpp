#include "kvshare/rtl/modules.h"

namespace kvshare::inline rtl {

namespace {

// Set before any library registers from its load entry.
constinit TLibModule* first = nullptr;

}  // namespace

const TLibModule* LibModuleList() {
  return first;
}

void RegisterModule(TLibModule& module) {
  module.Next = first;
  first = &module;
}

void UnregisterModule(TLibModule& module) {
  for (TLibModule** link = &first; *link != nullptr; link = &(*link)->Next) {
    if (*link != &module) continue;
    *link = module.Next;
    module.Next = nullptr;
    return;
  }
}

}  // namespace kvshare::inline rtl
