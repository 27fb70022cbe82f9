// The smallest owners of the client's handles, and its errors.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers::sqlite {

struct CloseDatabase {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

// The error that the last call on the database ended with.
[[noreturn]] inline void Refuse(sqlite3* database) {
  const int code = sqlite3_errcode(database);
  const bool busy = code == SQLITE_BUSY || code == SQLITE_LOCKED;
  throw data::DriverError(sqlite3_errmsg(database),
                          busy ? data::DriverError::Kind::Busy : data::DriverError::Kind::Other,
                          sqlite3_extended_errcode(database));
}

// The only statement of the text; empty where there is none. Throws DriverError.
Statement Prepare(sqlite3* database, std::string_view sql);

}  // namespace kvshare::drivers::sqlite
