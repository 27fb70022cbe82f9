// A host that loads the library at run time. It is not linked with it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "kvshare/start/package.h"

namespace {

struct Close {
  void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Close>;

Library Load(int flags) {
  return Library(dlopen(KVSHARE_LIBRARY, flags | RTLD_NOW | RTLD_LOCAL));
}

template <typename F>
F* Routine(const Library& library, const char* name) {
  return reinterpret_cast<F*>(dlsym(library.get(), name));  // what POSIX promises for dlsym
}

// The sanitizer build's leak check at exit is the second half of this test.
TEST(Load, UnloadsWithoutATrace) {
  for (int i = 0; i < 100; ++i) {
    {
      const Library library = Load(0);
      ASSERT_NE(library, nullptr) << dlerror();
      auto* initialize = Routine<void()>(library, "Initialize");
      auto* finalize = Routine<void()>(library, "Finalize");
      auto* table = Routine<const kvshare::TPackageInfoTable*()>(library, "GetPackageInfoTable");
      ASSERT_TRUE(initialize && finalize && table);
      EXPECT_EQ(table()->UnitCount, 21);
      initialize();
      initialize();
      finalize();
      if (i % 2 == 0) finalize();  // a host that forgets one leaks nothing either
    }
    ASSERT_EQ(Load(RTLD_NOLOAD), nullptr) << "still loaded after round " << i;
  }
}

}  // namespace
