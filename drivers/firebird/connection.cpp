// Firebird and InterBase.
#include <ibase.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "drivers/common/cursors.h"
#include "drivers/common/entry.h"
#include "drivers/common/filled.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sockets.h"
#include "drivers/common/statements.h"
#include "drivers/common/transaction.h"
#include "drivers/common/valuetexts.h"
#include "drivers/firebird/handles.h"
#include "drivers/firebird/parameters.h"
#include "drivers/firebird/rows.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::firebird {
namespace {

using data::Isolation;

class FirebirdConnection final : public data::Connection {
 public:
  ~FirebirdConnection() override { Disconnect(); }

  void Connect(const std::vector<std::pair<std::string, std::string>>& list) override;
  void Disconnect() noexcept override;
  std::int64_t Execute(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(const data::StatementParts& parts,
                                      std::span<const data::ParameterValue> parameters) override;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& parts) override;
  data::Lexis StatementLexis() const override;
  void Begin(Isolation isolation) override;
  void Commit() override;
  void Rollback() override;
  std::int64_t EarlyCommits() const override { return state_.Commits(); }
  std::int64_t EarlyRollbacks() const override { return state_.Rollbacks(); }
  Condition Exactly(std::string_view column, data::ColumnKind kind) const override;
  std::vector<std::string> TableNames(bool system) override;
  std::vector<std::string> FilledColumns(std::string_view table) override {
    if (ServerVersion().starts_with("Firebird 2")) return {};  // has another catalogue
    return drivers::FilledColumnsBy(drivers::kFirebirdFilled, *this, table);
  }
  bool InsertReturns() const override { return true; }
  void SetLockTimeout(std::int32_t milliseconds) override { lockMilliseconds_ = milliseconds; }
  bool WaitsForServer() const override { return true; }
  void Abort() noexcept override { sockets_.ShutDown(); }
  std::string ServerVersion() override;

  std::int64_t Run(Statement& statement, std::span<const data::ParameterValue> parameters,
                   drivers::Ending ending) {
    return Watched<std::int64_t>(ending, [&] { return RunOnce(statement, parameters); });
  }

 private:
  using Cursor = drivers::DetachableCursor<Rows>;

  void RequireOpen() const {
    if (database_ == 0) throw data::DriverError("The connection is closed");
    state_.RequireWhole();
  }
  // A transaction for one statement where none is active; it waits for locks as the connection
  // says.
  std::optional<Transaction> OwnTransaction() {
    RequireOpen();
    if (state_.Active()) return std::nullopt;
    return Transaction(database_, Isolation::ReadCommitted, lockMilliseconds_);
  }

  std::int64_t ExecuteOnce(std::string_view sql);
  std::int64_t RunOnce(Statement& statement, std::span<const data::ParameterValue> parameters);
  std::unique_ptr<data::Cursor> QueryOnce(std::string_view sql,
                                          std::span<const data::ParameterValue> parameters);

  // Notices where the statement ends the transaction: nothing but the word does so here.
  template <typename Result>
  Result Watched(drivers::Ending ending, const std::function<Result()>& statement) {
    const bool ends = state_.Active() &&
                      (ending == drivers::Ending::Commit || ending == drivers::Ending::Rollback);
    if (ends) inTransaction_.DetachAll();  // the server closes its cursors
    const auto run = [&] {
      try {
        return Repeating(statement);
      } catch (const data::DriverError& e) {
        NoteLoss(e);
        if (ends && state_.Lost()) state_.CountLost(ending);
        throw;
      }
    };
    Result result = run();
    if (ends) CountEnd(ending);
    return result;
  }
  void CountEnd(drivers::Ending ending);
  void NoteLoss(const data::DriverError& error) {
    if (error.What() == data::DriverError::Kind::ConnectionLost) state_.LoseConnection();
  }

