// A network path to a server that can go dead: both sides stay connected, and nothing passes.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace kvshare {

class Relay {
 public:
  // To a port of this machine.
  explicit Relay(int serverPort);
  ~Relay();
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;

  int Port() const { return port_; }
  void GoDead() { dead_ = true; }

 private:
  struct Path {
    int client;
    int server;
  };
  void Serve();
  void Accept();
  static bool Pass(int from, int to);

  int serverPort_;
  int listener_;
  int port_ = 0;
  std::vector<Path> paths_;
  std::atomic<bool> dead_ = false;
  std::atomic<bool> end_ = false;
  std::thread thread_;
};

}  // namespace kvshare
