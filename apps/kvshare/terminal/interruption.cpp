#include "apps/kvshare/terminal/interruption.h"

namespace kvshare::app {

namespace {

volatile std::sig_atomic_t asked = 0;

void Ask(int /*signal*/) {
  asked = 1;
}

}  // namespace

Interruption::Interruption() {
  asked = 0;
  struct sigaction ask {};
  ask.sa_handler = Ask;
  ask.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigaction(SIGINT, &ask, &interrupt_);
  sigaction(SIGTERM, &ask, &terminate_);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &interrupt_, nullptr);
  sigaction(SIGTERM, &terminate_, nullptr);
}

bool Interruption::Asked() const {
  return asked != 0;
}

}  // namespace kvshare::app
