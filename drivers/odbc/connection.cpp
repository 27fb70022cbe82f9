// Whatever has an ODBC driver: SQL Server, Access, Oracle and the rest.
#include <array>
#include <memory>
#include <string>

#include "drivers/common/cursors.h"
#include "drivers/common/entry.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sockets.h"
#include "drivers/common/sqlitestatement.h"
#include "drivers/common/statements.h"
#include "drivers/odbc/handles.h"
#include "drivers/odbc/parameters.h"
#include "drivers/odbc/rows.h"
#include "drivers/odbc/transaction.h"
#include "drivers/odbc/utf16.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {
namespace {

using data::Isolation;
using drivers::Parameters;

constexpr std::uintptr_t kConnectSeconds = 15;

// In braces where a character of it would mean something; not every driver takes them always.
std::string Quoted(std::string_view value) {
  if (value.find_first_of(";{}[]() ") == std::string_view::npos) return std::string(value);
  std::string quoted = "{";
  for (const char c : value) quoted.append(c == '}' ? 2 : 1, c);
  return quoted + "}";
}

std::string ConnectionString(const Parameters& parameters) {
  const std::string database = parameters.Get("Database");
  const bool whole = database.find('=') != std::string::npos;
  std::string text = whole ? database : "DSN=" + database;
  const auto add = [&text](std::string_view key, const std::string& value) {
    if (value.empty()) return;
    text += text.ends_with(';') ? "" : ";";
    text += key;
    text += '=';
    text += value;
  };
  const drivers::ServerAddress server = drivers::SplitHostName(parameters.Get("HostName"));
  add("Server", server.host);
  add("Port", server.port);
  add("UID", Quoted(parameters.Get("User_Name")));
  add("PWD", Quoted(parameters.Get("Password")));
  if (const std::string custom = parameters.Get("Custom String"); !custom.empty()) {
    text += (text.ends_with(';') ? "" : ";") + custom;
  }
  return text;
}

// psqlodbc undoes a whole transaction where the first statement after BEGIN fails, and goes on as
// if it were still there, unless this setting leaves failures to the server.
constexpr std::string_view kLeavesFailuresAlone = ";Protocol=7.4-0";

// Some drivers give all tables, and mark the system's tables by their catalogue alone.
bool IsSystemTable(const Rows& rows) {
  if (!rows.IsNull(3) && rows.Text(3).starts_with("SYSTEM")) return true;
  if (rows.IsNull(0)) return false;
  const std::string catalog(rows.Text(0));
  return catalog == "mysql" || catalog == "information_schema" || catalog == "performance_schema" ||
         catalog == "sys";
}

// A statement as a server gets it, and its values by place.
struct Placed {
  std::u16string text;
  std::vector<data::ParameterValue> values;
};

Placed PlacedForSqlite(const data::StatementParts& parts,
                       std::span<const data::ParameterValue> parameters) {
  drivers::CheckParameters(parts.Parameters(), parameters.size());
  std::vector<drivers::sqlite::ValueClass> classes;
  for (const data::ParameterValue& value : parameters)
    classes.push_back(drivers::sqlite::ClassOf(value));
  const drivers::sqlite::MarkedStatement marked(parts, classes, {});
  Placed placed{ToUtf16(marked.Text()), {}};
  for (std::size_t i = 0; i < marked.Slots(); ++i) {
    data::ParameterValue made;
    placed.values.push_back(marked.Value(i, parameters, made));
  }
  return placed;
}

class OdbcConnection final : public data::Connection {
 public:
  ~OdbcConnection() override { Disconnect(); }

