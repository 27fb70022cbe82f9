#include "kvshare/ui/ondemand.h"

#include <string>
#include <utility>
#include <vector>

#include "kvshare/os/sharedlibrary.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

namespace {

// What the system says of the library, which may name a folder of any letters.
std::string InCp874(const std::string& utf8, std::string_view library) {
  return TryUtf8ToCp874(utf8).value_or("the library " + std::string(library) + " cannot be loaded");
}

}  // namespace

void* LoadEntryAddress(const OnDemand& what) {
  os::SharedLibrary library(what.library);
  if (!library.Loaded()) {
    throw EOSError(std::string(what.complaint) + InCp874(library.ErrorText(), what.library));
  }
  void* const entry = library.Entry(what.entry);
  if (entry == nullptr) {
    throw EOSError("The library " + std::string(what.library) + " is of another version");
  }
  // Loaded to the process's end: its entry is used all the time.
  static std::vector<os::SharedLibrary> loaded;
  loaded.push_back(std::move(library));
  return entry;
}

}  // namespace kvshare
