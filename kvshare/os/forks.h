// Processes that become two.
// Internal header.
#pragma once

namespace kvshare::os {

// From now on `before` runs in a process that is about to fork, and `inChild` in each child, first
// of all. Never where the system has no such processes.
void AtForks(void (*before)(), void (*inChild)());

}  // namespace kvshare::os
