// The transaction of a session.
#pragma once

#include <mysql.h>

#include "drivers/common/transaction.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::mysql {

// The server's autocommit is off while one lasts, so that the server begins another one itself
// behind each statement that commits. Where it has committed, a savepoint tells that was set before
// the statement: it is gone.
class Transaction {
 public:
  // Of a session that is open from now on; nullptr: of none.
  void Attach(MYSQL* mysql) {
    *this = {};
    mysql_ = mysql;
  }
  const drivers::TransactionState& State() const { return state_; }

  void Begin(data::Isolation isolation);
  // Rows of a query must not be on their way.
  void Commit();
  void Rollback();

  // Before each statement, when no rows are on their way.
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
      throw;
    }
  }

 private:
  void Run(const char* sql);
  void SetIsolation();
  void Expect(drivers::Ending ending);
  void LookForEnd();
  void Fail(const data::DriverError& error);

  MYSQL* mysql_ = nullptr;
  data::Isolation isolation_ = data::Isolation::ReadCommitted;
  drivers::TransactionState state_;
  drivers::Ending expected_ = drivers::Ending::None;  // of the last statement
};

}  // namespace kvshare::mysql
