// The transaction of a connection.
#pragma once

#include <string_view>

#include "drivers/common/transaction.h"
#include "drivers/odbc/handles.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::odbc {

// How a server's transactions end, and what its ODBC driver says of it.
struct TransactionManners;

// The ODBC driver's autocommit is off while one lasts. Where a statement has ended it, a savepoint
// tells on MariaDB and MySQL, which commit at CREATE TABLE and its like; elsewhere the statement's
// first word.
class Transaction {
 public:
  Transaction() = default;
  Transaction(const Handle& connection, std::string_view dbmsName);
  const drivers::TransactionState& State() const { return state_; }

  void Begin(data::Isolation isolation);
  void Commit();
  void Rollback();

  // Before each statement, when it may be sent.
  void Settle();
  // `work` sends a statement; Settle looks what has become of the transaction, at once or before
  // the next statement.
  template <typename Work>
  auto Watch(drivers::Ending ending, Work work) {
    Expect(ending);
    try {
      return work();
    } catch (const data::DriverError& e) {
      Fail(e);
    }
  }

 private:
  void Run(const char* sql);
  void Expect(drivers::Ending ending);
  bool HasEnded(drivers::Ending ending);
  bool SavepointIsGone();
  bool MayCommit(drivers::Ending ending) const;
  data::DriverError::Kind NoteFailure(const data::DriverError& error);
  [[noreturn]] void Fail(const data::DriverError& error);
  void LookAfterFailure(data::DriverError::Kind kind);
  bool IsDead() const;
  SQLRETURN End(SQLSMALLINT way) const;
  void SwitchAutocommitOn();

  const Handle* connection_ = nullptr;
  const TransactionManners* manners_ = nullptr;
  bool commitsDefinitions_ = false;
  bool worked_ = false;  // a statement has been sent since it began
  drivers::TransactionState state_;
  drivers::Ending expected_ = drivers::Ending::None;  // of the last statement
};

}  // namespace kvshare::odbc
