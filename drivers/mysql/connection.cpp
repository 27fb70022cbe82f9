// MariaDB, MySQL and clusters of them.
#include <mysql.h>

#include <memory>
#include <string>

#include "drivers/common/cursors.h"
#include "drivers/common/entry.h"
#include "drivers/common/exactly.h"
#include "drivers/common/filled.h"
#include "drivers/common/mariadb.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sockets.h"
#include "drivers/common/statements.h"
#include "drivers/mysql/errors.h"
#include "drivers/mysql/rows.h"
#include "drivers/mysql/transaction.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::mysql {
namespace {

using data::Isolation;

constexpr unsigned kConnectSeconds = 15;

constexpr const char* kReadCommitted = "SET SESSION TRANSACTION ISOLATION LEVEL READ COMMITTED";

struct CloseConnection {
  void operator()(MYSQL* connection) const { mysql_close(connection); }
};

class MySqlConnection final : public data::Connection {
 public:
  ~MySqlConnection() override { Disconnect(); }

  void Connect(const std::vector<std::pair<std::string, std::string>>& list) override;
  void Disconnect() noexcept override {
    open_.AbandonAll();
    transaction_.Attach(nullptr);
    mysql_.reset();
  }
  std::int64_t Execute(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(const data::StatementParts& parts,
                                      std::span<const data::ParameterValue> parameters) override;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& statement) override;
  data::Lexis StatementLexis() const override;
  void Begin(Isolation isolation) override {
    Free();
    transaction_.Begin(isolation);
  }
  void Commit() override {
    Free();
    transaction_.Commit();
  }
  void Rollback() override {
    Free();
    transaction_.Rollback();
  }
  std::int64_t EarlyCommits() const override { return transaction_.State().Commits(); }
  std::int64_t EarlyRollbacks() const override { return transaction_.State().Rollbacks(); }
  Condition Exactly(std::string_view column, data::ColumnKind kind) const override;
  std::string Quoted(std::string_view name) const override { return drivers::QuotedBy('`', name); }
  std::vector<std::string> TableNames(bool system) override;
  std::vector<std::string> FilledColumns(std::string_view table) override {
    return drivers::FilledColumnsBy(drivers::kMariaDbFilled, *this, table);
  }
  bool InsertReturns() const override {
    constexpr unsigned long kFirstReturning = 100'500;
    return IsMariaDb() && mysql_get_server_version(mysql_.get()) >= kFirstReturning;
  }
  void SetLockTimeout(std::int32_t milliseconds) override;
  bool WaitsForServer() const override { return true; }
  void Abort() noexcept override { sockets_.ShutDown(); }
  std::string ServerVersion() override;

  // Before each statement.
  Transaction& Ready() {
    Free();
    transaction_.Settle();
    return transaction_;
  }

 private:
  void Free();
  Statement PrepareText(std::string_view sql);
  bool IsMariaDb() const;
  void Send(std::string_view sql);
  std::unique_ptr<data::Cursor> RowsSent();

