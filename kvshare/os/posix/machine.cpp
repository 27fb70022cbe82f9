#include "kvshare/os/machine.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <pwd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <memory>
#include <string_view>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/environment.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

std::string HostName() {
  std::array<char, 256> name{};  // stays ended by a zero byte where the system cuts
  if (::gethostname(name.data(), name.size() - 1) != 0) return {};
  return name.data();
}

// As the system's list of users has it now.
std::string NameOfUser(uid_t user) {
  constexpr std::size_t kMostBytes = std::size_t{1} << 20;
  passwd entry{};
  passwd* found = nullptr;
  for (std::size_t size = 1024; size <= kMostBytes; size *= 2) {
    std::vector<char> texts(size);
    const int error = ::getpwuid_r(user, &entry, texts.data(), size, &found);
    if (error == 0) return found != nullptr ? entry.pw_name : std::string();
    if (error != ERANGE && error != EINTR) break;
  }
  return {};
}

struct User {
  uid_t id;
  std::string name;
};

// Asking the system reads its list of users each time; a process that asks for every line of a log
// would do little else. It changes its user rarely, and a user his name hardly ever.
std::string EffectiveUserName() {
  static std::atomic<std::shared_ptr<const User>> known;
  const uid_t id = ::geteuid();
  std::shared_ptr<const User> user = known.load();
  if (!user || user->id != id) {
    user = std::make_shared<const User>(User{id, NameOfUser(id)});
    if (!user->name.empty()) known.store(user);
  }
  return user->name;
}

// A name in code page 874 for a buffer that also takes a zero byte.
std::optional<std::string> FittingName(std::string_view utf8, std::size_t bufferSize) {
  std::optional<std::string> name = TryUtf8ToCp874(utf8);
  if (name && (name->empty() || name->size() >= bufferSize)) name.reset();
  return name;
}

}  // namespace

std::optional<std::string> ComputerName(std::size_t bufferSize) {
  std::string name(Environment("KVSHARE_COMPUTER"));
  if (name.empty()) {
    const std::string host = HostName();
    name = host.substr(0, host.find('.'));
  }
  return FittingName(UpperCase(name), bufferSize);
}

std::optional<std::string> LoginName(std::size_t bufferSize) {
  std::string name(Environment("KVSHARE_USER"));
  if (name.empty()) name = EffectiveUserName();
  return FittingName(name, bufferSize);
}

std::string HostAddress() {
  const std::string host = HostName();
  addrinfo wanted{};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  if (host.empty() || ::getaddrinfo(host.c_str(), nullptr, &wanted, &list) != 0) return {};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(list, &::freeaddrinfo);

  const auto* address = reinterpret_cast<const sockaddr_in*>(addresses->ai_addr);
  std::array<char, INET_ADDRSTRLEN> text{};
  const char* dotted = ::inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size());
  return dotted != nullptr ? dotted : "";
}

std::uint32_t TickCount() {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart);
  return static_cast<std::uint32_t>(milliseconds.count());
}

std::string NewGuid() {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::array<unsigned char, 16> bytes{};
  if (::getentropy(bytes.data(), bytes.size()) != 0) {
    throw EOSError("The system has no random bytes");
  }
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);  // version 4: random
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);  // variant of RFC 9562
  std::string guid = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) guid += '-';
    guid += kDigits[bytes[i] >> 4];
    guid += kDigits[bytes[i] & 0x0F];
  }
  return guid += '}';
}

}  // namespace kvshare::os
