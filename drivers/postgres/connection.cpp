// PostgreSQL, and what speaks its protocol.
#include <libpq-fe.h>

#include <array>
#include <memory>
#include <string>
#include <unordered_map>

#include "drivers/common/cursors.h"
#include "drivers/common/entry.h"
#include "drivers/common/filled.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sockets.h"
#include "drivers/common/statements.h"
#include "drivers/common/transaction.h"
#include "drivers/common/valuetexts.h"
#include "drivers/postgres/errors.h"
#include "drivers/postgres/parameters.h"
#include "drivers/postgres/rows.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::postgres {
namespace {

using data::Isolation;

// The forms that Rows reads, whatever the database's own settings.
constexpr const char* kSession =
    "-c DateStyle=ISO -c IntervalStyle=postgres -c bytea_output=hex -c extra_float_digits=1"
    " -c standard_conforming_strings=on -c default_transaction_isolation=read\\ committed";

struct FinishConnection {
  void operator()(PGconn* connection) const { PQfinish(connection); }
};
using Handle = std::unique_ptr<PGconn, FinishConnection>;

class PostgresConnection final : public data::Connection {
 public:
  ~PostgresConnection() override { Disconnect(); }

  void Connect(const std::vector<std::pair<std::string, std::string>>& list) override;
  void Disconnect() noexcept override {
    open_.AbandonAll();
    state_ = {};
    postgres_.reset();
    types_.clear();
  }
  std::int64_t Execute(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(const data::StatementParts& statement,
                                      std::span<const data::ParameterValue> parameters) override;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& statement) override;
  data::Lexis StatementLexis() const override;
  void Begin(Isolation isolation) override;
  void Commit() override;
  void Rollback() override;
  std::int64_t EarlyCommits() const override { return state_.Commits(); }
  std::int64_t EarlyRollbacks() const override { return state_.Rollbacks(); }
  bool FailureEndsTransaction() const override { return true; }
  std::vector<std::string> TableNames(bool system) override;
  std::vector<std::string> FilledColumns(std::string_view table) override {
    return drivers::FilledColumnsBy(drivers::kPostgresFilled, *this, table);
  }
  bool InsertReturns() const override { return true; }
  void SetLockTimeout(std::int32_t milliseconds) override;
  bool WaitsForServer() const override { return true; }
  void Abort() noexcept override { sockets_.ShutDown(); }
  std::string ServerVersion() override;

  PGconn* Ready(std::string_view sql);
  // The rows that `sql` changed, once it has ended well; notices where it ended the transaction.
  std::int64_t RowsChanged(const Result& result, std::string_view sql);
  // Prepares the statement under the name, with types for its values that the server can do with.
  void Tell(Values& values, const std::string& name);

 private:
  void Command(const char* sql);
  void BeginAnew();
  void LookForEnd(std::string_view tag, std::string_view sql);
  [[noreturn]] void Fail(const PGresult* result, std::string_view sql);
  void FindTypes(Values& values, const std::string& sql);
  std::unique_ptr<data::Cursor> RowsSent(std::string_view sql);

