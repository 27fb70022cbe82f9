// Connections to SQLite files for tests.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/sql/sqlconnection.h"

namespace kvshare {

// A column type that holds every amount exactly.
inline constexpr std::string_view kExactMoney = "DECIMAL_TEXT(19,4) COLLATE DECIMAL";

// The file is created when it is missing.
inline void UseSqlite(TSQLConnection& connection, const std::string& file) {
  connection.SetDriverName("SQLITE");
  connection.LibraryName = "kvshare-sqlite";
  connection.GetDriverFunc = "getSQLDriverSQLITE";
  connection.Params.SetValue("Database", file);
  connection.Params.SetValue("CreateDatabase", "True");
}

}  // namespace kvshare
