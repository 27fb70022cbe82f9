// The sockets of a connection, for what the clients do not do themselves.
#pragma once

#include <mutex>
#include <vector>

namespace kvshare::drivers {

class Sockets {
 public:
  Sockets() = default;
  explicit Sockets(int socket) : sockets_{socket} {}
  // Those of this process that are connected over a network.
  static Sockets OfProcess();

  Sockets Without(const Sockets& earlier) const;

  // The system asks after a minute of silence whether the other side is there, and takes it for
  // lost after another one.
  void KeepAlive() const noexcept;
  // Whoever waits for them meets their end.
  void ShutDown() const noexcept;

 private:
  std::vector<int> sockets_;
};

// What `connect` opens, for clients that tell no socket. Two connections are not made at once; a
// socket that another thread opens for other purposes meanwhile is taken for one of them.
template <typename Connect>
Sockets OpenedBy(Connect connect) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  const Sockets earlier = Sockets::OfProcess();
  connect();
  return Sockets::OfProcess().Without(earlier);
}

}  // namespace kvshare::drivers
