// Files that a command reads.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "apps/kvshare/system/descriptors.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

// Runs the work on a file; an Exception whose message does not name the file becomes a
// std::runtime_error that does.
template <typename Work>
auto NamingFile(const std::string& file, Work work) {
  try {
    return work();
  } catch (const Exception& e) {
    const std::string message = Cp874ToUtf8Lossy(e.Message());
    if (message.find(file) != std::string::npos) throw;
    throw std::runtime_error(file + ": " + message);
  }
}

// Appends what there is from here to the end. Throws StreamError.
inline void AppendRest(std::string& bytes, int fd) {
  constexpr std::size_t kBlock = std::size_t{1} << 16;
  for (std::size_t n = kBlock; n != 0;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    n = ReadSome(fd, bytes.data() + size, kBlock);
    bytes.resize(size + n);
  }
}

}  // namespace kvshare::app
