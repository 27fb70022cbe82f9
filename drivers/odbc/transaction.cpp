#include "drivers/odbc/transaction.h"

#include <algorithm>
#include <utility>

#include "drivers/odbc/utf16.h"

namespace kvshare::odbc {

using data::DriverError;
using drivers::Ending;
using Kind = data::DriverError::Kind;

struct TransactionManners {
  std::string_view name;  // as SQL_DBMS_NAME begins
  bool savepointTells;    // where a statement has ended the transaction
  const char* beginAnew;  // sent after that; "" where the ODBC driver does so itself
  // Asks a server that the ODBC driver does not speak to at the end of a transaction in which
  // nothing was done, or whose refusal of a commit it swallows; "" where it does neither.
  const char* question;
};

namespace {

constexpr TransactionManners kManners[] = {
    {"MariaDB", true, "SET autocommit=0", ""},
    {"MySQL", true, "SET autocommit=0", ""},
    {"PostgreSQL", false, "", "SELECT 1"},
    {"Microsoft SQL Server", false, "", "SELECT 1"},
    {"SQLite", false, "BEGIN", ""},
    {"", false, "", ""},
};

const TransactionManners& MannersOf(std::string_view dbmsName) {
  return *std::ranges::find_if(kManners, [dbmsName](const TransactionManners& manners) {
    return dbmsName.starts_with(manners.name);
  });
}

}  // namespace

Transaction::Transaction(const Handle& connection, std::string_view dbmsName)
    : connection_(&connection), manners_(&MannersOf(dbmsName)) {
  SQLUSMALLINT capable = SQL_TC_NONE;
  SQLGetInfoW(connection.Get(), SQL_TXN_CAPABLE, &capable, sizeof capable, nullptr);
  commitsDefinitions_ = capable == SQL_TC_DDL_COMMIT;
}

void Transaction::Run(const char* sql) {
  const Handle statement(SQL_HANDLE_STMT, connection_->Get());
  std::u16string text = ToUtf16(sql);
  statement.Check(
      SQLExecDirectW(statement.Get(), Units(text.data()), static_cast<SQLINTEGER>(text.size())));
}

SQLRETURN Transaction::End(SQLSMALLINT way) const {
  return SQLEndTran(SQL_HANDLE_DBC, connection_->Get(), way);
}

// What the ODBC driver has noticed: some then answer everything that follows without an error.
bool Transaction::IsDead() const {
  SQLUINTEGER dead = SQL_CD_FALSE;
  SQLGetConnectAttrW(connection_->Get(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
  return dead == SQL_CD_TRUE;
}

// Not every ODBC driver tells a lost connection by the state of the error.
Kind Transaction::NoteFailure(const DriverError& error) {
  const bool lost = error.What() == Kind::ConnectionLost || IsDead();
  const Kind kind = lost ? Kind::ConnectionLost : error.What();
  state_.Failed(DriverError(error.what(), kind));
  return kind;
}

void Transaction::Begin(data::Isolation isolation) {
  state_.RequireConnection();
  std::uintptr_t level = SQL_TXN_READ_COMMITTED;
  if (isolation == data::Isolation::RepeatableRead) level = SQL_TXN_REPEATABLE_READ;
  if (isolation == data::Isolation::DirtyRead) level = SQL_TXN_READ_UNCOMMITTED;
  SQLSetConnectAttrW(connection_->Get(), SQL_ATTR_TXN_ISOLATION, Number(level), SQL_IS_UINTEGER);
  try {
    connection_->Check(SQLSetConnectAttrW(connection_->Get(), SQL_ATTR_AUTOCOMMIT,
                                          Number(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER));
  } catch (const DriverError& e) {
    throw DriverError(e.what(), NoteFailure(e), e.Code());
  }
  state_.Begun();
  worked_ = false;
  expected_ = Ending::None;
}

// After a commit that fails the transaction is left to Rollback: to switch autocommit on would
// commit what there is of it.
void Transaction::Commit() {
  Settle();
  state_.RequireWhole();
  const bool asks = *manners_->question != '\0';
  try {
    if (asks && !worked_) Run(manners_->question);
    connection_->Check(End(SQL_COMMIT));
    if (!manners_->savepointTells && IsDead())
      throw DriverError("The connection was lost", Kind::ConnectionLost);
  } catch (const DriverError& e) {
    state_.Undone();
    throw DriverError(e.what(), NoteFailure(e), e.Code());
  }
  state_.Ended();
  SwitchAutocommitOn();
}

// An ODBC driver that believes in a transaction that the server has ended gets one to roll back.
// Where a rollback fails all the same, the rest of the transaction must not be committed by what
// comes next.
void Transaction::Rollback() {
  expected_ = Ending::None;
  state_.Ended();
  try {
    SQLRETURN result = End(SQL_ROLLBACK);
    if (!SQL_SUCCEEDED(result) && *manners_->beginAnew != '\0' && !state_.Lost()) {
      Run(manners_->beginAnew);
      result = End(SQL_ROLLBACK);
    }
    connection_->Check(result);
  } catch (const DriverError& e) {
    const Kind kind = NoteFailure(e);
    state_.LoseConnection();
    throw DriverError(e.what(), kind, e.Code());
  }
  SwitchAutocommitOn();
  state_.RequireConnection();
}

// Off, everything that follows would wait for a commit that nobody makes. The end before it stands.
void Transaction::SwitchAutocommitOn() {
  const SQLRETURN result = SQLSetConnectAttrW(connection_->Get(), SQL_ATTR_AUTOCOMMIT,
                                              Number(SQL_AUTOCOMMIT_ON), SQL_IS_UINTEGER);
  if (!SQL_SUCCEEDED(result)) state_.LoseConnection();
}

void Transaction::Expect(Ending ending) {
  if (!state_.Active()) return;
  worked_ = true;
  expected_ = ending;
  if (ending != Ending::None && manners_->savepointTells) Run("SAVEPOINT KV_STATEMENT");
}

bool Transaction::SavepointIsGone() {
  constexpr int kNoSavepoint = 1305;
  try {
    Run("RELEASE SAVEPOINT KV_STATEMENT");
    return false;
  } catch (const DriverError& e) {
    if (e.Code() == kNoSavepoint) return true;
    state_.CountEnd(Ending::Unknown);
    throw DriverError(e.what(), NoteFailure(e), e.Code());
  }
}

bool Transaction::HasEnded(Ending ending) {
  if (ending == Ending::None) return false;
  if (manners_->savepointTells) return SavepointIsGone();
  return ending == Ending::Commit || ending == Ending::Rollback ||
         (ending == Ending::Implicit && commitsDefinitions_);
}

void Transaction::Settle() {
  state_.RequireConnection();
  const Ending ending = std::exchange(expected_, Ending::None);
  if (!HasEnded(ending)) return;
  state_.CountEnd(ending);
  worked_ = false;
  if (*manners_->beginAnew != '\0') Run(manners_->beginAnew);
}

bool Transaction::MayCommit(Ending ending) const {
  switch (ending) {
    case Ending::Commit:
      return true;
    case Ending::Implicit:
      return manners_->savepointTells || commitsDefinitions_;
    case Ending::Unknown:
      return manners_->savepointTells;
    default:
      return false;
  }
}

void Transaction::Fail(const DriverError& error) {
  const Kind kind = NoteFailure(error);
  worked_ = false;  // Commit asks whether there still is a transaction
  if (state_.Active()) LookAfterFailure(kind);
  throw DriverError(error.what(), kind, error.Code());
}

// Without a savepoint nobody can tell what a COMMIT has left that fails: it can only be rolled
// back.
void Transaction::LookAfterFailure(Kind kind) {
  const Ending ending = std::exchange(expected_, Ending::None);
  const bool asks = manners_->savepointTells && kind != Kind::ConnectionLost;
  if (!asks && MayCommit(ending)) {
    state_.CountEnd(Ending::Unknown);
    state_.Undone();
  }
  if (kind == Kind::ConnectionLost) return;
  try {
    if (asks) {
      expected_ = drivers::EndingOfFailed(ending, kind);
      Settle();
    } else if (*manners_->beginAnew != '\0') {
      Run(manners_->beginAnew);  // only where the server has undone the transaction
      state_.Undone();
    }
  } catch (const DriverError&) {  // NOLINT(bugprone-empty-catch): the first error counts
  }
}

}  // namespace kvshare::odbc
