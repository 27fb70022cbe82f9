// The process of the kvshare command.
#include <string>
#include <vector>

#include "apps/kvshare/cli.h"
#include "apps/kvshare/system/process.h"

int main(int argc, char** argv) {
  // A reader that goes away is then a failed write, reported like a full disk.
  kvshare::app::KeepRunningWithoutReaders();
  return kvshare::app::RunCommandLine(std::vector<std::string>(argv + 1, argv + argc), {});
}
