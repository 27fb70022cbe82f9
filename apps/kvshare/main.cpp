#include <csignal>
#include <string>
#include <vector>

#include "apps/kvshare/cli.h"

int main(int argc, char** argv) {
  // A reader that goes away is then a failed write, told like a full disk.
  std::signal(SIGPIPE, SIG_IGN);
  return kvshare::app::RunCommandLine(std::vector<std::string>(argv + 1, argv + argc), {});
}
