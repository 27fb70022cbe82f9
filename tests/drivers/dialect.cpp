#include "tests/drivers/dialect.h"

#include <cstdlib>
#include <stdexcept>

namespace kvshare {
namespace {

constexpr Dialect kDialects[] = {
    {.server = "mariadb",
     .library = "libkvshare-mysql.so",
     .entry = "getSQLDriverMYSQL",
     .version = "MariaDB 1",
     .text = "LONGTEXT",
     .bytes = "LONGBLOB",
     .real = "DOUBLE",
     .boolean = "BIT(1)",
     .time = "TIME(3)",
     .moment = "DATETIME(3)",
     .upperNames = false,
     .padsCharacters = false,
     .snapshotConflict = false,
     .viaOdbc = false,
     .ownNumber = "SELECT CONNECTION_ID()",
     .kill = "KILL CONNECTION %"},
    {.server = "postgres",
     .library = "libkvshare-postgres.so",
     .entry = "getSQLDriverPOSTGRES",
     .version = "PostgreSQL 1",
     .text = "TEXT",
     .bytes = "BYTEA",
     .real = "DOUBLE PRECISION",
     .boolean = "BOOLEAN",
     .time = "TIME(3)",
     .moment = "TIMESTAMP(3)",
     .upperNames = false,
     .padsCharacters = true,
     .snapshotConflict = true,
     .viaOdbc = false,
     .ownNumber = "SELECT pg_backend_pid()",
     .kill = "SELECT pg_terminate_backend(%)"},
    {.server = "firebird",
     .library = "libkvshare-firebird.so",
     .entry = "getSQLDriverINTERBASE",
     .version = "Firebird 3",
     .text = "BLOB SUB_TYPE TEXT",
     .bytes = "BLOB",
     .real = "DOUBLE PRECISION",
     .boolean = "BOOLEAN",
     .time = "TIME",
     .moment = "TIMESTAMP",
     .upperNames = true,
     .padsCharacters = true,
     .snapshotConflict = true,
     .viaOdbc = false,
     .ownNumber = "SELECT CURRENT_CONNECTION FROM RDB$DATABASE",
     .kill = "DELETE FROM MON$ATTACHMENTS WHERE MON$ATTACHMENT_ID = %"},
    {.server = "odbc-mariadb",
     .library = "libkvshare-odbc.so",
     .entry = "getSQLDriverODBC",
     .version = "MariaDB 1",
     .text = "LONGTEXT",
     .bytes = "LONGBLOB",
     .real = "DOUBLE",
     .boolean = "BIT(1)",
     .time = "TIME(3)",
     .moment = "DATETIME(3)",
     .upperNames = false,
     .padsCharacters = false,
     .snapshotConflict = false,
     .viaOdbc = true,
     .ownNumber = "SELECT CONNECTION_ID()",
     .kill = "KILL CONNECTION %"},
    {.server = "odbc-postgres",
     .library = "libkvshare-odbc.so",
     .entry = "getSQLDriverODBC",
     .version = "PostgreSQL 1",
     .text = "TEXT",
     .bytes = "BYTEA",
     .real = "DOUBLE PRECISION",
     .boolean = "BOOLEAN",
     .time = "TIME(3)",
     .moment = "TIMESTAMP(3)",
     .upperNames = false,
     .padsCharacters = true,
     .snapshotConflict = true,
     .viaOdbc = true,
     .ownNumber = "SELECT pg_backend_pid()",
     .kill = "SELECT pg_terminate_backend(%)"},
};

}  // namespace

const Dialect& CurrentDialect() {
  const char* server = std::getenv("KVSHARE_SERVER");
  for (const Dialect& dialect : kDialects) {
    if (server != nullptr && std::string(server) == dialect.server) return dialect;
  }
  throw std::runtime_error("KVSHARE_SERVER names no server: run this by tests/servers/with-server");
}

}  // namespace kvshare
