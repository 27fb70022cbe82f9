// The connection parameters as a driver reads them.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvshare::drivers {

class Parameters {
 public:
  explicit Parameters(std::vector<std::pair<std::string, std::string>> list)
      : list_(std::move(list)) {}

  // The value of the first parameter of that name, whatever its letter case; "" when there is none.
  std::string Get(std::string_view name) const;
  // "True", in any letter case.
  bool IsTrue(std::string_view name) const;
  // Throws DriverError where the parameter of the driver's own says something.
  void RefuseCustomString() const;

 private:
  std::vector<std::pair<std::string, std::string>> list_;
};

struct ServerAddress {
  std::string host;  // "" where HostName is empty
  std::string port;  // "" where HostName names none
};

// Takes `host`, `host:port`, `[v6 address]:port` or a bare v6 address apart. Throws DriverError
// where the port is not a port number.
ServerAddress SplitHostName(std::string_view hostName);

}  // namespace kvshare::drivers
