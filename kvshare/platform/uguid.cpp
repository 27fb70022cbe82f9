#include "kvshare/platform/uguid.h"

#include "kvshare/os/machine.h"

namespace kvshare {

std::string GetGuid() {
  return os::NewGuid();
}

}  // namespace kvshare
