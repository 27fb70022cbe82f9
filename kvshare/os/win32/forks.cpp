#include "kvshare/os/forks.h"

namespace kvshare::os {

// A process of this system never becomes two.
void AtForks(void (* /*before*/)(), void (* /*inChild*/)()) {}

}  // namespace kvshare::os
