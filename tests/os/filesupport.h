// What the tests of files share.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "kvshare/rtl/exceptions.h"
#include "tests/support.h"

namespace kvshare {

// The platform's code of the failure of `action`, 0 without one.
template <typename Action>
int CodeOf(Action action) {
  try {
    action();
  } catch (const EInOutError& e) {
    return e.ErrorCode();
  }
  return 0;
}

// A disk in memory where there is one, for tests with many thousand changes.
inline std::filesystem::path FastDisk() {
  return std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
}

// Whether `holds` is true in a process that is no superuser, whom permissions do not bind. It must
// not use the test framework.
template <typename Check>
bool HoldsForOrdinaryUser(Check holds) {
  constexpr uid_t kNobody = 65534;
  const pid_t child = fork();
  if (child == 0) {
    if (geteuid() == 0 && (setgid(kNobody) != 0 || setuid(kNobody) != 0)) _exit(2);
    _exit(holds() ? 0 : 1);
  }
  int status = -1;
  return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace kvshare
