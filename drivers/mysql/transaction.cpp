#include "drivers/mysql/transaction.h"

#include <cstring>
#include <utility>

#include "drivers/mysql/errors.h"

namespace kvshare::mysql {

using drivers::Ending;

void Transaction::Run(const char* sql) {
  if (mysql_real_query(mysql_, sql, std::strlen(sql)) == 0) return;
  try {
    mysql::Fail(mysql_);
  } catch (const data::DriverError& e) {
    state_.Failed(e);
    throw;
  }
}

// That of the session is read committed.
void Transaction::SetIsolation() {
  if (isolation_ == data::Isolation::RepeatableRead)
    Run("SET TRANSACTION ISOLATION LEVEL REPEATABLE READ");
  if (isolation_ == data::Isolation::DirtyRead)
    Run("SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED");
}

// What the last one switched off may be off still: then this costs no time.
void Transaction::Begin(data::Isolation isolation) {
  state_.RequireConnection();
  if ((mysql_->server_status & SERVER_STATUS_AUTOCOMMIT) != 0) Run("SET autocommit=0");
  isolation_ = isolation;
  SetIsolation();
  state_.Begun();
  expected_ = Ending::None;
}

// A commit that fails has rolled back, and the next one would be answered without an error.
void Transaction::Commit() {
  Settle();
  state_.RequireWhole();
  try {
    Run("COMMIT");
  } catch (const data::DriverError&) {
    state_.Undone();
    throw;
  }
  state_.Ended();
}

// Where it fails, what the next statement did would commit the rest of the transaction.
void Transaction::Rollback() {
  expected_ = Ending::None;
  state_.Ended();
  state_.RequireConnection();
  try {
    Run("ROLLBACK");
  } catch (const data::DriverError&) {
    state_.LoseConnection();
    throw;
  }
}

void Transaction::Settle() {
  state_.RequireConnection();
  if (state_.Active()) {
    LookForEnd();
  } else if ((mysql_->server_status & SERVER_STATUS_AUTOCOMMIT) == 0) {
    Run("SET autocommit=1");
  }
}

void Transaction::Expect(Ending ending) {
  if (!state_.Active() || ending == Ending::None) return;
  Run("SAVEPOINT KV_STATEMENT");
  expected_ = ending;
}

void Transaction::LookForEnd() {
  constexpr unsigned kNoSavepoint = 1305;
  const Ending ending = std::exchange(expected_, Ending::None);
  if (ending == Ending::None) return;
  try {
    Run("RELEASE SAVEPOINT KV_STATEMENT");
    return;
  } catch (const data::DriverError& e) {
    if (e.Code() != kNoSavepoint) {
      state_.CountEnd(Ending::Unknown);
      throw;
    }
  }
  state_.CountEnd(ending);
  Run("SET autocommit=0");  // it may be the very statement that switched it on
  SetIsolation();
}

void Transaction::Fail(const data::DriverError& error) {
  state_.Failed(error);
  const Ending ending = std::exchange(expected_, Ending::None);
  if (state_.Lost()) {
    state_.CountLost(ending);
    return;
  }
  expected_ = drivers::EndingOfFailed(ending, error.What());
  try {
    LookForEnd();
  } catch (const data::DriverError&) {  // NOLINT(bugprone-empty-catch): the first error counts
  }
}

}  // namespace kvshare::mysql
