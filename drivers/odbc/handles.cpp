#include "drivers/odbc/handles.h"

#include <algorithm>
#include <array>

#include "drivers/common/mariadb.h"
#include "drivers/odbc/utf16.h"

namespace kvshare::odbc {
namespace {

using data::DriverError;

struct KindRow {
  std::string_view state;  // or its class
  SQLINTEGER code;         // of the server; 0: any
  DriverError::Kind kind;
};
constexpr KindRow kKinds[] = {
    {"08", 0, DriverError::Kind::ConnectionLost},
    {"25S01", 0, DriverError::Kind::ConnectionLost},  // whether it was committed is not known
    {"40003", 0, DriverError::Kind::ConnectionLost},
    {"57P", 0, DriverError::Kind::ConnectionLost},  // PostgreSQL stops or has crashed
    {"40001", 0, DriverError::Kind::Conflict},
    {"40P01", 0, DriverError::Kind::Conflict},        // PostgreSQL: deadlock
    {"55P03", 0, DriverError::Kind::Busy},            // PostgreSQL: waited too long for a lock
    {"HYT01", 0, DriverError::Kind::ConnectionLost},  // no answer in time
    {"HYT", 0, DriverError::Kind::Busy},              // timeouts
    {"HY000", 1205, DriverError::Kind::Busy},         // MariaDB: the same
    {"HY000", 1222, DriverError::Kind::Busy},         // SQL Server: the same
    {"42000", 1222, DriverError::Kind::Busy},
    {"HY000", 1213, DriverError::Kind::Conflict},        // MariaDB: deadlock
    {"70100", 1927, DriverError::Kind::ConnectionLost},  // MariaDB: the connection was killed
    {"HY", 2002, DriverError::Kind::ConnectionLost},     // MariaDB: its client, as in its driver
    {"HY", 2003, DriverError::Kind::ConnectionLost},
    {"HY", 2006, DriverError::Kind::ConnectionLost},
    {"HY", 2013, DriverError::Kind::ConnectionLost},
};

struct Report {
  std::string text;
  std::string state;
  SQLINTEGER code = 0;
};

// "[vendor][driver]the server's words" without what comes from on the way.
std::string_view WithoutOrigin(std::string_view text) {
  while (text.starts_with('[') && text.find(']') != std::string_view::npos) {
    text.remove_prefix(text.find(']') + 1);
  }
  return text;
}

Report ReportOf(SQLSMALLINT type, SQLHANDLE handle) {
  Report report;
  std::array<char16_t, 6> state{};
  std::array<char16_t, 2048> text{};
  SQLINTEGER code = 0;
  SQLSMALLINT size = 0;
  for (SQLSMALLINT i = 1;
       SQL_SUCCEEDED(SQLGetDiagRecW(type, handle, i, Units(state.data()), &code, Units(text.data()),
                                    static_cast<SQLSMALLINT>(text.size()), &size));
       ++i) {
    std::string line;
    const auto units = std::min<std::size_t>(static_cast<std::size_t>(size), text.size() - 1);
    AppendUtf8(line, {text.data(), units});
    if (i == 1) {
      AppendUtf8(report.state, {state.data(), 5});
      report.code = code;
    } else {
      report.text += '\n';
    }
    report.text += WithoutOrigin(line);
  }
  return report;
}

DriverError::Kind KindOf(const Report& report) {
  for (const KindRow& row : kKinds) {
    if (report.state.starts_with(row.state) && (row.code == 0 || row.code == report.code)) {
      return row.kind;
    }
  }
  return DriverError::Kind::Other;
}

constexpr drivers::ExactForms kSqlServerForms{{"", " COLLATE Latin1_General_BIN2"}, {"", ""}};

constexpr data::Lexis kMySqlLexis{.backslashEscapes = true,
                                  .escapesInDoubleQuotes = true,
                                  .hashComments = true,
                                  .dashesNeedBlank = true,
                                  .codeComments = true,
                                  .backticks = true};
constexpr data::Lexis kPostgresLexis{.nestedComments = true,
                                     .dollarQuotes = true,
                                     .escapeTexts = true,
                                     .subscripts = true,
                                     .questionOperators = true};

// Without it the server reads a moment beside a day as a day.
std::string PostgresTypeOf(const data::ParameterValue& value) {
  if (std::holds_alternative<data::Decimal>(value)) return "NUMERIC";
  const auto* moment = std::get_if<data::Moment>(&value);
  if (moment == nullptr) return "";
  if (moment->kind == data::ColumnKind::Date) return "DATE";
  return moment->kind == data::ColumnKind::Time ? "TIME" : "TIMESTAMP";
}

// Without it the server misses rows of NOT BETWEEN where it uses an index.
std::string MariaDbTypeOf(const data::ParameterValue& value) {
  const auto* moment = std::get_if<data::Moment>(&value);
  return moment != nullptr && moment->kind != data::ColumnKind::Time ? "DATETIME(3)" : "";
}

constexpr Dialect kDialects[] = {
    {.name = "MariaDB",
     .session = drivers::kMariaDbSession,
     .lockTimeout = "SET SESSION innodb_lock_wait_timeout = ",
     .lockTimeoutToo = "SET SESSION lock_wait_timeout = ",
     .exactly = drivers::kMariaDbForms,
     .typeOf = MariaDbTypeOf,
     .filled = &drivers::kMariaDbFilled,
     .firstReturning = "10.05",
     .inSeconds = true,
     .quote = '`',
     .lexis = kMySqlLexis},
    {.name = "MySQL",
     .session = drivers::kMariaDbSession,
     .lockTimeout = "SET SESSION innodb_lock_wait_timeout = ",
     .lockTimeoutToo = "SET SESSION lock_wait_timeout = ",
     .exactly = drivers::kMySqlForms,
     .typeOf = MariaDbTypeOf,
     .filled = &drivers::kMariaDbFilled,
     .leastTimeout = 1,
     .inSeconds = true,
     .quote = '`',
     .lexis = kMySqlLexis},
    {.name = "PostgreSQL",
     .lockTimeout = "SET lock_timeout = ",
     .typeOf = PostgresTypeOf,
     .filled = &drivers::kPostgresFilled,
     .firstReturning = "",
     .leastTimeout = 1,
     .failureEndsTransaction = true,
     .nullTests = drivers::NullTests::Typed,
     .lexis = kPostgresLexis},
    {.name = "Microsoft SQL Server",
     .lockTimeout = "SET LOCK_TIMEOUT ",
     .exactly = kSqlServerForms,
     .lexis = {.brackets = true, .nestedComments = true}},
    {.name = "SQLite",
     .exactly = drivers::kPlainSqliteForms,
     .filled = &drivers::kSqliteFilled,
     .sqlite = true,
     .lexis = {.backticks = true, .brackets = true}},
    {.name = ""},
};

}  // namespace

Handle::Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type) {
  if (SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_))) return;
  handle_ = nullptr;
  // A connection that was lost has no statements any more.
  const SQLSMALLINT parentType = type == SQL_HANDLE_STMT ? SQL_HANDLE_DBC : SQL_HANDLE_ENV;
  const Report report = parent != nullptr ? ReportOf(parentType, parent) : Report();
  throw DriverError(report.text.empty() ? "No handle of the driver manager" : report.text,
                    KindOf(report), report.code);
}

void Handle::Reset() noexcept {
  if (handle_ != nullptr) SQLFreeHandle(type_, std::exchange(handle_, nullptr));
}

void Handle::Check(SQLRETURN result) const {
  if (SQL_SUCCEEDED(result) || result == SQL_NO_DATA) return;
  const Report report = ReportOf(type_, handle_);
  throw DriverError(report.text.empty() ? "A call of the driver manager failed" : report.text,
                    KindOf(report), report.code);
}

const Dialect& DialectOf(std::string_view dbmsName) {
  return *std::ranges::find_if(
      kDialects, [dbmsName](const Dialect& dialect) { return dbmsName.starts_with(dialect.name); });
}

}  // namespace kvshare::odbc
