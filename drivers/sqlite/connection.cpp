// The SQLite driver.
#include <algorithm>
#include <charconv>

#include "drivers/common/entry.h"
#include "drivers/common/exactly.h"
#include "drivers/common/filled.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sqlitestatement.h"
#include "drivers/common/statements.h"
#include "drivers/common/transaction.h"
#include "drivers/sqlite/amounts.h"
#include "drivers/sqlite/decimals.h"
#include "drivers/sqlite/handles.h"
#include "drivers/sqlite/moments.h"
#include "drivers/sqlite/rows.h"
#include "kvshare/export.h"

namespace kvshare::drivers::sqlite {

namespace {

using data::DriverError;
using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr std::int32_t kLockTimeout = 10'000;

int ClampSize(std::size_t size) {
  if (size > INT32_MAX) throw DriverError("string or blob too big");
  return static_cast<int>(size);
}

// Binds one value. Its texts are copied, unless they live until the statement has run.
struct Binder {
  sqlite3_stmt* statement;
  int place;
  sqlite3_destructor_type lifetime;

  int operator()(std::monostate /*null*/) const { return sqlite3_bind_null(statement, place); }
  int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, place, value); }
  int operator()(double value) const { return sqlite3_bind_double(statement, place, value); }
  int operator()(const std::string& text) const {
    return sqlite3_bind_text(statement, place, text.data(), ClampSize(text.size()), lifetime);
  }
  int operator()(const data::Bytes& value) const {
    return sqlite3_bind_blob(statement, place, value.bytes.data(), ClampSize(value.bytes.size()),
                             lifetime);
  }
  // A marked statement has made texts and reals of these.
  int operator()(const data::Decimal& /*amount*/) const { return SQLITE_MISMATCH; }
  int operator()(const data::Moment& /*moment*/) const { return SQLITE_MISMATCH; }
};

// The server would read Null where it is given no value: that is refused. Ours are the first
// `slots` places, and have no name; `?5` is one, and brings four without.
void RefuseForeign(sqlite3_stmt* statement, std::size_t slots) {
  const int places = sqlite3_bind_parameter_count(statement);
  const char* foreign = static_cast<std::size_t>(places) > slots ? "?" : nullptr;
  for (int i = 1; i <= places; ++i) {
    if (const char* name = sqlite3_bind_parameter_name(statement, i)) foreign = name;
  }
  if (foreign == nullptr) return;
  throw DriverError("The parameter " + std::string(foreign) + " has been given no value");
}

// A statement with places, as the server has it for values of certain classes.
struct PlacedStatement {
  MarkedStatement marked;
  Statement statement;

  void Bind(sqlite3* database, std::span<const data::ParameterValue> values,
            sqlite3_destructor_type lifetime) const {
    RefuseForeign(statement.get(), marked.Slots());
    const int places = static_cast<int>(marked.Slots());
    data::ParameterValue made;
    for (int i = 0; i < places; ++i) {
      const data::ParameterValue& value = marked.Value(static_cast<std::size_t>(i), values, made);
      const Binder bind{statement.get(), i + 1, &value == &made ? SQLITE_TRANSIENT : lifetime};
      if (std::visit(bind, value) != SQLITE_OK) Refuse(database);
    }
  }
};

std::vector<ValueClass> ClassesOf(std::span<const data::ParameterValue> values) {
  std::vector<ValueClass> classes;
  for (const data::ParameterValue& value : values) classes.push_back(ClassOf(value));
  return classes;
}

