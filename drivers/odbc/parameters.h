// Values bound to the parameters of a statement.
#pragma once

#include <deque>
#include <span>
#include <string>

#include "drivers/odbc/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {

// The values of a prepared statement's parameters, kept for as long as it executes.
class BoundParameters {
 public:
  // Binds all of them, in their order. The statement reads them when it executes, from the memory
  // of this object and of `parameters`, which both have to live until then. Throws DriverError.
  BoundParameters(const Handle& statement, std::span<const data::ParameterValue> parameters);

  // One a kind of value; each binds the next parameter. A decimal goes as text, so that no driver
  // rounds it, a moment as the text of its server.
  void operator()(std::monostate);
  void operator()(const std::int64_t& value);
  void operator()(const double& value);
  void operator()(const std::string& text);
  void operator()(const data::Bytes& value);
  void operator()(const data::Decimal& value);
  void operator()(const data::Moment& value);

 private:
  void Bind(SQLSMALLINT valueType, SQLSMALLINT type, SQLULEN characters, const void* value,
            std::size_t bytes, SQLSMALLINT decimals = 0);

  const Handle& statement_;
  SQLUSMALLINT number_ = 0;
  // Deques, since the driver has the addresses of their elements.
  std::deque<std::u16string> texts_;
  std::deque<std::string> moments_;
  std::deque<SQLLEN> sizes_;
};

}  // namespace kvshare::odbc