  // The server reads a row before it waits for another transaction that writes it, and then finds
  // it changed. Under read committed, where the other's result counts, the statement runs again: it
  // has left nothing. A lock that was waited for in vain gets the same message; the time tells
  // them apart.
  template <typename Result>
  Result Repeating(const std::function<Result()>& statement) {
    using Clock = std::chrono::steady_clock;
    const bool repeats = !state_.Active() || isolation_ == Isolation::ReadCommitted ||
                         isolation_ == Isolation::DirtyRead;
    const auto start = Clock::now();
    for (bool first = true;; first = false) {
      try {
        return statement();
      } catch (const data::DriverError& e) {
        if (e.What() != data::DriverError::Kind::Conflict) throw;
        const bool waitedInVain = lockMilliseconds_ > 0 && Clock::now() - start >= LongestWait();
        if (waitedInVain || (repeats && lockMilliseconds_ <= 0 && !first)) {
          throw data::DriverError(e.what(), data::DriverError::Kind::Busy);
        }
        if (!repeats) throw;
      }
    }
  }
  // The server counts whole seconds, and not exactly.
  std::chrono::milliseconds LongestWait() const {
    return std::chrono::milliseconds((std::int64_t{lockMilliseconds_} + 999) / 1000 * 1000 - 500);
  }

  isc_db_handle database_ = 0;
  Isolation isolation_ = Isolation::ReadCommitted;  // of the active transaction
  int dialect_ = SQL_DIALECT_CURRENT;
  bool trimCharacters_ = false;
  std::int32_t lockMilliseconds_ = 10'000;
  Transaction transaction_;
  drivers::TransactionState state_;
  drivers::Sockets sockets_;
  drivers::OpenCursors inTransaction_;
  drivers::OpenCursors alone_;
};

class ParameterBlock {
 public:
  void Add(char item, std::string_view value) {
    if (value.size() > 255)
      throw data::DriverError("A connection parameter has more than 255 bytes");
    bytes_ += item;
    bytes_ += static_cast<char>(value.size());
    bytes_ += value;
  }
  const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_ = {isc_dpb_version1};
};

void FirebirdConnection::Connect(const std::vector<std::pair<std::string, std::string>>& list) {
  Disconnect();
  const drivers::Parameters parameters(list);
  parameters.RefuseCustomString();
  const drivers::ServerAddress server = drivers::SplitHostName(parameters.Get("HostName"));
  std::string name = parameters.Get("Database");
  if (!server.host.empty()) {
    name = server.host + (server.port.empty() ? "" : "/" + server.port) + ":" + name;
  }
  const std::string dialect = parameters.Get("SQLDialect");
  dialect_ = dialect == "1" ? SQL_DIALECT_V5 : SQL_DIALECT_CURRENT;
  trimCharacters_ = parameters.IsTrue("Trim Char");

  ParameterBlock block;
  block.Add(isc_dpb_utf8_filename, {});
  block.Add(isc_dpb_lc_ctype, "UTF8");
  block.Add(isc_dpb_user_name, parameters.Get("User_Name"));
  block.Add(isc_dpb_password, parameters.Get("Password"));
  block.Add(isc_dpb_connect_timeout, std::string_view("\x0F\0\0\0", 4));  // 15 s
  block.Add(isc_dpb_sql_dialect, std::string(1, static_cast<char>(dialect_)));
  if (const std::string role = parameters.Get("RoleName"); !role.empty()) {
    block.Add(isc_dpb_sql_role_name, role);
  }
  Status status;
  sockets_ = drivers::OpenedBy([&] {
    isc_attach_database(status.Vector(), static_cast<short>(name.size()), name.c_str(), &database_,
                        static_cast<short>(block.Bytes().size()), block.Bytes().data());
  });
  sockets_.KeepAlive();
  if (status.Failed()) database_ = 0;
  status.Check();
}

void FirebirdConnection::Disconnect() noexcept {
  inTransaction_.AbandonAll();
  alone_.AbandonAll();
  transaction_.Abandon();
  state_ = {};
  Status status;
  if (database_ != 0) isc_detach_database(status.Vector(), &database_);
  database_ = 0;
}

std::int64_t FirebirdConnection::Execute(std::string_view sql) {
  return Watched<std::int64_t>(drivers::EndingOf(sql), [this, sql] { return ExecuteOnce(sql); });
}

data::Lexis FirebirdConnection::StatementLexis() const {
  return {.alternativeQuotes = true, .blocks = true};
}

std::unique_ptr<data::Cursor> FirebirdConnection::Query(std::string_view sql) {
  return Watched<std::unique_ptr<data::Cursor>>(drivers::EndingOf(sql),
                                                [this, sql] { return QueryOnce(sql, {}); });
}

std::unique_ptr<data::Cursor> FirebirdConnection::Query(
    const data::StatementParts& parts, std::span<const data::ParameterValue> parameters) {
  const drivers::TypedStatement typed = TypedFor(parts, parameters);
  const std::vector<data::ParameterValue> values = drivers::ValuesByMark(typed, parameters);
  return Watched<std::unique_ptr<data::Cursor>>(drivers::EndingOf(typed.sql),
                                                [&] { return QueryOnce(typed.sql, values); });
}

std::int64_t FirebirdConnection::ExecuteOnce(std::string_view sql) {
  std::optional<Transaction> own = OwnTransaction();
  Transaction& transaction = own ? *own : transaction_;
  Statement statement(database_, transaction, sql, dialect_);
  PrepareColumns(statement.Columns());
  Status status;
  const bool oneRow = statement.Columns().Needed() > 0 && !statement.IsSelect();
  isc_dsql_execute2(status.Vector(), transaction.Handle(), statement.Handle(), SQLDA_VERSION1,
                    nullptr, oneRow ? statement.Columns().Get() : nullptr);
  status.Check();
  const std::int64_t changed = statement.RowsChanged();
  statement.Free();
  if (own) own->Commit();
  return changed;
}

class Prepared final : public data::PreparedStatement {
 public:
  Prepared(FirebirdConnection& connection, Statement statement, drivers::TypedStatement typed)
      : connection_(connection),
        statement_(std::move(statement)),
        typed_(std::move(typed)),
        ending_(drivers::EndingOf(typed_.sql)) {}

