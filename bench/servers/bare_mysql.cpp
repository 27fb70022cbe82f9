#include <mysql.h>

#include <charconv>

#include "bench/servers/bare.h"

namespace kvshare::bench {

namespace {

MYSQL* Connect(const ConnectionParameters& parameters) {
  MYSQL* mysql = mysql_init(nullptr);
  mysql_options(mysql, MYSQL_SET_CHARSET_NAME, "utf8mb4");
  mysql_real_connect(mysql, "127.0.0.1", Value(parameters, "User_Name").c_str(),
                     Value(parameters, "Password").c_str(), "ledger",
                     static_cast<unsigned>(std::stoul(Port(parameters))), nullptr, 0);
  return mysql;
}

}  // namespace

std::size_t ReadByMySql(const ConnectionParameters& parameters, const std::string& sql) {
  MYSQL* mysql = Connect(parameters);
  if (mysql_real_query(mysql, sql.data(), sql.size()) != 0) {
    mysql_close(mysql);
    return 0;
  }
  MYSQL_RES* result = mysql_use_result(mysql);
  std::size_t sum = 0;
  while (char** row = mysql_fetch_row(result)) {
    const unsigned long* sizes = mysql_fetch_lengths(result);
    std::size_t number = 0;
    if (row[0] != nullptr) std::from_chars(row[0], row[0] + sizes[0], number);
    sum += number + sizes[1] + sizes[2] + sizes[3];
  }
  mysql_free_result(result);
  mysql_close(mysql);
  return sum;
}

bool RunByMySql(const ConnectionParameters& parameters,
                const std::vector<std::string>& statements) {
  static MYSQL* const mysql = Connect(parameters);
  bool done = mysql_query(mysql, "START TRANSACTION") == 0;
  for (const std::string& statement : statements) {
    done = done && mysql_real_query(mysql, statement.data(), statement.size()) == 0;
  }
  return mysql_query(mysql, "COMMIT") == 0 && done;
}

}  // namespace kvshare::bench
