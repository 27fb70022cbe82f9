#include "kvshare/data/client/resolver.h"

#include <utility>

#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::data {

namespace {

constexpr std::string_view kNotFound = "Record not found or changed by another user";
constexpr std::string_view kSeveral = "Update affected more than 1 record.";

// A change that the keys do not tell from others.
class SeveralRecords : public EDatabaseError {
 public:
  SeveralRecords() : EDatabaseError(kSeveral) {}
};

TUpdateKind KindOf(TUpdateStatus status) {
  switch (status) {
    case TUpdateStatus::usInserted:
      return TUpdateKind::ukInsert;
    case TUpdateStatus::usDeleted:
      return TUpdateKind::ukDelete;
    case TUpdateStatus::usModified:
    case TUpdateStatus::usUnmodified:
      break;
  }
  return TUpdateKind::ukModify;
}

bool IsTooMany(std::size_t refused, int maxErrors) {
  return maxErrors >= 0 && refused > static_cast<std::size_t>(maxErrors);
}

}  // namespace

// The transaction of the work, or a place in the program's own to come back to; undone unless it is
// kept.
class ResolverTransaction {
 public:
  explicit ResolverTransaction(TSQLConnection& connection)
      : connection_(connection), nested_(connection.InTransaction()) {
    if (nested_) {
      connection_.ExecuteDirect("SAVEPOINT KV_APPLY");
    } else {
      connection_.StartTransaction({});
    }
  }
  // What failed before matters more than a rollback that fails.
  ~ResolverTransaction() {
    try {
      Undo();
    } catch (const EDatabaseError&) {  // NOLINT(bugprone-empty-catch): see above
    }
  }
  ResolverTransaction(const ResolverTransaction&) = delete;
  ResolverTransaction& operator=(const ResolverTransaction&) = delete;

  void Keep() {
    if (nested_) {
      connection_.ExecuteDirect("RELEASE SAVEPOINT KV_APPLY");
    } else {
      connection_.Commit({});
    }
    open_ = false;
  }
  // There is nothing to go back to after the server has undone the program's transaction itself.
  void Undo(bool byServer = false) {
    if (!std::exchange(open_, false)) return;
    if (nested_ && byServer) return;
    if (nested_) {
      connection_.ExecuteDirect("ROLLBACK TO SAVEPOINT KV_APPLY");
      connection_.ExecuteDirect("RELEASE SAVEPOINT KV_APPLY");
    } else {
      connection_.Rollback({});
    }
  }

  // Around each change, where the failure of one would be the end of all.
  bool GuardsChanges(int maxErrors) const {
    return maxErrors != 0 && connection_.FailureEndsTransaction();
  }
  void BeginChange() { connection_.ExecuteDirect("SAVEPOINT KV_CHANGE"); }
  void KeepChange() { connection_.ExecuteDirect("RELEASE SAVEPOINT KV_CHANGE"); }
  void UndoChange() {
    connection_.ExecuteDirect("ROLLBACK TO SAVEPOINT KV_CHANGE");
    KeepChange();
  }

 private:
  TSQLConnection& connection_;
  bool nested_;
  bool open_ = true;
};

Resolver::Resolver(TSQLConnection& connection, const RecordTable& table, UpdateTarget target,
                   RecordReader recordOf)
    : connection_(connection),
      table_(table),
      target_(std::move(target)),
      recordOf_(std::move(recordOf)),
      sql_(table.Layout(), target_) {
  connection_.Open();
  target_.insertReturns = connection_.InsertReturns();
  for (UpdateColumn& column : target_.columns)
    column.equal = connection_.Exactly(column.name, column.kind);
}

Resolver::~Resolver() = default;

Applied Resolver::Apply(int maxErrors) {
  Applied applied;
  for (;;) {
    ResolverTransaction transaction(connection_);
    Attempt attempt = Try(maxErrors, transaction);
    applied.written = attempt.end == End::Done;
    if (applied.written) {
      transaction.Keep();
    } else {
      transaction.Undo(attempt.end == End::Undone);
    }
    if (attempt.end == End::Again) continue;
    if (!applied.written) attempt.refusals.back().last = true;
    applied.rows = std::move(attempt.rows);
    applied.refusals = std::move(attempt.refusals);
    prepared_.clear();
    return applied;
  }
}