  Handle postgres_;
  drivers::OpenCursors open_;
  drivers::Sockets sockets_;
  drivers::TransactionState state_;
  Isolation isolation_ = Isolation::ReadCommitted;  // of the active transaction
  std::int32_t lockMilliseconds_ = 10'000;
  int prepared_ = 0;                                         // statements so far, for their names
  std::unordered_map<std::string, std::vector<Oid>> types_;  // of statements that have been seen
  bool trimCharacters_ = false;
};

std::string LockTimeout(std::int32_t milliseconds) {
  return std::to_string(std::max(milliseconds, 1));  // 0 would mean for ever
}

void PostgresConnection::Connect(const std::vector<std::pair<std::string, std::string>>& list) {
  Disconnect();
  const drivers::Parameters parameters(list);
  parameters.RefuseCustomString();
  const drivers::ServerAddress server = drivers::SplitHostName(parameters.Get("HostName"));
  const std::string database = parameters.Get("Database");
  const std::string user = parameters.Get("User_Name");
  const std::string password = parameters.Get("Password");
  const std::string session =
      std::string(kSession) + " -c lock_timeout=" + LockTimeout(lockMilliseconds_);

  constexpr std::array<const char*, 10> kKeys = {"host",
                                                 "port",
                                                 "dbname",
                                                 "user",
                                                 "password",
                                                 "options",
                                                 "client_encoding",
                                                 "connect_timeout",
                                                 "fallback_application_name",
                                                 nullptr};
  const std::array<const char*, 10> values = {server.host.c_str(),
                                              server.port.c_str(),
                                              database.c_str(),
                                              user.c_str(),
                                              password.c_str(),
                                              session.c_str(),
                                              "UTF8",
                                              "15",
                                              "KvShare",
                                              nullptr};
  Handle made(PQconnectdbParams(kKeys.data(), values.data(), 0));
  if (!made) throw std::bad_alloc();
  if (PQstatus(made.get()) != CONNECTION_OK) {
    std::string text = PQerrorMessage(made.get());
    text.erase(text.find_last_not_of("\r\n") + 1);
    const bool answers = PQpingParams(kKeys.data(), values.data(), 0) == PQPING_OK;
    throw data::DriverError(
        text, answers ? data::DriverError::Kind::Other : data::DriverError::Kind::ConnectionLost);
  }
  PQsetNoticeProcessor(
      made.get(), [](void*, const char*) {}, nullptr);
  trimCharacters_ = parameters.IsTrue("Trim Char");
  postgres_ = std::move(made);
  sockets_ = drivers::Sockets(PQsocket(postgres_.get()));
  sockets_.KeepAlive();
}

PGconn* PostgresConnection::Ready(std::string_view sql) {
  if (!postgres_) throw data::DriverError("The connection is closed");
  state_.RequireWhole();
  drivers::RefuseZeroByte(sql);
  open_.DetachAll();
  return postgres_.get();
}

std::int64_t PostgresConnection::Execute(std::string_view sql) {
  PGconn* connection = Ready(sql);
  return RowsChanged(Result(PQexec(connection, std::string(sql).c_str())), sql);
}

std::int64_t PostgresConnection::RowsChanged(const Result& result, std::string_view sql) {
  switch (PQresultStatus(result.get())) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_EMPTY_QUERY:
      break;
    case PGRES_COPY_IN:
    case PGRES_COPY_OUT:
      Drain(postgres_.get());
      throw data::DriverError("COPY from or to the program is not supported");
    default:
      Fail(result.get(), sql);
  }
  LookForEnd(PQcmdStatus(result.get()), sql);
  if (PQresultStatus(result.get()) == PGRES_TUPLES_OK) return 0;
  const std::string_view changed = PQcmdTuples(result.get());
  return changed.empty() ? 0 : drivers::ToInteger(changed);
}

// The statement is prepared with the first values, whose types the server has to know.
class Prepared final : public data::PreparedStatement {
 public:
  Prepared(PostgresConnection& connection, std::string name, drivers::TypedStatement statement)
      : connection_(connection), name_(std::move(name)), statement_(std::move(statement)) {}
  ~Prepared() override { Forget(); }

  std::int64_t Run(std::span<const data::ParameterValue> parameters) override {
    PGconn* postgres = connection_.Ready(statement_.sql);
    Values values(statement_, parameters);
    if (postgres_ == nullptr || !values.Fit(types_)) {
      Forget();
      connection_.Tell(values, name_);
      postgres_ = postgres;
      types_ = values.Types();
    }
    return connection_.RowsChanged(values.RunPrepared(postgres, name_), statement_.sql);
  }

 private:
  void Forget() noexcept {
    if (PGconn* postgres = std::exchange(postgres_, nullptr)) {
      const Result forgotten(PQexec(postgres, ("DEALLOCATE " + name_).c_str()));
    }
  }

  PostgresConnection& connection_;
  std::string name_;
  drivers::TypedStatement statement_;
  PGconn* postgres_ = nullptr;  // that knows the statement
  std::vector<Oid> types_;
};