  std::unique_ptr<MYSQL, CloseConnection> mysql_;
  drivers::OpenCursors open_;
  drivers::Sockets sockets_;
  Transaction transaction_;
  std::int32_t lockMilliseconds_ = 10'000;
};

void MySqlConnection::Connect(const std::vector<std::pair<std::string, std::string>>& list) {
  Disconnect();
  const drivers::Parameters parameters(list);
  parameters.RefuseCustomString();
  const drivers::ServerAddress server = drivers::SplitHostName(parameters.Get("HostName"));
  const std::string database = parameters.Get("Database");
  const std::string user = parameters.Get("User_Name");
  const std::string password = parameters.Get("Password");

  std::unique_ptr<MYSQL, CloseConnection> made(mysql_init(nullptr));
  if (!made) throw std::bad_alloc();
  mysql_options(made.get(), MYSQL_SET_CHARSET_NAME, "utf8mb4");
  mysql_options(made.get(), MYSQL_OPT_CONNECT_TIMEOUT, &kConnectSeconds);
  const unsigned never = 0;  // no file of this machine goes to a server that asks for it
  mysql_options(made.get(), MYSQL_OPT_LOCAL_INFILE, &never);
  if (!server.port.empty()) {  // `localhost` alone would mean the local socket
    const unsigned tcp = MYSQL_PROTOCOL_TCP;
    mysql_options(made.get(), MYSQL_OPT_PROTOCOL, &tcp);
  }
  const unsigned port = server.port.empty() ? 0 : static_cast<unsigned>(std::stoul(server.port));
  // A row that an update finds counts, though it had those values already.
  constexpr unsigned long kFlags = CLIENT_FOUND_ROWS | CLIENT_MULTI_RESULTS;
  if (mysql_real_connect(made.get(), server.host.empty() ? nullptr : server.host.c_str(),
                         user.c_str(), password.c_str(),
                         database.empty() ? nullptr : database.c_str(), port, nullptr,
                         kFlags) == nullptr) {
    Fail(made.get());
  }
  mysql_ = std::move(made);
  sockets_ = drivers::Sockets(static_cast<int>(mysql_get_socket(mysql_.get())));
  sockets_.KeepAlive();
  transaction_.Attach(mysql_.get());
  try {
    Execute(drivers::kMariaDbSession);
    Execute(kReadCommitted);
    SetLockTimeout(lockMilliseconds_);
  } catch (...) {
    Disconnect();
    throw;
  }
}

// The client has nothing else to do.
void MySqlConnection::Free() {
  if (!mysql_) throw data::DriverError("The connection is closed");
  open_.DetachAll();
}

void MySqlConnection::Send(std::string_view sql) {
  if (mysql_real_query(mysql_.get(), sql.data(), sql.size()) != 0) Fail(mysql_.get());
}

// With the session's sql_mode, which the server tells with each answer.
data::Lexis MySqlConnection::StatementLexis() const {
  unsigned status = 0;
  if (mysql_) mariadb_get_infov(mysql_.get(), MARIADB_CONNECTION_SERVER_STATUS, &status);
  const bool escapes = (status & SERVER_STATUS_NO_BACKSLASH_ESCAPES) == 0;
  return {.backslashEscapes = escapes,
          .escapesInDoubleQuotes = escapes && (status & SERVER_STATUS_ANSI_QUOTES) == 0,
          .hashComments = true,
          .dashesNeedBlank = true,
          .codeComments = true,
          .backticks = true};
}

std::int64_t MySqlConnection::Execute(std::string_view sql) {
  const std::int64_t changed = Ready().Watch(drivers::EndingOf(sql), [&] {
    Send(sql);
    return DrainResults(mysql_.get());
  });
  transaction_.Settle();
  return changed;
}

std::unique_ptr<data::Cursor> MySqlConnection::Query(std::string_view sql) {
  auto cursor = Ready().Watch(drivers::EndingOf(sql), [&] {
    Send(sql);
    return RowsSent();
  });
  if (!cursor) transaction_.Settle();
  return cursor;
}

std::unique_ptr<data::Cursor> MySqlConnection::RowsSent() {
  Result rows(mysql_use_result(mysql_.get()));
  if (rows) {
    return std::make_unique<drivers::DetachableCursor<TextRows>>(open_, mysql_.get(),
                                                                 std::move(rows));
  }
  if (mysql_field_count(mysql_.get()) != 0) Fail(mysql_.get());
  DrainResults(mysql_.get());
  return nullptr;
}

Statement MySqlConnection::PrepareText(std::string_view sql) {
  Statement statement(mysql_stmt_init(mysql_.get()));
  if (!statement) throw std::bad_alloc();
  if (mysql_stmt_prepare(statement.get(), sql.data(), sql.size()) != 0) Fail(statement.get());
  return statement;
}

class Prepared final : public data::PreparedStatement {
 public:
  Prepared(MySqlConnection& connection, Statement statement, std::vector<std::size_t> places,
           drivers::Ending ending)
      : connection_(connection),
        statement_(std::move(statement)),
        places_(std::move(places)),
        ending_(ending) {}

