#include "kvshare/os/console.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace kvshare::os {

namespace {

// Waits where a host has made the file one that does not; false when waiting does not help either.
bool WaitFor(int file, short event) {
  pollfd waited{file, event, 0};
  constexpr int kForever = -1;
  return ::poll(&waited, 1, kForever) > 0 || errno == EINTR;
}

// Whether a call that has failed is to be made again.
bool Again(int file, short event) {
  return errno == EINTR || ((errno == EAGAIN || errno == EWOULDBLOCK) && WaitFor(file, event));
}

}  // namespace

bool Console::IsTerminal() const {
  return ::isatty(input_) == 1 && ::isatty(output_) == 1;
}

void Console::Write(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t n = ::write(output_, bytes.data(), bytes.size());
    if (n >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(n));
    } else if (!Again(output_, POLLOUT)) {
      return;
    }
  }
}

std::optional<std::string> Console::ReadLine() const {
  std::optional<std::string> line = ReadBytesOfLine();
  if (line && echoes_ && ::isatty(input_) != 1) Write(*line + '\n');
  return line;
}

std::optional<std::string> Console::ReadBytesOfLine() const {
  std::string line;
  for (;;) {
    char c = 0;
    const ssize_t n = ::read(input_, &c, 1);
    if (n < 0 && Again(input_, POLLIN)) continue;
    if (n <= 0) {
      if (line.empty()) return std::nullopt;
      return line;
    }
    if (c == '\n') return line;
    line += c;
  }
}

}  // namespace kvshare::os
