// Ctrl-C as a question, for work that ends between two steps and tells what is done.
#pragma once

#include <csignal>

namespace kvshare::app {

// While it lives, the first SIGINT or SIGTERM only asks for the end; the second one ends the
// process as ever.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool Asked() const;

 private:
  struct sigaction interrupt_ {};
  struct sigaction terminate_ {};
};

}  // namespace kvshare::app
