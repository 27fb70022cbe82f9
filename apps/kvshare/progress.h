// How far a long run has come, for the person who waits for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "apps/kvshare/stream.h"

namespace kvshare::app {

// Writes one line that rewrites itself, from two seconds on, when standard error is a terminal and
// neither the input nor the output is one (there it would stand between the lines).
class Progress {
 public:
  Progress(const Stdio& stdio, std::string_view unit);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(std::uint64_t done);
  void Erase();

 private:
  using Clock = std::chrono::steady_clock;

  int fd_;
  std::string_view unit_;
  bool on_;
  bool visible_ = false;
  Clock::time_point next_;
};

}  // namespace kvshare::app