class SqliteConnection : public data::Connection {
 public:
  void Connect(const Pairs& list) override;
  void Disconnect() noexcept override;
  std::int64_t Execute(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(std::string_view sql) override;
  std::unique_ptr<data::Cursor> Query(const data::StatementParts& parts,
                                      std::span<const data::ParameterValue> parameters) override;
  std::unique_ptr<data::PreparedStatement> Prepare(const data::StatementParts& parts) override;
  data::Lexis StatementLexis() const override;
  void Begin(data::Isolation isolation) override;
  void Commit() override;
  void Rollback() override;
  std::int64_t EarlyCommits() const override { return state_.Commits(); }
  std::int64_t EarlyRollbacks() const override { return state_.Rollbacks(); }
  Condition Exactly(std::string_view column, data::ColumnKind kind) const override;
  std::vector<std::string> TableNames(bool system) override;
  std::vector<std::string> FilledColumns(std::string_view table) override {
    return FilledColumnsBy(kSqliteFilled, *this, table);
  }
  bool InsertReturns() const override {
    constexpr int kFirstReturning = 3'035'000;
    return sqlite3_libversion_number() >= kFirstReturning;
  }
  void SetLockTimeout(std::int32_t milliseconds) override;
  std::string ServerVersion() override;

  // Runs what has been prepared and bound, to its end; the rows that it changed.
  std::int64_t RunToEnd(sqlite3_stmt* statement);

  PlacedStatement Placed(const data::StatementParts& parts, std::span<const ValueClass> classes);

 private:
  void CheckTransaction() const;
  void Run(const char* sql);
  bool FreedSnapshot();
  void BeginAnew();
  void LookForEnd();

  MetColumns met_;
  Database database_;
  OpenRows open_;
  TransactionState state_;
  bool rolledBack_ = false;  // the server has done so, since it was last asked
};

void SqliteConnection::Connect(const Pairs& list) {
  const Parameters parameters(list);
  const std::string file = parameters.Get("Database");
  if (file.empty()) throw DriverError("the parameter Database names no file");
  parameters.RefuseCustomString();
  const bool create = parameters.IsTrue("CreateDatabase");
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI |
                    (create ? SQLITE_OPEN_CREATE : 0);
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
  database_.reset(opened);
  if (code != SQLITE_OK) {
    const std::string text = opened == nullptr ? "out of memory" : sqlite3_errmsg(opened);
    database_.reset();
    throw DriverError(text + ": " + file);
  }
  try {
    sqlite3_extended_result_codes(opened, 0);
    SetLockTimeout(kLockTimeout);
    AddDecimals(opened);
    AddSums(opened);
    AddMoments(opened);
    met_.Watch(opened);
    sqlite3_rollback_hook(
        opened, [](void* rolledBack) { *static_cast<bool*>(rolledBack) = true; }, &rolledBack_);
    // Two modes at least need the file: what is no database is found out here, not in the middle of
    // the work. A file that cannot be written stays in the mode that it has.
    Run("PRAGMA journal_mode = WAL");
    Run("PRAGMA synchronous = FULL");
    Run("PRAGMA foreign_keys = ON");
  } catch (const DriverError& e) {
    database_.reset();
    throw DriverError(std::string(e.what()) + ": " + file, e.What());
  }
}

void SqliteConnection::Disconnect() noexcept {
  if (database_ && state_.Active())
    sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
  state_ = {};
  database_.reset();
}

void SqliteConnection::Run(const char* sql) {
  const auto run = [&] { return sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr); };
  if (run() == SQLITE_OK) return;
  if (!FreedSnapshot() || run() != SQLITE_OK) Refuse(database_.get());
}

// After a failure: whether the connection was kept from writing by its own open rows, which show
// the file as it was before somebody else changed it, and is no more.
bool SqliteConnection::FreedSnapshot() {
  if (state_.Active() || sqlite3_extended_errcode(database_.get()) != SQLITE_BUSY_SNAPSHOT) {
    return false;
  }
  bool any = false;
  for (Rows* rows : open_) any = rows->Detach() || any;
  return any;
}

// A full disk and other failures of the file end a transaction by themselves; what came afterwards
// would stand alone.
void SqliteConnection::CheckTransaction() const {
  if (state_.Active() && sqlite3_get_autocommit(database_.get()) != 0) {
    throw DriverError("the transaction has been rolled back", DriverError::Kind::Conflict);
  }
}

// Behind a statement that did what it was to do: COMMIT and ROLLBACK end the transaction.
void SqliteConnection::LookForEnd() {
  const bool rolledBack = std::exchange(rolledBack_, false);
  if (!state_.Active() || sqlite3_get_autocommit(database_.get()) == 0) return;
  state_.CountEnd(rolledBack ? Ending::Rollback : Ending::Commit);
  BeginAnew();
}

