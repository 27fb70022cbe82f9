// Several statements as one.
#pragma once

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/export.h"

namespace kvshare {

// Begins a transaction under the next KovraTranactionId, read committed, and ends it with a
// rollback unless it was committed; what goes wrong with the rollback stays behind the error that
// led to it. Throws what TSQLConnection throws; one that cannot begin, because the program has
// begun one itself, rolls that back as the runners of statements do.
class KVSHARE_API StatementTransaction {
 public:
  explicit StatementTransaction(TSQLConnection& connection);
  ~StatementTransaction();
  StatementTransaction(const StatementTransaction&) = delete;
  StatementTransaction& operator=(const StatementTransaction&) = delete;

  void Commit();

 private:
  void TryRollback() noexcept;

  TSQLConnection& connection_;
  TTransactionDesc description_;
  bool done_ = false;
};

}  // namespace kvshare
