// The client's status vector, and errors made of it.
#pragma once

#include <ibase.h>

#include <array>

namespace kvshare::firebird {

class Status {
 public:
  ISC_STATUS* Vector() { return vector_.data(); }
  bool Failed() const { return vector_[0] == isc_arg_gds && vector_[1] != 0; }

  // Throws DriverError where the last call failed.
  void Check() const {
    if (Failed()) Fail();
  }
  [[noreturn]] void Fail() const;

 private:
  std::array<ISC_STATUS, ISC_STATUS_LENGTH> vector_{};
};

}  // namespace kvshare::firebird
