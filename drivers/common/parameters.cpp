#include "drivers/common/parameters.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {
namespace {

bool SameText(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::ranges::equal(a, b, {}, lower, lower);
}

std::string CheckedPort(std::string_view port, std::string_view hostName) {
  std::uint16_t number = 0;
  const char* end = port.data() + port.size();
  const auto [rest, error] = std::from_chars(port.data(), end, number);
  if (error != std::errc() || rest != end || number == 0) {
    throw data::DriverError("HostName " + std::string(hostName) +
                            ": the port is no number from 1 to 65535");
  }
  return std::string(port);
}

}  // namespace

std::string Parameters::Get(std::string_view name) const {
  for (const auto& [key, value] : list_) {
    if (SameText(key, name)) return value;
  }
  return {};
}

bool Parameters::IsTrue(std::string_view name) const {
  return SameText(Get(name), "true");
}

void Parameters::RefuseCustomString() const {
  if (!Get("Custom String").empty()) {
    throw data::DriverError("the parameter Custom String has no meaning for this driver");
  }
}

ServerAddress SplitHostName(std::string_view hostName) {
  const std::size_t colon = hostName.rfind(':');
  const std::size_t bracket = hostName.rfind(']');
  const bool bracketed = hostName.starts_with('[') && bracket != std::string_view::npos;
  if (bracketed) {
    const std::string host(hostName.substr(1, bracket - 1));
    if (bracket + 1 == hostName.size()) return {host, {}};
    if (hostName[bracket + 1] != ':')
      throw data::DriverError("HostName " + std::string(hostName) + ": no address");
    return {host, CheckedPort(hostName.substr(bracket + 2), hostName)};
  }
  const bool bareV6 = colon != hostName.find(':');
  if (colon == std::string_view::npos || bareV6) return {std::string(hostName), {}};
  return {std::string(hostName.substr(0, colon)),
          CheckedPort(hostName.substr(colon + 1), hostName)};
}

}  // namespace kvshare::drivers
