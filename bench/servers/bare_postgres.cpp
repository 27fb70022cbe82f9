#include <libpq-fe.h>

#include <charconv>

#include "bench/servers/bare.h"

namespace kvshare::bench {

std::size_t ReadByPostgres(const ConnectionParameters& parameters, const std::string& sql) {
  const std::string where = "host=127.0.0.1 dbname=ledger port=" + Port(parameters) +
                            " user=" + Value(parameters, "User_Name") +
                            " password=" + Value(parameters, "Password");
  PGconn* connection = PQconnectdb(where.c_str());
  std::size_t sum = 0;
  if (PQsendQuery(connection, sql.c_str()) == 1 && PQsetSingleRowMode(connection) == 1) {
    while (PGresult* row = PQgetResult(connection)) {
      if (PQresultStatus(row) == PGRES_SINGLE_TUPLE) {
        std::size_t number = 0;
        const char* digits = PQgetvalue(row, 0, 0);
        std::from_chars(digits, digits + PQgetlength(row, 0, 0), number);
        sum += number;
        for (int i = 1; i < 4; ++i) sum += static_cast<std::size_t>(PQgetlength(row, 0, i));
      }
      PQclear(row);
    }
  }
  PQfinish(connection);
  return sum;
}

}  // namespace kvshare::bench
