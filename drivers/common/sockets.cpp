#include "drivers/common/sockets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string>
#include <system_error>

namespace kvshare::drivers {
namespace {

bool IsConnected(int socket) {
  sockaddr_storage peer{};
  socklen_t size = sizeof peer;
  if (getpeername(socket, reinterpret_cast<sockaddr*>(&peer), &size) != 0) return false;
  return peer.ss_family == AF_INET || peer.ss_family == AF_INET6;
}

void Set(int socket, int level, int option, int value) {
  setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

Sockets Sockets::OfProcess() {
  Sockets found;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
    const std::string name = entry.path().filename();
    int descriptor = -1;
    std::from_chars(name.data(), name.data() + name.size(), descriptor);
    if (IsConnected(descriptor)) found.sockets_.push_back(descriptor);
  }
  return found;
}

Sockets Sockets::Without(const Sockets& earlier) const {
  Sockets others = *this;
  std::erase_if(others.sockets_, [&earlier](int socket) {
    return std::ranges::find(earlier.sockets_, socket) != earlier.sockets_.end();
  });
  return others;
}

// A socket of the machine itself has no network, and refuses.
void Sockets::KeepAlive() const noexcept {
  constexpr int kSilence = 60;
  constexpr int kBetween = 10;
  constexpr int kProbes = 6;
  for (const int socket : sockets_) {
    Set(socket, SOL_SOCKET, SO_KEEPALIVE, 1);
    Set(socket, IPPROTO_TCP, TCP_KEEPIDLE, kSilence);
    Set(socket, IPPROTO_TCP, TCP_KEEPINTVL, kBetween);
    Set(socket, IPPROTO_TCP, TCP_KEEPCNT, kProbes);
    Set(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, (kSilence + kBetween * kProbes) * 1000);
  }
}

void Sockets::ShutDown() const noexcept {
  for (const int socket : sockets_) shutdown(socket, SHUT_RDWR);
}

}  // namespace kvshare::drivers