  void Connect(const std::vector<std::pair<std::string, std::string>>& list) override;
  void Disconnect() noexcept override;
  std::int64_t Execute(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(const data::StatementParts& parts,
                                      std::span<const data::ParameterValue> parameters) override;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& parts) override;
  data::Lexis StatementLexis() const override;
  void Begin(Isolation isolation) override {
    RequireOpen();
    transaction_.Begin(isolation);
  }
  void Commit() override;
  void Rollback() override;
  std::int64_t EarlyCommits() const override { return transaction_.State().Commits(); }
  std::int64_t EarlyRollbacks() const override { return transaction_.State().Rollbacks(); }
  bool FailureEndsTransaction() const override { return DialectOf(dbms_).failureEndsTransaction; }
  Condition Exactly(std::string_view column, data::ColumnKind kind) const override {
    return drivers::ExactlyBy(DialectOf(dbms_).exactly, column, kind);
  }
  std::string Quoted(std::string_view name) const override {
    return drivers::QuotedBy(DialectOf(dbms_).quote, name);
  }
  std::vector<std::string> TableNames(bool system) override;
  std::vector<std::string> FilledColumns(std::string_view table) override;
  bool InsertReturns() const override { return returns_; }
  void SetLockTimeout(std::int32_t milliseconds) override;
  bool WaitsForServer() const override { return true; }
  void Abort() noexcept override { sockets_.ShutDown(); }
  std::string ServerVersion() override { return Info(SQL_DBMS_NAME) + " " + Info(SQL_DBMS_VER); }

  Placed PlacedFor(const data::StatementParts& parts,
                   std::span<const data::ParameterValue> parameters) const {
    const Dialect& dialect = DialectOf(dbms_);
    if (dialect.sqlite) return PlacedForSqlite(parts, parameters);
    const drivers::TypedStatement typed =
        drivers::TypedByQuestions(parts, parameters, dialect.typeOf, dialect.nullTests);
    return {ToUtf16(typed.sql), drivers::ValuesByMark(typed, parameters)};
  }
  void Prepare(const Handle& statement, std::u16string& text) const {
    statement.Check(
        SQLPrepareW(statement.Get(), Units(text.data()), static_cast<SQLINTEGER>(text.size())));
  }

  // Other statements may run now.
  Transaction& Ready() {
    RequireOpen();
    if (oneAtATime_) open_.DetachAll();
    transaction_.Settle();
    return transaction_;
  }

 private:
  using Cursor = drivers::DetachableCursor<Rows>;

  void RequireOpen() const {
    if (!connected_) throw data::DriverError("The connection is closed");
  }
  Handle NewStatement() {
    Ready();
    return {SQL_HANDLE_STMT, connection_.Get()};
  }
  std::unique_ptr<data::Cursor> RowsOf(Handle statement, std::string_view sql);
  void Set(SQLINTEGER attribute, std::uintptr_t value) {
    connection_.Check(
        SQLSetConnectAttrW(connection_.Get(), attribute, Number(value), SQL_IS_UINTEGER));
  }
  std::string Info(SQLUSMALLINT what);
  std::u16string Catalog();
  std::vector<std::string> ReadTableNames(bool system);
  std::vector<std::string> ReadFilledColumns(std::string_view table);
  void Login(const std::string& connectionString);
  void StartSession();
  bool GivesUtf8Bytes();
  bool HasPlainBackslashes();

