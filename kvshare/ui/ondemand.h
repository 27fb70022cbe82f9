// Libraries of this project that are loaded on demand and stay loaded.
// Internal header.
#pragma once

#include <string_view>

namespace kvshare {

struct OnDemand {
  std::string_view library;
  std::string_view entry;
  std::string_view complaint;  // what is not possible without it
};

// The library's entry. Throws EOSError where there is none. Call it once a library.
void* LoadEntryAddress(const OnDemand& what);

template <typename Entry>
Entry* LoadEntry(const OnDemand& what) {
  return reinterpret_cast<Entry*>(LoadEntryAddress(what));
}

}  // namespace kvshare
