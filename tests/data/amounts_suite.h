// What a server computes from amounts, days and moments, and what it finds by them: the same on
// every connection, and the same as exact decimals.
#pragma once

#include <string>
#include <string_view>

#include "tests/data/driver_suite.h"

namespace kvshare {

class AmountsSuite : public DriverSuite {
 protected:
  void SetUp() override;

  // The rows, `12.5 null;7 2`; of amounts the digits that they have. A value is an amount, or a
  // date or moment behind a `d` or `m`, or nothing; it stands for P wherever that is, and Q is
  // `other`.
  std::string Found(std::string_view sql, std::string_view value, std::string_view other = {});
  std::string FoundIds(const std::string& condition, std::string_view value,
                       std::string_view other = {});
  void Write(std::string_view sql, std::string_view value);
  // An expression at four decimals.
  static std::string Rounded(const std::string& sql) {
    return GetParam().round + sql + GetParam().toFour;
  }
};

}  // namespace kvshare
