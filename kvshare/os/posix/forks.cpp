#include "kvshare/os/forks.h"

#include <pthread.h>

namespace kvshare::os {

void AtForks(void (*before)(), void (*inChild)()) {
  ::pthread_atfork(before, nullptr, inChild);
}

}  // namespace kvshare::os