Resolver::Attempt Resolver::Try(int maxErrors, ResolverTransaction& transaction) {
  Attempt attempt;
  const bool guards = transaction.GuardsChanges(maxErrors);
  table_.ForEachChange([&](RowId row) {
    if (attempt.end != End::Done) return;
    if (guards) transaction.BeginChange();
    const bool written = TryChange(row, attempt);
    if (attempt.end != End::Done) return;
    if (IsTooMany(attempt.refusals.size(), maxErrors)) {
      attempt.end = End::TooMany;
    } else if (guards) {
      written ? transaction.KeepChange() : transaction.UndoChange();
    }
  });
  return attempt;
}

bool Resolver::TryChange(RowId row, Attempt& attempt) {
  try {
    attempt.rows.push_back(Write(row));
    return true;
  } catch (const SeveralRecords& e) {
    if (ambiguous_.insert(row).second) {
      attempt.end = End::Again;
    } else {
      attempt.refusals.push_back(RefusalOf(row, e));
    }
  } catch (const EServerError& e) {
    if (e.ConnectionLost()) throw;
    attempt.refusals.push_back(RefusalOf(row, e));
    if (e.Conflict()) attempt.end = End::Undone;
  } catch (const Exception& e) {
    attempt.refusals.push_back(RefusalOf(row, e));
  }
  return false;
}

Refusal Resolver::RefusalOf(RowId row, const Exception& error) const {
  const auto* server = dynamic_cast<const EServerError*>(&error);
  const int code = server != nullptr && server->Code() != 0 ? server->Code() : 1;
  return {row, KindOf(table_.Status(row)), error.Message(), code, false, {}, {}};
}

Written Resolver::Write(RowId row) {
  if (ambiguous_.contains(row)) throw SeveralRecords();
  if (!MakeStatement(row)) return {row, {}};
  if (sql_.Returns()) return {row, RecordOfStatement(row)};
  RunStatement(row);
  return {row, {}};
}

bool Resolver::MakeStatement(RowId row) {
  switch (table_.Status(row)) {
    case TUpdateStatus::usInserted:
      sql_.Insert(table_.At(row));
      return true;
    case TUpdateStatus::usDeleted:
      sql_.Delete(*table_.Original(row));
      return true;
    case TUpdateStatus::usModified:
    case TUpdateStatus::usUnmodified:
      break;
  }
  return sql_.Update(*table_.Original(row), table_.At(row));
}

void Resolver::RunStatement(RowId row) {
  const std::int64_t found = connection_.Run(Prepared(), sql_.Values());
  if (table_.Status(row) == TUpdateStatus::usInserted) return;
  if (found == 0) throw EDatabaseError(kNotFound);
  if (found > 1) throw SeveralRecords();
}

// Changes of one screen are alike: a few statements serve thousands of them.
PreparedStatement& Resolver::Prepared() {
  constexpr std::size_t kMost = 100;
  std::string text = sql_.Text();
  const auto known = prepared_.find(text);
  if (known != prepared_.end()) return *known->second;
  if (prepared_.size() >= kMost) prepared_.clear();
  return *prepared_.emplace(std::move(text), connection_.Prepare(sql_.Parts())).first->second;
}

void Resolver::FetchServer(Refusal& refusal) {
  const Record* original = table_.Original(refusal.row);
  try {
    if (!sql_.Select(original != nullptr ? *original : table_.At(refusal.row))) return;
    refusal.server = RecordOfStatement(refusal.row);
  } catch (const Exception& e) {
    refusal.context = e.Message();
  }
}

Record Resolver::RecordOfStatement(RowId row) {
  TSQLQuery query;
  query.SetSQLConnection(&connection_);
  query.SQL().Add(sql_.Text());
  for (std::size_t i = 0; i < sql_.Values().size(); ++i) {
    query.Params()[static_cast<int>(i)].SetWireValue(sql_.Values()[i]);
  }
  query.Open();
  return query.IsEmpty() ? Record() : recordOf_(query, row);
}

}  // namespace kvshare::data
