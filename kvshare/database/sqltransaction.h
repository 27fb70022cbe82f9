// The transaction of one run of statements. Internal.
#pragma once

#include "kvshare/data/sqlconnection.h"

namespace kvshare {

// Begins under the next KovraTranactionId, read committed. Ends with a rollback unless it was
// committed; what goes wrong with the rollback stays behind the error that led to it.
class StatementTransaction {
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

// The error box of the SQL helpers, and that of a statement.
void ShowSQLError(std::string_view message);
void ShowStatementError(std::string_view message, std::string_view statement);

}  // namespace kvshare