  std::int64_t Run(std::span<const data::ParameterValue> parameters) override {
    Transaction& transaction = connection_.Ready();
    const std::int64_t rows = transaction.Watch(ending_, [&] { return RunOnce(parameters); });
    transaction.Settle();
    return rows;
  }

 private:
  std::int64_t RunOnce(std::span<const data::ParameterValue> parameters) {
    ExecuteWith(statement_.get(), drivers::ValuesByPlace(places_, parameters));
    const bool gives = mysql_stmt_field_count(statement_.get()) != 0;
    const auto rows = static_cast<std::int64_t>(mysql_stmt_affected_rows(statement_.get()));
    mysql_stmt_free_result(statement_.get());
    return gives ? 0 : rows;
  }

  MySqlConnection& connection_;
  Statement statement_;
  std::vector<std::size_t> places_;
  drivers::Ending ending_;
};

std::unique_ptr<data::PreparedStatement> MySqlConnection::Prepare(
    const data::StatementParts& statement) {
  const std::string sql = drivers::MarkedByQuestions(statement);
  Ready();
  return std::make_unique<Prepared>(*this, PrepareText(sql), statement.places,
                                    drivers::EndingOf(sql));
}

std::unique_ptr<data::Cursor> MySqlConnection::Query(
    const data::StatementParts& parts, std::span<const data::ParameterValue> parameters) {
  const std::string sql = drivers::MarkedByQuestions(parts);
  auto cursor = Ready().Watch(drivers::EndingOf(sql), [&]() -> std::unique_ptr<data::Cursor> {
    Statement statement = PrepareText(sql);
    ExecuteWith(statement.get(), drivers::ValuesByPlace(parts.places, parameters));
    Result description(mysql_stmt_result_metadata(statement.get()));
    if (!description) return nullptr;
    return std::make_unique<drivers::DetachableCursor<StatementRows>>(open_, std::move(statement),
                                                                      std::move(description));
  });
  if (!cursor) transaction_.Settle();
  return cursor;
}

data::Connection::Condition MySqlConnection::Exactly(std::string_view column,
                                                     data::ColumnKind kind) const {
  return drivers::ExactlyBy(IsMariaDb() ? drivers::kMariaDbForms : drivers::kMySqlForms, column,
                            kind);
}

std::vector<std::string> MySqlConnection::TableNames(bool system) {
  const auto rows = Query(system ? "SELECT CONCAT(TABLE_SCHEMA, '.', TABLE_NAME)"
                                   " FROM information_schema.TABLES WHERE TABLE_SCHEMA IN"
                                   " ('information_schema', 'mysql', 'performance_schema', 'sys')"
                                 : "SHOW TABLES");
  std::vector<std::string> names;
  while (rows->Next()) names.emplace_back(rows->Text(0));
  return names;
}

void MySqlConnection::SetLockTimeout(std::int32_t milliseconds) {
  lockMilliseconds_ = milliseconds;
  if (!mysql_) return;
  const std::string seconds = std::to_string((std::int64_t{milliseconds} + 999) / 1000);
  Execute("SET SESSION innodb_lock_wait_timeout = " + seconds +
          ", SESSION lock_wait_timeout = " + seconds);
}

bool MySqlConnection::IsMariaDb() const {
  return std::string_view(mysql_get_server_info(mysql_.get())).find("MariaDB") !=
         std::string_view::npos;
}

std::string MySqlConnection::ServerVersion() {
  if (!mysql_) throw data::DriverError("The connection is closed");
  const std::string version = mysql_get_server_info(mysql_.get());
  return (IsMariaDb() ? "MariaDB " : "MySQL ") + version.substr(0, version.find('-'));
}

}  // namespace
}  // namespace kvshare::mysql

extern "C" KVSHARE_API kvshare::data::Driver* getSQLDriverMYSQL(std::int32_t contract) {
  using Driver = kvshare::drivers::DriverOf<kvshare::mysql::MySqlConnection>;
  return kvshare::drivers::DriverFor<Driver>(contract);
}