// Most types come from the places of the values. Where that fails, the values' own types are tried.
void PostgresConnection::Tell(Values& values, const std::string& name) {
  PGconn* postgres = postgres_.get();
  // A failure would be the end of a transaction.
  const bool saved = values.AnyFromPlace() && PQtransactionStatus(postgres) == PQTRANS_INTRANS;
  if (saved) Command("SAVEPOINT kvshare_types");
  Result first;
  for (;;) {
    Result told = values.Prepare(postgres, name);
    if (PQresultStatus(told.get()) == PGRES_COMMAND_OK) break;
    if (!IsAboutTypes(told.get())) Fail(told.get(), {});
    const bool other = values.TakeOwnTypes(told.get());
    if (!first) first = std::move(told);
    if (!other) Fail(first.get(), {});
    if (saved) Command("ROLLBACK TO SAVEPOINT kvshare_types");
  }
  if (saved) Command("RELEASE SAVEPOINT kvshare_types");
}

// A statement is asked about when it is seen for the first time with values of these types.
void PostgresConnection::FindTypes(Values& values, const std::string& sql) {
  if (!values.AnyFromPlace()) return;
  std::string key = sql;
  for (const Oid type : values.OwnTypes()) key.append(" ").append(std::to_string(type));
  if (const auto known = types_.find(key); known != types_.end()) {
    values.SetTypes(known->second);
    return;
  }
  Tell(values, "");
  constexpr std::size_t kMost = 256;
  if (types_.size() >= kMost) types_.clear();
  types_.emplace(std::move(key), values.Types());
}

data::Lexis PostgresConnection::StatementLexis() const {
  return {.nestedComments = true,
          .dollarQuotes = true,
          .escapeTexts = true,
          .subscripts = true,
          .questionOperators = true};
}

std::unique_ptr<data::PreparedStatement> PostgresConnection::Prepare(
    const data::StatementParts& statement) {
  drivers::TypedStatement typed = drivers::TypedByNumbers(statement);
  Ready(typed.sql);
  return std::make_unique<Prepared>(*this, "kvshare" + std::to_string(++prepared_),
                                    std::move(typed));
}

std::unique_ptr<data::Cursor> PostgresConnection::Query(std::string_view sql) {
  Ready(sql);
  if (PQsendQuery(postgres_.get(), std::string(sql).c_str()) != 1) Fail(nullptr, sql);
  return RowsSent(sql);
}

std::unique_ptr<data::Cursor> PostgresConnection::Query(
    const data::StatementParts& statement, std::span<const data::ParameterValue> parameters) {
  const drivers::TypedStatement typed = drivers::TypedByNumbers(statement);
  Ready(typed.sql);
  Values values(typed, parameters);
  FindTypes(values, typed.sql);
  if (!values.Send(postgres_.get())) Fail(nullptr, typed.sql);
  return RowsSent(typed.sql);
}

// Of the statement that has been sent.
std::unique_ptr<data::Cursor> PostgresConnection::RowsSent(std::string_view sql) {
  PQsetSingleRowMode(postgres_.get());
  Result first(PQgetResult(postgres_.get()));
  // Of several statements the first that gives rows.
  while (PQresultStatus(first.get()) == PGRES_COMMAND_OK) {
    const std::string tag = PQcmdStatus(first.get());
    first.reset(PQgetResult(postgres_.get()));
    if (first) continue;
    LookForEnd(tag, sql);
    return nullptr;
  }
  switch (PQresultStatus(first.get())) {
    case PGRES_SINGLE_TUPLE:
    case PGRES_TUPLES_OK:
      return std::make_unique<drivers::DetachableCursor<Rows>>(open_, postgres_.get(),
                                                               std::move(first), trimCharacters_);
    case PGRES_EMPTY_QUERY:
      Drain(postgres_.get());
      return nullptr;
    case PGRES_COPY_IN:
      PQputCopyEnd(postgres_.get(), "no data is sent by this program");
      break;
    default:
      break;
  }
  Drain(postgres_.get());
  Fail(first.get(), sql);
}

void PostgresConnection::Command(const char* sql) {
  const Result result(PQexec(postgres_.get(), sql));
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) Fail(result.get(), {});
}

void PostgresConnection::Begin(Isolation isolation) {
  Ready({});
  isolation_ = isolation;
  BeginAnew();
  state_.Begun();
}