  Handle environment_;
  Handle connection_;
  bool connected_ = false;
  bool oneAtATime_ = false;
  TextRules texts_;
  bool plainBackslashes_ = false;
  bool returns_ = false;
  std::int32_t lockMilliseconds_ = 10'000;
  std::string dbms_;
  drivers::OpenCursors open_;
  drivers::Sockets sockets_;
  Transaction transaction_;
};

void OdbcConnection::Connect(const std::vector<std::pair<std::string, std::string>>& list) {
  const Parameters parameters(list);
  const std::string text = ConnectionString(parameters);
  Login(text);
  if (Info(SQL_DRIVER_NAME).starts_with("psqlodbc"))
    Login(text + std::string(kLeavesFailuresAlone));
  texts_.trimCharacters = parameters.IsTrue("Trim Char");
  try {
    StartSession();
  } catch (...) {
    Disconnect();
    throw;
  }
}

void OdbcConnection::Login(const std::string& connectionString) {
  Disconnect();
  std::u16string text = ToUtf16(connectionString);
  environment_ = Handle(SQL_HANDLE_ENV, nullptr);
  environment_.Check(
      SQLSetEnvAttr(environment_.Get(), SQL_ATTR_ODBC_VERSION, Number(SQL_OV_ODBC3), 0));
  connection_ = Handle(SQL_HANDLE_DBC, environment_.Get());
  Set(SQL_ATTR_LOGIN_TIMEOUT, kConnectSeconds);
  SQLRETURN result = SQL_ERROR;
  sockets_ = drivers::OpenedBy([&] {
    result = SQLDriverConnectW(connection_.Get(), nullptr, Units(text.data()),
                               static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr,
                               SQL_DRIVER_NOPROMPT);
  });
  sockets_.KeepAlive();
  connection_.Check(result);
  connected_ = true;
}

void OdbcConnection::StartSession() {
  dbms_ = Info(SQL_DBMS_NAME);
  transaction_ = Transaction(connection_, dbms_);
  texts_.sqlite = DialectOf(dbms_).sqlite;
  const char* firstReturning = DialectOf(dbms_).firstReturning;
  returns_ = firstReturning != nullptr && Info(SQL_DBMS_VER) >= firstReturning;
  SQLUSMALLINT activities = 0;
  SQLGetInfoW(connection_.Get(), SQL_MAX_CONCURRENT_ACTIVITIES, &activities, sizeof activities,
              nullptr);
  oneAtATime_ = activities == 1;
  // Not every server knows it: SQLite has but one isolation, a stronger one.
  SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_TXN_ISOLATION, Number(SQL_TXN_READ_COMMITTED),
                     SQL_IS_UINTEGER);
  texts_.utf8Bytes = GivesUtf8Bytes();
  if (const std::string_view session = DialectOf(dbms_).session; !session.empty()) Execute(session);
  plainBackslashes_ = HasPlainBackslashes();
  SetLockTimeout(lockMilliseconds_);
}

// A Thai letter through the server and back: nothing else tells what narrow texts a driver gives.
bool OdbcConnection::GivesUtf8Bytes() {
  const Handle statement = NewStatement();
  std::u16string text = u"SELECT 'ก'";
  std::array<char, 16> bytes{};
  SQLLEN size = 0;
  const bool got =
      SQL_SUCCEEDED(SQLExecDirectW(statement.Get(), Units(text.data()), SQL_NTS)) &&
      SQL_SUCCEEDED(SQLFetch(statement.Get())) &&
      SQL_SUCCEEDED(SQLGetData(statement.Get(), 1, SQL_C_CHAR, bytes.data(), bytes.size(), &size));
  return got && std::string_view(bytes.data()) == "ก";
}

void OdbcConnection::Disconnect() noexcept {
  open_.AbandonAll();
  if (connected_) {
    SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
    SQLDisconnect(connection_.Get());
  }
  connected_ = false;
  transaction_ = Transaction();
  connection_.Reset();
  environment_.Reset();
}

std::int64_t RowsChanged(const Handle& statement) {
  SQLSMALLINT columns = 0;
  SQLLEN changed = 0;
  SQLNumResultCols(statement.Get(), &columns);
  if (columns > 0 || !SQL_SUCCEEDED(SQLRowCount(statement.Get(), &changed))) return 0;
  return changed < 0 ? 0 : changed;
}

std::int64_t OdbcConnection::Execute(std::string_view sql) {
  const Handle statement = NewStatement();
  std::u16string text = ToUtf16(sql);
  const std::int64_t changed = transaction_.Watch(drivers::EndingOf(sql), [&] {
    statement.Check(
        SQLExecDirectW(statement.Get(), Units(text.data()), static_cast<SQLINTEGER>(text.size())));
    return RowsChanged(statement);
  });
  transaction_.Settle();
  return changed;
}

class Prepared final : public data::PreparedStatement {
 public:
  Prepared(OdbcConnection& connection, Handle statement, std::u16string text,
           data::StatementParts parts)
      : connection_(connection),
        statement_(std::move(statement)),
        text_(std::move(text)),
        parts_(std::move(parts)),
        ending_(drivers::EndingOf(drivers::MarkedByQuestions(parts_))) {
    connection_.Prepare(statement_, text_);
  }

  std::int64_t Run(std::span<const data::ParameterValue> parameters) override {
    Transaction& transaction = connection_.Ready();
    const std::int64_t rows = transaction.Watch(ending_, [&] { return RunOnce(parameters); });
    transaction.Settle();
    return rows;
  }

