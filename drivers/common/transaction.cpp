#include "drivers/common/transaction.h"

#include <algorithm>
#include <string>

#include "kvshare/rtl/strutils.h"

namespace kvshare::drivers {
namespace {

struct WordRow {
  std::string_view word;
  Ending ending;
};
constexpr WordRow kWords[] = {
    {"ABORT", Ending::Rollback},    {"ALTER", Ending::Implicit},     {"ANALYZE", Ending::Implicit},
    {"BEGIN", Ending::Implicit},    {"CACHE", Ending::Implicit},     {"CHANGE", Ending::Implicit},
    {"CHECK", Ending::Implicit},    {"COMMENT", Ending::Implicit},   {"COMMIT", Ending::Commit},
    {"CREATE", Ending::Implicit},   {"DELETE", Ending::None},        {"DESC", Ending::None},
    {"DESCRIBE", Ending::None},     {"DROP", Ending::Implicit},      {"END", Ending::Commit},
    {"EXPLAIN", Ending::None},      {"FLUSH", Ending::Implicit},     {"GRANT", Ending::Implicit},
    {"INSERT", Ending::None},       {"INSTALL", Ending::Implicit},   {"LOCK", Ending::Implicit},
    {"MERGE", Ending::None},        {"OPTIMIZE", Ending::Implicit},  {"RELEASE", Ending::None},
    {"RENAME", Ending::Implicit},   {"REPAIR", Ending::Implicit},    {"REPLACE", Ending::None},
    {"RESET", Ending::Implicit},    {"REVOKE", Ending::Implicit},    {"ROLLBACK", Ending::Rollback},
    {"SAVEPOINT", Ending::None},    {"SELECT", Ending::None},        {"SET", Ending::Implicit},
    {"SHOW", Ending::None},         {"START", Ending::Implicit},     {"STOP", Ending::Implicit},
    {"TRUNCATE", Ending::Implicit}, {"UNINSTALL", Ending::Implicit}, {"UNLOCK", Ending::Implicit},
    {"UPDATE", Ending::None},       {"VALUES", Ending::None},        {"WITH", Ending::None},
};
static_assert(std::ranges::is_sorted(kWords, {}, &WordRow::word));

// Goes on behind blanks, semicolons and comments; comments that hold a statement (/*! */) stay.
void SkipComments(std::string_view& sql) {
  for (;;) {
    const std::size_t start = sql.find_first_not_of("; \t\r\n\f\v");
    sql.remove_prefix(std::min(start, sql.size()));
    const bool block = sql.starts_with("/*") && !sql.starts_with("/*!") && !sql.starts_with("/*M!");
    if (!block && !sql.starts_with("--") && !sql.starts_with("#")) return;
    const std::string_view close = block ? "*/" : "\n";
    const std::size_t end = sql.find(close);
    sql.remove_prefix(end == std::string_view::npos ? sql.size() : end + close.size());
  }
}

// The next word, in upper case; "" where something else stands there.
std::string NextWord(std::string_view& sql) {
  SkipComments(sql);
  const auto isLetter = [](char c) { return (UpCase(c) >= 'A' && UpCase(c) <= 'Z') || c == '_'; };
  const auto length =
      static_cast<std::size_t>(std::ranges::find_if_not(sql, isLetter) - sql.begin());
  std::string word = UpperCase(sql.substr(0, length));
  sql.remove_prefix(length);
  return word;
}

Ending EndingOfRollback(std::string_view rest) {
  const std::string word = NextWord(rest);
  const bool filler = word == "WORK" || word == "TRANSACTION";
  return (filler ? NextWord(rest) : word) == "TO" ? Ending::None : Ending::Rollback;
}

}  // namespace

Ending EndingOf(std::string_view sql) {
  const std::string word = NextWord(sql);
  if (word.empty()) return sql.starts_with('(') || sql.empty() ? Ending::None : Ending::Unknown;
  const auto* row = std::ranges::lower_bound(kWords, word, {}, &WordRow::word);
  if (row == std::end(kWords) || row->word != word) return Ending::Unknown;
  if (row->ending == Ending::Rollback) return EndingOfRollback(sql);
  // A block, and a statement with settings of its own, hold other statements.
  if (word == "BEGIN" && NextWord(sql) == "NOT") return Ending::Unknown;
  if (word == "SET" && NextWord(sql) == "STATEMENT") return Ending::Unknown;
  return row->ending;
}

Ending EndingOfFailed(Ending ending, data::DriverError::Kind kind) {
  const bool stays = ending == Ending::None || ending == Ending::Rollback ||
                     (ending == Ending::Implicit && kind != data::DriverError::Kind::Conflict);
  return stays ? ending : Ending::Unknown;
}

void TransactionState::Begun() {
  active_ = true;
  undone_ = false;
  commits_ = 0;
  rollbacks_ = 0;
}

void TransactionState::CountEnd(Ending ending) {
  if (ending != Ending::Rollback) ++commits_;
  if (ending != Ending::Commit && ending != Ending::Implicit) ++rollbacks_;
}

void TransactionState::Failed(const data::DriverError& error) {
  if (error.What() == data::DriverError::Kind::ConnectionLost) LoseConnection();
  if (error.What() == data::DriverError::Kind::Conflict) Undone();
}

void TransactionState::RequireConnection() const {
  if (!lost_) return;
  throw data::DriverError("The connection was lost", data::DriverError::Kind::ConnectionLost);
}

void TransactionState::RequireWhole() const {
  RequireConnection();
  if (!undone_) return;
  throw data::DriverError("The transaction has been rolled back",
                          data::DriverError::Kind::Conflict);
}

}  // namespace kvshare::drivers
