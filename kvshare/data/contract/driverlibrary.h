// Drivers in their libraries.
// Internal header.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"
#include "kvshare/os/sharedlibrary.h"

namespace kvshare::data {

// The names that connection files have for a driver's library, and ours for it; other names stand
// for themselves.
std::string_view DriverLibraryName(std::string_view libraryName);

// Whether the name is the customary one of a client library, which our driver brings itself.
bool IsCustomaryClient(std::string_view vendorLib);

// A driver and the libraries that it lives in.
class DriverLibrary {
 public:
  // Loads `vendorLib` (unless it is empty or customary), then the driver's library, and asks its
  // entry function for the driver. Throws EDatabaseError in the platform's words, followed by the
  // files that were looked for.
  DriverLibrary(std::string_view libraryName, std::string_view driverFunc,
                std::string_view vendorLib);

  data::Driver& Driver() const { return *driver_; }

 private:
  os::SharedLibrary vendor_;
  os::SharedLibrary library_;
  data::Driver* driver_ = nullptr;
};

}  // namespace kvshare::data