 private:
  std::int64_t RunOnce(std::span<const data::ParameterValue> parameters) {
    Placed placed = connection_.PlacedFor(parts_, parameters);
    if (text_ != placed.text) {
      text_ = std::move(placed.text);
      connection_.Prepare(statement_, text_);
    }
    const Release release{statement_};
    const BoundParameters bound(statement_, placed.values);
    const SQLRETURN result = SQLExecute(statement_.Get());
    statement_.Check(result);
    return result == SQL_NO_DATA ? 0 : RowsChanged(statement_);
  }

  struct Release {
    const Handle& statement;
    ~Release() {
      SQLFreeStmt(statement.Get(), SQL_CLOSE);
      SQLFreeStmt(statement.Get(), SQL_RESET_PARAMS);
    }
  };

  OdbcConnection& connection_;
  Handle statement_;
  std::u16string text_;
  data::StatementParts parts_;
  drivers::Ending ending_;
};

std::unique_ptr<data::PreparedStatement> OdbcConnection::Prepare(
    const data::StatementParts& parts) {
  return std::make_unique<Prepared>(*this, NewStatement(),
                                    ToUtf16(drivers::MarkedByQuestions(parts)), parts);
}

std::unique_ptr<data::Cursor> OdbcConnection::Query(std::string_view sql) {
  Handle statement = NewStatement();
  std::u16string text = ToUtf16(sql);
  auto cursor = transaction_.Watch(drivers::EndingOf(sql), [&] {
    statement.Check(
        SQLExecDirectW(statement.Get(), Units(text.data()), static_cast<SQLINTEGER>(text.size())));
    return RowsOf(std::move(statement), sql);
  });
  if (!cursor) transaction_.Settle();
  return cursor;
}

std::unique_ptr<data::Cursor> OdbcConnection::Query(
    const data::StatementParts& parts, std::span<const data::ParameterValue> parameters) {
  Placed placed = PlacedFor(parts, parameters);
  Handle statement = NewStatement();
  const std::string sql = drivers::MarkedByQuestions(parts);
  auto cursor = transaction_.Watch(drivers::EndingOf(sql), [&] {
    Prepare(statement, placed.text);
    const BoundParameters bound(statement, placed.values);
    statement.Check(SQLExecute(statement.Get()));
    SQLFreeStmt(statement.Get(), SQL_RESET_PARAMS);
    return RowsOf(std::move(statement), sql);
  });
  if (!cursor) transaction_.Settle();
  return cursor;
}

data::Lexis OdbcConnection::StatementLexis() const {
  data::Lexis lexis = DialectOf(dbms_).lexis;
  lexis.backslashEscapes = lexis.backslashEscapes && !plainBackslashes_;
  lexis.escapesInDoubleQuotes = lexis.escapesInDoubleQuotes && !plainBackslashes_;
  return lexis;
}

// The servers whose quoted texts have escapes have a setting to do without.
bool OdbcConnection::HasPlainBackslashes() {
  if (!DialectOf(dbms_).lexis.backslashEscapes) return false;
  const auto mode = Query("SELECT @@sql_mode");
  return mode->Next() && !mode->IsNull(0) &&
         mode->Text(0).find("NO_BACKSLASH_ESCAPES") != std::string_view::npos;
}

// Of a statement that has been executed.
std::unique_ptr<data::Cursor> OdbcConnection::RowsOf(Handle statement, std::string_view sql) {
  SQLSMALLINT columns = 0;
  statement.Check(SQLNumResultCols(statement.Get(), &columns));
  if (columns == 0) return nullptr;
  TextRules rules = texts_;
  rules.compound = rules.sqlite && drivers::sqlite::IsCompound(sql);
  return std::make_unique<Cursor>(open_, std::move(statement), rules);
}

// Many drivers close cursors then.
void OdbcConnection::Commit() {
  RequireOpen();
  open_.DetachAll();
  transaction_.Commit();
}

void OdbcConnection::Rollback() {
  RequireOpen();
  open_.DetachAll();
  transaction_.Rollback();
  SetLockTimeout(lockMilliseconds_);  // some servers take a setting back with the rest
}

