#include <sql.h>
#include <sqlext.h>

#include <array>

#include "bench/servers/bare.h"

namespace kvshare::bench {
namespace {

SQLCHAR* Chars(std::string& text) {
  return reinterpret_cast<SQLCHAR*>(text.data());
}

std::size_t ReadRows(SQLHANDLE statement) {
  SQLINTEGER number = 0;
  std::array<std::array<char, 512>, 3> texts{};
  std::array<SQLLEN, 4> sizes{};
  SQLBindCol(statement, 1, SQL_C_SLONG, &number, sizeof number, sizes.data());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    SQLBindCol(statement, static_cast<SQLUSMALLINT>(i + 2), SQL_C_CHAR, texts[i].data(),
               static_cast<SQLLEN>(texts[i].size()), &sizes[i + 1]);
  }
  std::size_t sum = 0;
  while (SQL_SUCCEEDED(SQLFetch(statement))) {
    sum +=
        static_cast<std::size_t>(number) + static_cast<std::size_t>(sizes[1] + sizes[2] + sizes[3]);
  }
  return sum;
}

}  // namespace

std::size_t ReadByOdbc(const ConnectionParameters& parameters, const std::string& sql) {
  SQLHANDLE environment = nullptr;
  SQLHANDLE connection = nullptr;
  SQLHANDLE statement = nullptr;
  SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment);
  SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
  std::string where = Value(parameters, "Database") + ";UID=" + Value(parameters, "User_Name") +
                      ";PWD=" + Value(parameters, "Password");
  SQLDriverConnect(connection, nullptr, Chars(where), SQL_NTS, nullptr, 0, nullptr,
                   SQL_DRIVER_NOPROMPT);
  SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
  std::string text = sql;
  std::size_t sum = 0;
  if (SQL_SUCCEEDED(SQLExecDirect(statement, Chars(text), SQL_NTS))) sum = ReadRows(statement);
  SQLFreeHandle(SQL_HANDLE_STMT, statement);
  SQLDisconnect(connection);
  SQLFreeHandle(SQL_HANDLE_DBC, connection);
  SQLFreeHandle(SQL_HANDLE_ENV, environment);
  return sum;
}

}  // namespace kvshare::bench
