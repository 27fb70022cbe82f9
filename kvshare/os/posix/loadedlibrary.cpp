#include "kvshare/os/loadedlibrary.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>

namespace kvshare::os {

LoadedLibrary LibraryOfAddress(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0) return {};
  struct Free {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): from realpath
    void operator()(char* text) const { std::free(text); }
  };
  const std::unique_ptr<char, Free> path(realpath(info.dli_fname, nullptr));
  return {info.dli_fbase, path ? path.get() : info.dli_fname};
}

}  // namespace kvshare::os