  std::int64_t Run(std::span<const data::ParameterValue> parameters) override {
    return connection_.Run(statement_, drivers::ValuesByMark(typed_, parameters), ending_);
  }

 private:
  FirebirdConnection& connection_;
  Statement statement_;
  drivers::TypedStatement typed_;
  drivers::Ending ending_;
};

std::unique_ptr<data::PreparedStatement> FirebirdConnection::Prepare(
    const data::StatementParts& parts) {
  std::optional<Transaction> own = OwnTransaction();
  drivers::TypedStatement typed = drivers::TypedByQuestions(parts);
  Statement statement(database_, own ? *own : transaction_, typed.sql, dialect_);
  PrepareColumns(statement.Columns());
  if (own) own->Commit();
  return std::make_unique<Prepared>(*this, std::move(statement), std::move(typed));
}

std::int64_t FirebirdConnection::RunOnce(Statement& statement,
                                         std::span<const data::ParameterValue> parameters) {
  std::optional<Transaction> own = OwnTransaction();
  Transaction& transaction = own ? *own : transaction_;
  Descriptor values = BoundParameters(database_, transaction, statement, parameters);
  Status status;
  const bool oneRow = statement.Columns().Needed() > 0;
  isc_dsql_execute2(status.Vector(), transaction.Handle(), statement.Handle(), SQLDA_VERSION1,
                    values.Get(), oneRow ? statement.Columns().Get() : nullptr);
  status.Check();
  const std::int64_t changed = statement.RowsChanged();
  if (own) own->Commit();
  return changed;
}

std::unique_ptr<data::Cursor> FirebirdConnection::QueryOnce(
    std::string_view sql, std::span<const data::ParameterValue> parameters) {
  std::optional<Transaction> own = OwnTransaction();
  Transaction& transaction = own ? *own : transaction_;
  Statement statement(database_, transaction, sql, dialect_);
  Descriptor values = BoundParameters(database_, transaction, statement, parameters);
  PrepareColumns(statement.Columns());
  const bool select = statement.IsSelect();
  const bool rows = statement.Columns().Needed() > 0;
  Status status;
  isc_dsql_execute2(status.Vector(), transaction.Handle(), statement.Handle(), SQLDA_VERSION1,
                    values.Get(), rows && !select ? statement.Columns().Get() : nullptr);
  status.Check();
  if (select) {
    drivers::OpenCursors& open = own ? alone_ : inTransaction_;
    return std::make_unique<Cursor>(open, database_, transaction_, std::move(own),
                                    std::move(statement), trimCharacters_);
  }
  std::unique_ptr<Cursor> row;
  if (rows) {
    row = std::make_unique<Cursor>(inTransaction_, database_, transaction, std::move(statement),
                                   trimCharacters_);
  }
  if (own) own->Commit();
  return row;
}

void FirebirdConnection::Begin(Isolation isolation) {
  RequireOpen();
  transaction_ = Transaction(database_, isolation, lockMilliseconds_);
  isolation_ = isolation;
  state_.Begun();
}

// COMMIT RETAIN leaves the handle.
void FirebirdConnection::CountEnd(drivers::Ending ending) {
  state_.CountEnd(ending);
  if (transaction_.Active()) return;
  try {
    transaction_ = Transaction(database_, isolation_, lockMilliseconds_);
  } catch (const data::DriverError& e) {
    NoteLoss(e);
    state_.Undone();
    throw;
  }
}

// The server closes the cursors of a transaction with it.
void FirebirdConnection::Commit() {
  RequireOpen();
  inTransaction_.DetachAll();
  try {
    transaction_.Commit();
  } catch (const data::DriverError& e) {
    NoteLoss(e);
    throw;
  }
  state_.Ended();
}

void FirebirdConnection::Rollback() {
  state_.Ended();
  inTransaction_.DetachAll();
  transaction_.Rollback();
}

// Whatever character set and collation the column has.
data::Connection::Condition FirebirdConnection::Exactly(std::string_view column,
                                                        data::ColumnKind kind) const {
  const std::string name(column);
  if (kind != data::ColumnKind::Text && kind != data::ColumnKind::Memo) return {name + " = ", ""};
  return {"CAST(" + name + " AS VARCHAR(8191) CHARACTER SET UTF8) COLLATE UCS_BASIC = ", ""};
}

std::vector<std::string> FirebirdConnection::TableNames(bool system) {
  const auto rows = Query(std::string("SELECT RDB$RELATION_NAME FROM RDB$RELATIONS"
                                      " WHERE COALESCE(RDB$SYSTEM_FLAG, 0) ") +
                          (system ? "<>" : "=") + " 0 ORDER BY RDB$RELATION_NAME");
  std::vector<std::string> names;
  while (rows->Next()) names.emplace_back(drivers::TrimmedRight(rows->Text(0)));
  return names;
}

std::string FirebirdConnection::ServerVersion() {
  const auto row = Query("SELECT RDB$GET_CONTEXT('SYSTEM', 'ENGINE_VERSION') FROM RDB$DATABASE");
  if (!row->Next() || row->IsNull(0)) return "Firebird";
  return "Firebird " + std::string(row->Text(0));
}

}  // namespace
}  // namespace kvshare::firebird

extern "C" KVSHARE_API kvshare::data::Driver* getSQLDriverINTERBASE(std::int32_t contract) {
  using Driver = kvshare::drivers::DriverOf<kvshare::firebird::FirebirdConnection>;
  return kvshare::drivers::DriverFor<Driver>(contract);
}
