#include "apps/kvshare/terminal/progress.h"

namespace kvshare::app {

using namespace std::chrono_literals;

namespace {

// Progress is a courtesy: a terminal that refuses it is no reason to stop.
void WriteQuietly(int fd, std::string_view text) {
  try {
    WriteAll(fd, text, {});
  } catch (const StreamError&) {
    return;
  }
}

}  // namespace

Progress::Progress(const Stdio& stdio, std::string_view unit, Lines lines)
    : fd_(stdio.err),
      unit_(unit),
      on_(IsTerminal(stdio.err) &&
          (lines == Lines::None || (!IsTerminal(stdio.out) && !IsTerminal(stdio.in)))),
      next_(Clock::now() + 2s) {}

Progress::~Progress() {
  Erase();
}

void Progress::Show(std::uint64_t done) {
  if (!on_ || Clock::now() < next_) return;
  next_ = Clock::now() + 200ms;
  visible_ = true;
  WriteQuietly(fd_, "\r" + std::to_string(done) + " " + unit_ + "\x1B[K");
}

void Progress::Erase() {
  if (visible_) WriteQuietly(fd_, "\r\x1B[K");
  visible_ = false;
}

}  // namespace kvshare::app