std::int64_t SqliteConnection::Execute(std::string_view sql) {
  CheckTransaction();
  const Statement statement = sqlite::Prepare(database_.get(), sql);
  if (!statement) return 0;
  RefuseForeign(statement.get(), 0);
  return RunToEnd(statement.get());
}

std::int64_t SqliteConnection::RunToEnd(sqlite3_stmt* statement) {
  CheckTransaction();
  sqlite3* database = database_.get();
  const std::int64_t before = sqlite3_total_changes64(database);
  const auto run = [&] {
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW) code = sqlite3_step(statement);
    return code;
  };
  if (run() != SQLITE_DONE) {
    const bool again = FreedSnapshot();
    sqlite3_reset(statement);
    if (!again || run() != SQLITE_DONE) Refuse(database);
  }
  LookForEnd();
  return sqlite3_total_changes64(database) == before ? 0 : sqlite3_changes64(database);
}

// How amounts lie is only known to the server, which tells it of a statement that it has read.
PlacedStatement SqliteConnection::Placed(const data::StatementParts& parts,
                                         std::span<const ValueClass> classes) {
  Manner manner{.collations = true};
  PlacedStatement placed{MarkedStatement(parts, classes, manner), nullptr};
  if (std::ranges::find(classes, ValueClass::Amount) == classes.end()) {
    placed.statement = sqlite::Prepare(database_.get(), placed.marked.Text());
    return placed;
  }
  placed.statement = met_.Prepare(database_.get(), placed.marked.Text(), manner.amounts);
  if (manner.amounts == Amounts::Numbers) return placed;
  placed.marked = MarkedStatement(parts, classes, manner);
  placed.statement = sqlite::Prepare(database_.get(), placed.marked.Text());
  return placed;
}

class Prepared : public data::PreparedStatement {
 public:
  Prepared(SqliteConnection& connection, sqlite3* database, data::StatementParts parts)
      : connection_(connection),
        database_(database),
        parts_(std::move(parts)),
        classes_(parts_.Parameters()),
        placed_(connection.Placed(parts_, classes_)) {
    if (!placed_.statement) throw DriverError("there is no statement to prepare");
  }

  std::int64_t Run(std::span<const data::ParameterValue> parameters) override {
    CheckParameters(classes_.size(), parameters.size());
    if (TakeClasses(parameters)) placed_ = connection_.Placed(parts_, classes_);
    const Release release{placed_.statement.get()};
    placed_.Bind(database_, parameters, SQLITE_STATIC);
    return connection_.RunToEnd(placed_.statement.get());
  }

 private:
  // Whatever happens, the statement holds no lock and points at no value afterwards.
  struct Release {
    sqlite3_stmt* statement;
    ~Release() {
      sqlite3_reset(statement);
      sqlite3_clear_bindings(statement);
    }
  };

  // Whether these values have other classes than earlier ones; null has none.
  bool TakeClasses(std::span<const data::ParameterValue> values) {
    bool other = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (std::holds_alternative<std::monostate>(values[i])) continue;
      const ValueClass known = std::exchange(classes_[i], ClassOf(values[i]));
      other = other || known != classes_[i];
    }
    return other;
  }

  SqliteConnection& connection_;
  sqlite3* database_;
  data::StatementParts parts_;
  std::vector<ValueClass> classes_;
  PlacedStatement placed_;
};

std::unique_ptr<data::PreparedStatement> SqliteConnection::Prepare(
    const data::StatementParts& parts) {
  return std::make_unique<Prepared>(*this, database_.get(), parts);
}

// Whatever collation a table has for its texts.
data::Connection::Condition SqliteConnection::Exactly(std::string_view column,
                                                      data::ColumnKind kind) const {
  return ExactlyBy(kSqliteForms, column, kind);
}

std::unique_ptr<data::Cursor> SqliteConnection::Query(std::string_view sql) {
  return Query({{std::string(sql)}, {}}, {});
}

