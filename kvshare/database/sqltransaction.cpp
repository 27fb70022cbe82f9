#include "kvshare/database/sqltransaction.h"

#include "kvshare/database/sqlfunc.h"

namespace kvshare {

StatementTransaction::StatementTransaction(TSQLConnection& connection) : connection_(connection) {
  const std::uint32_t id = static_cast<std::uint32_t>(KovraTranactionId) + 1;
  KovraTranactionId = static_cast<std::int32_t>(id);
  description_.TransactionID = id;
  try {
    connection_.StartTransaction(description_);
  } catch (...) {
    TryRollback();
    throw;
  }
}

StatementTransaction::~StatementTransaction() {
  if (!done_) TryRollback();
}

void StatementTransaction::Commit() {
  connection_.Commit(description_);
  done_ = true;
}

void StatementTransaction::TryRollback() noexcept {
  try {
    if (connection_.InTransaction()) connection_.Rollback(description_);
  } catch (const Exception&) {  // NOLINT(bugprone-empty-catch): the first error is on its way
  }
}

}  // namespace kvshare
