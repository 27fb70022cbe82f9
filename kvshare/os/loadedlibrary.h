// Where the libraries of this process come from.
// Internal header.
#pragma once

#include <string>

namespace kvshare::os {

struct LoadedLibrary {
  const void* base = nullptr;  // where it is loaded
  std::string path;            // full path of its file, the system's own bytes
};

// The library or program that an address of code or of static data belongs to; empty where the
// system knows none.
LoadedLibrary LibraryOfAddress(const void* address);

}  // namespace kvshare::os
