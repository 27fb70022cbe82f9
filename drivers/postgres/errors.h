// What the client reports, as the contract wants it.
#pragma once

#include <libpq-fe.h>

#include <memory>

namespace kvshare::postgres {

struct ClearResult {
  void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ClearResult>;

// Throws DriverError with the result's error, or the connection's where there is no result.
[[noreturn]] void Fail(PGconn* connection, const PGresult* result);

}  // namespace kvshare::postgres