std::string OdbcConnection::Info(SQLUSMALLINT what) {
  if (!connected_) throw data::DriverError("The connection is closed");
  std::array<char16_t, 256> text{};
  SQLSMALLINT bytes = 0;
  connection_.Check(SQLGetInfoW(connection_.Get(), what, text.data(),
                                static_cast<SQLSMALLINT>(sizeof text), &bytes));
  std::string info;
  AppendUtf8(info, text.data());
  return info;
}

std::u16string OdbcConnection::Catalog() {
  std::array<char16_t, 256> text{};
  SQLINTEGER bytes = 0;
  SQLGetConnectAttrW(connection_.Get(), SQL_ATTR_CURRENT_CATALOG, text.data(),
                     static_cast<SQLINTEGER>(sizeof text), &bytes);
  return text.data();
}

std::vector<std::string> OdbcConnection::ReadTableNames(bool system) {
  Handle statement = NewStatement();
  std::u16string catalog = system ? std::u16string() : Catalog();
  std::u16string types = system ? u"SYSTEM TABLE,SYSTEM VIEW" : u"TABLE,VIEW";
  statement.Check(SQLTablesW(statement.Get(), catalog.empty() ? nullptr : Units(catalog.data()),
                             static_cast<SQLSMALLINT>(catalog.size()), nullptr, 0, nullptr, 0,
                             Units(types.data()), static_cast<SQLSMALLINT>(types.size())));
  Rows rows(std::move(statement), TextRules{});
  std::vector<std::string> names;
  while (rows.Next()) {
    if (!system || IsSystemTable(rows)) names.emplace_back(rows.Text(2));
  }
  return names;
}

// Some drivers tell a lost connection here as any failure.
std::vector<std::string> OdbcConnection::TableNames(bool system) {
  try {
    return ReadTableNames(system);
  } catch (const data::DriverError& e) {
    SQLUINTEGER dead = SQL_CD_FALSE;
    SQLGetConnectAttrW(connection_.Get(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
    if (dead != SQL_CD_TRUE) throw;
    throw data::DriverError(e.what(), data::DriverError::Kind::ConnectionLost);
  }
}

// By the catalogue of the standard, which has defaults; what counts by itself only the name of its
// type tells there.
std::vector<std::string> OdbcConnection::ReadFilledColumns(std::string_view table) {
  Handle statement = NewStatement();
  std::u16string name = ToUtf16(table.substr(table.rfind('.') + 1));
  statement.Check(SQLColumnsW(statement.Get(), nullptr, 0, nullptr, 0, Units(name.data()),
                              static_cast<SQLSMALLINT>(name.size()), nullptr, 0));
  Rows rows(std::move(statement), TextRules{});
  std::vector<std::string> columns;
  while (rows.Next()) {
    constexpr int kName = 3;
    constexpr int kTypeName = 5;
    constexpr int kDefault = 12;
    const bool counts = rows.Text(kTypeName).ends_with("identity");
    std::string column(rows.Text(kName));
    if (counts || !rows.IsNull(kDefault)) columns.push_back(std::move(column));
  }
  return columns;
}

std::vector<std::string> OdbcConnection::FilledColumns(std::string_view table) {
  const drivers::FilledQuery* query = DialectOf(dbms_).filled;
  return query != nullptr ? drivers::FilledColumnsBy(*query, *this, table)
                          : ReadFilledColumns(table);
}

void OdbcConnection::SetLockTimeout(std::int32_t milliseconds) {
  lockMilliseconds_ = milliseconds;
  if (!connected_) return;
  const Dialect& dialect = DialectOf(dbms_);
  const std::int64_t time =
      dialect.inSeconds ? (std::int64_t{milliseconds} + 999) / 1000 : milliseconds;
  for (const std::string command : {dialect.lockTimeout, dialect.lockTimeoutToo}) {
    if (!command.empty())
      Execute(command + std::to_string(std::max<std::int64_t>(time, dialect.leastTimeout)));
  }
}

}  // namespace
}  // namespace kvshare::odbc

extern "C" KVSHARE_API kvshare::data::Driver* getSQLDriverODBC(std::int32_t contract) {
  using Driver = kvshare::drivers::DriverOf<kvshare::odbc::OdbcConnection>;
  return kvshare::drivers::DriverFor<Driver>(contract);
}
