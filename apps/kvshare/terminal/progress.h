// How far a long run has come, for the person who waits for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "apps/kvshare/terminal/stream.h"

namespace kvshare::app {

// Writes one line that rewrites itself, from two seconds on, when standard error is a terminal.
class Progress {
 public:
  // Whether the run reads and writes line by line: on a terminal these are its progress themselves.
  enum class Lines : bool { None, Shown };

  Progress(const Stdio& stdio, std::string_view unit, Lines lines);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Show(std::uint64_t done);
  void Erase();

 private:
  using Clock = std::chrono::steady_clock;

  int fd_;
  std::string unit_;
  bool on_;
  bool visible_ = false;
  Clock::time_point next_;
};

}  // namespace kvshare::app