void PostgresConnection::BeginAnew() {
  switch (isolation_) {
    case Isolation::ReadCommitted:
      Command("BEGIN ISOLATION LEVEL READ COMMITTED");
      return;
    case Isolation::RepeatableRead:
      Command("BEGIN ISOLATION LEVEL REPEATABLE READ");
      return;
    case Isolation::DirtyRead:
      Command("BEGIN ISOLATION LEVEL READ UNCOMMITTED");
      return;
    case Isolation::Custom:
      Command("BEGIN");
      return;
  }
}

// The server says which of the two it has done: COMMIT of a transaction that has failed rolls back,
// COMMIT AND CHAIN begins the next one itself. Only ROLLBACK TO a savepoint it calls ROLLBACK too.
void PostgresConnection::LookForEnd(std::string_view tag, std::string_view sql) {
  if (!state_.Active()) return;
  using drivers::Ending;
  const bool outside = PQtransactionStatus(postgres_.get()) == PQTRANS_IDLE;
  const bool rolledBack =
      tag == "ROLLBACK" && (outside || drivers::EndingOf(sql) == Ending::Rollback);
  if (!outside && !rolledBack && tag != "COMMIT") return;
  state_.CountEnd(rolledBack ? Ending::Rollback : Ending::Commit);
  if (outside) BeginAnew();
  if (rolledBack) SetLockTimeout(lockMilliseconds_);
}

// A COMMIT that fails has ended the transaction: what followed would be outside.
void PostgresConnection::Fail(const PGresult* result, std::string_view sql) {
  try {
    postgres::Fail(postgres_.get(), result);
  } catch (const data::DriverError& e) {
    state_.Failed(e);
    if (state_.Lost() && drivers::EndingOf(sql) == drivers::Ending::Commit) {
      state_.CountLost(drivers::Ending::Commit);
    }
    if (PQtransactionStatus(postgres_.get()) == PQTRANS_IDLE) state_.Undone();
    throw;
  }
}

// The server answers COMMIT of a transaction that has failed with ROLLBACK, and no error.
void PostgresConnection::Commit() {
  Ready({});
  const bool failed = PQtransactionStatus(postgres_.get()) == PQTRANS_INERROR;
  Command(failed ? "ROLLBACK" : "COMMIT");
  if (failed) throw data::DriverError("A statement of the transaction failed: it was rolled back");
  state_.Ended();
}

void PostgresConnection::Rollback() {
  state_.Ended();
  Ready({});
  Command("ROLLBACK");
  SetLockTimeout(lockMilliseconds_);  // what was set inside went back with the rest
}

std::vector<std::string> PostgresConnection::TableNames(bool system) {
  const auto rows =
      Query(system ? "SELECT c.relname FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n"
                     " ON n.oid = c.relnamespace WHERE n.nspname = 'pg_catalog'"
                     " AND c.relkind IN ('r', 'v') ORDER BY c.relname"
                   : "SELECT c.relname FROM pg_catalog.pg_class c JOIN pg_catalog.pg_namespace n"
                     " ON n.oid = c.relnamespace WHERE n.nspname = ANY (current_schemas(false))"
                     " AND c.relkind IN ('r', 'p', 'v', 'm', 'f') ORDER BY c.relname");
  std::vector<std::string> names;
  while (rows->Next()) names.emplace_back(rows->Text(0));
  return names;
}

void PostgresConnection::SetLockTimeout(std::int32_t milliseconds) {
  lockMilliseconds_ = milliseconds;
  if (!postgres_ || PQtransactionStatus(postgres_.get()) == PQTRANS_INERROR) return;
  Execute("SET lock_timeout = " + LockTimeout(milliseconds));
}

std::string PostgresConnection::ServerVersion() {
  if (!postgres_) throw data::DriverError("The connection is closed");
  const std::string version = PQparameterStatus(postgres_.get(), "server_version");
  return "PostgreSQL " + version.substr(0, version.find(' '));
}

}  // namespace
}  // namespace kvshare::postgres

extern "C" KVSHARE_API kvshare::data::Driver* getSQLDriverPOSTGRES(std::int32_t contract) {
  using Driver = kvshare::drivers::DriverOf<kvshare::postgres::PostgresConnection>;
  return kvshare::drivers::DriverFor<Driver>(contract);
}
