#include "kvshare/os/console.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace kvshare::os {

void WriteStandardError(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(STDERR_FILENO, bytes.data(), bytes.size());
    if (n >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace kvshare::os
