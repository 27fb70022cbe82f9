#include <libpq-fe.h>

#include <charconv>

#include "bench/servers/bare.h"

namespace kvshare::bench {

namespace {

PGconn* Connect(const ConnectionParameters& parameters) {
  const std::string where = "host=127.0.0.1 dbname=ledger port=" + Port(parameters) +
                            " user=" + Value(parameters, "User_Name") +
                            " password=" + Value(parameters, "Password");
  return PQconnectdb(where.c_str());
}

bool Run(PGconn* connection, const char* statement) {
  PGresult* result = PQexec(connection, statement);
  const bool done = PQresultStatus(result) == PGRES_COMMAND_OK;
  PQclear(result);
  return done;
}

}  // namespace

std::size_t ReadByPostgres(const ConnectionParameters& parameters, const std::string& sql) {
  PGconn* connection = Connect(parameters);
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

bool RunByPostgres(const ConnectionParameters& parameters,
                   const std::vector<std::string>& statements) {
  static PGconn* const connection = Connect(parameters);
  bool done = Run(connection, "BEGIN");
  for (const std::string& statement : statements) {
    done = done && Run(connection, statement.c_str());
  }
  return Run(connection, "COMMIT") && done;
}

}  // namespace kvshare::bench