std::unique_ptr<data::Cursor> SqliteConnection::Query(
    const data::StatementParts& parts, std::span<const data::ParameterValue> parameters) {
  CheckTransaction();
  CheckParameters(parts.Parameters(), parameters.size());
  const auto run = [&]() -> std::unique_ptr<data::Cursor> {
    PlacedStatement placed = Placed(parts, ClassesOf(parameters));
    if (!placed.statement) return nullptr;
    placed.Bind(database_.get(), parameters, SQLITE_TRANSIENT);
    const bool gives = sqlite3_column_count(placed.statement.get()) > 0;
    auto rows = std::make_unique<Rows>(database_.get(), std::move(placed.statement), open_);
    if (gives) return rows;
    LookForEnd();
    return nullptr;
  };
  try {
    return run();
  } catch (const DriverError&) {
    if (!FreedSnapshot()) throw;
    return run();
  }
}

data::Lexis SqliteConnection::StatementLexis() const {
  return {.backticks = true, .brackets = true};
}

// The lock is taken at once: a batch that somebody else is in the way of fails as Busy before its
// first statement. A reader who had to become a writer would fail in the middle, without a wait.
void SqliteConnection::Begin(data::Isolation /*always serializable*/) {
  BeginAnew();
  state_.Begun();
}

void SqliteConnection::BeginAnew() {
  rolledBack_ = false;
  const bool readOnly = sqlite3_db_readonly(database_.get(), "main") == 1;
  Run(readOnly ? "BEGIN" : "BEGIN IMMEDIATE");
}

void SqliteConnection::Commit() {
  CheckTransaction();
  Run("COMMIT");
  state_.Ended();
}

void SqliteConnection::Rollback() {
  state_.Ended();
  if (sqlite3_get_autocommit(database_.get()) == 0) Run("ROLLBACK");
}

std::vector<std::string> SqliteConnection::TableNames(bool system) {
  constexpr const char* kUser =
      "SELECT name FROM sqlite_master WHERE type IN ('table', 'view') AND name NOT LIKE "
      "'sqlite\\_%' ESCAPE '\\' ORDER BY rowid";
  constexpr const char* kSystem =
      "SELECT 'sqlite_master' UNION ALL SELECT name FROM sqlite_master WHERE type = 'table' AND "
      "name LIKE 'sqlite\\_%' ESCAPE '\\'";
  const auto rows = Query(system ? kSystem : kUser);
  std::vector<std::string> names;
  while (rows->Next()) names.emplace_back(rows->Text(0));
  return names;
}

void SqliteConnection::SetLockTimeout(std::int32_t milliseconds) {
  sqlite3_busy_timeout(database_.get(), milliseconds);
}

std::string SqliteConnection::ServerVersion() {
  return std::string("SQLite ") + sqlite3_libversion();
}

class SqliteDriver : public DriverOf<SqliteConnection> {
 public:
  bool DatabaseIsFile() const override { return true; }
};

}  // namespace

Statement Prepare(sqlite3* database, std::string_view sql) {
  sqlite3_stmt* prepared = nullptr;
  const char* rest = nullptr;
  const int code =
      sqlite3_prepare_v2(database, sql.data(), ClampSize(sql.size()), &prepared, &rest);
  Statement statement(prepared);
  if (code != SQLITE_OK) Refuse(database);
  const std::string_view tail = sql.substr(static_cast<std::size_t>(rest - sql.data()));
  if (statement && tail.find_first_not_of("; \t\r\n") != std::string_view::npos) {
    if (Prepare(database, tail)) throw DriverError("only one statement can be run at a time");
  }
  return statement;
}

}  // namespace kvshare::drivers::sqlite

extern "C" KVSHARE_API kvshare::data::Driver* getSQLDriverSQLITE(std::int32_t contract);

extern "C" kvshare::data::Driver* getSQLDriverSQLITE(std::int32_t contract) {
  return kvshare::drivers::DriverFor<kvshare::drivers::sqlite::SqliteDriver>(contract);
}
