#include "apps/kvshare/system/process.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace kvshare::app {

namespace {

volatile std::sig_atomic_t asked = 0;

struct Actions {
  struct sigaction interrupt {};
  struct sigaction terminate {};
};
Actions earlier;  // before the Interruption that lives

void Ask(int /*signal*/) {
  asked = 1;
}

}  // namespace

void KeepRunningWithoutReaders() {
  std::signal(SIGPIPE, SIG_IGN);
}

void SetEnvironment(const std::string& name, const std::string& value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

bool MayWriteInto(const std::filesystem::path& folder) {
  return ::access(folder.c_str(), W_OK | X_OK) == 0;
}

Interruption::Interruption() {
  asked = 0;
  struct sigaction ask {};
  ask.sa_handler = Ask;
  ask.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigaction(SIGINT, &ask, &earlier.interrupt);
  sigaction(SIGTERM, &ask, &earlier.terminate);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &earlier.interrupt, nullptr);
  sigaction(SIGTERM, &earlier.terminate, nullptr);
}

bool Interruption::Asked() const {
  return asked != 0;
}

}  // namespace kvshare::app
