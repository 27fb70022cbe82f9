#include "tests/servers/serverprocess.h"

#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace kvshare {
namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

template <typename Condition>
void WaitUntil(Condition condition, const char* what) {
  constexpr int kTries = 3000;
  for (int i = 0; i < kTries; ++i) {
    if (condition()) return;
    usleep(10'000);
  }
  throw std::runtime_error(what);
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ServerLines(const std::string& file) {
  std::ifstream in(file);
  std::vector<std::pair<std::string, std::string>> lines;
  for (std::string line; std::getline(in, line);) {
    const std::size_t equals = line.find('=');
    lines.emplace_back(line.substr(0, equals), line.substr(equals + 1));
  }
  return lines;
}

std::string ServerFile() {
  return Variable("KVSHARE_SERVER_PARAMETERS");
}

int PidOfFile(const std::string& file) {
  for (const auto& [key, value] : ServerLines(file)) {
    if (key == "ServerPid") return std::stoi(value);
  }
  throw std::runtime_error("no ServerPid in " + file);
}

void KillServer() {
  const int pid = PidOfFile(ServerFile());
  if (kill(pid, SIGKILL) != 0) throw std::runtime_error("the server cannot be killed");
  WaitUntil([pid] { return kill(pid, 0) != 0; }, "the server does not die");
}

void RunServerAgain() {
  const int pid = PidOfFile(ServerFile());
  if (kill(std::stoi(Variable("KVSHARE_SERVER_KEEPER")), SIGUSR1) != 0) {
    throw std::runtime_error("nobody runs the server again");
  }
  WaitUntil([pid] { return PidOfFile(ServerFile()) != pid; }, "the server does not run again");
}

}  // namespace kvshare
