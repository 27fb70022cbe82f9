// The calls by which SQLite reaches the disk, counted and made to fail. The test program's own
// functions stand before the system's.
#pragma once

#include <atomic>

namespace kvshare {

struct DiskCalls {
  std::atomic<int> flushes{0};
  std::atomic<int> writes{0};
  // Calls that still succeed; those after them fail with `error`. Negative: all succeed.
  std::atomic<int> left{-1};
  std::atomic<int> error{0};

  static DiskCalls& Instance();
  bool Fails();
};

}  // namespace kvshare
