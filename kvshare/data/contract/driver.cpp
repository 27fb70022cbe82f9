#include "kvshare/data/contract/driver.h"

namespace kvshare::data {

DriverError::~DriverError() = default;

Connection::Condition Connection::Exactly(std::string_view column, ColumnKind /*kind*/) const {
  return {std::string(column) + " = ", ""};
}

std::string Connection::Quoted(std::string_view name) const {
  std::string quoted = "\"";
  for (const char c : name) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

}  // namespace kvshare::data
