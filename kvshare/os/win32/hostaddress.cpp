// Sockets are loaded when the address is asked for: programs that never ask start without them, and
// a system without a network answers "".
#include "kvshare/os/machine.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "kvshare/os/win32/handle.h"

// Behind the types that they need.
#include <winsock2.h>
#include <ws2tcpip.h>

namespace kvshare::os {

namespace {

struct FreeModule {
  void operator()(HMODULE module) const { FreeLibrary(module); }
};
using Module = std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule>;

class Sockets {
 public:
  Sockets() : module_(LoadLibraryW(L"ws2_32.dll")) {
    Load("WSAStartup", startup_);
    Load("WSACleanup", cleanup_);
    Load("GetAddrInfoW", find_);
    Load("FreeAddrInfoW", free_);
    const bool complete =
        startup_ != nullptr && cleanup_ != nullptr && find_ != nullptr && free_ != nullptr;
    WSADATA facts{};
    ready_ = complete && startup_(MAKEWORD(2, 2), &facts) == 0;
  }
  ~Sockets() {
    if (ready_) cleanup_();
  }
  Sockets(const Sockets&) = delete;
  Sockets& operator=(const Sockets&) = delete;

  // The first IPv4 address; "" where there is none.
  std::string AddressOf(const wchar_t* host) const {
    ADDRINFOW wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    ADDRINFOW* list = nullptr;
    if (!ready_ || find_(host, nullptr, &wanted, &list) != 0) return {};
    const std::unique_ptr<ADDRINFOW, decltype(free_)> addresses(list, free_);
    return list != nullptr ? Dotted(*list) : std::string();
  }

 private:
  template <typename Function>
  void Load(const char* name, Function& function) const {
    if (module_) function = std::bit_cast<Function>(GetProcAddress(module_.get(), name));
  }

  static std::string Dotted(const ADDRINFOW& found) {
    sockaddr_in address{};
    std::memcpy(&address, found.ai_addr, std::min(sizeof address, std::size_t{found.ai_addrlen}));
    const auto bytes = std::bit_cast<std::array<unsigned char, 4>>(address.sin_addr);
    return std::to_string(bytes[0]) + '.' + std::to_string(bytes[1]) + '.' +
           std::to_string(bytes[2]) + '.' + std::to_string(bytes[3]);
  }

  Module module_;
  decltype(&::WSAStartup) startup_ = nullptr;
  decltype(&::WSACleanup) cleanup_ = nullptr;
  decltype(&::GetAddrInfoW) find_ = nullptr;
  decltype(&::FreeAddrInfoW) free_ = nullptr;
  bool ready_ = false;
};

}  // namespace

std::string HostAddress() {
  std::array<wchar_t, 256> host{};
  auto size = static_cast<DWORD>(host.size());
  if (GetComputerNameExW(ComputerNameDnsHostname, host.data(), &size) == 0) return {};
  return Sockets().AddressOf(host.data());
}

}  // namespace kvshare::os
