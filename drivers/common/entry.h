// What every driver's entry function answers.
#pragma once

#include <cstdint>
#include <memory>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

template <typename Connection>
class DriverOf : public data::Driver {
 public:
  std::unique_ptr<data::Connection> MakeConnection() override {
    return std::make_unique<Connection>();
  }
};

// The library's one driver, for a program that was built with the same contract; else nullptr.
template <typename Driver>
data::Driver* DriverFor(std::int32_t contract) {
  static Driver driver;
  return contract == data::kDriverContract ? &driver : nullptr;
}

}  // namespace kvshare::drivers
