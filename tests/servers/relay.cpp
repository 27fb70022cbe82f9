#include "tests/servers/relay.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace kvshare {
namespace {

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

void Require(bool done, const char* what) {
  if (!done) throw std::runtime_error(what);
}

bool HasBytes(int socket, int milliseconds) {
  pollfd waiting{socket, POLLIN, 0};
  return poll(&waiting, 1, milliseconds) == 1;
}

}  // namespace

Relay::Relay(int serverPort)
    : serverPort_(serverPort), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address = Loopback(0);
  auto* name = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  Require(bind(listener_, name, size) == 0 && listen(listener_, 5) == 0, "no port for the relay");
  Require(getsockname(listener_, name, &size) == 0, "the relay has no name");
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { Serve(); });
}

Relay::~Relay() {
  end_ = true;
  thread_.join();
  close(listener_);
  for (const Path& path : paths_) {
    close(path.client);
    close(path.server);
  }
}

void Relay::Accept() {
  const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const sockaddr_in address = Loopback(serverPort_);
  Require(connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
          "the relay cannot reach the server");
  paths_.push_back({client, server});
}

bool Relay::Pass(int from, int to) {
  std::array<char, 65536> bytes{};
  const ssize_t size = recv(from, bytes.data(), bytes.size(), 0);
  if (size > 0) return send(to, bytes.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL) > 0;
  shutdown(to, SHUT_WR);
  return false;
}

void Relay::Serve() {
  constexpr int kMoment = 2;
  while (!end_) {
    if (HasBytes(listener_, kMoment)) Accept();
    for (Path& path : paths_) {
      for (const auto& [from, to] : {Path{path.client, path.server}, {path.server, path.client}}) {
        while (!dead_ && !end_ && HasBytes(from, 0) && Pass(from, to)) {
        }
      }
    }
  }
}

}  // namespace kvshare
