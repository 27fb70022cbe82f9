#include "drivers/sqlite/amounts.h"

#include <new>

#include "drivers/common/exactly.h"
#include "drivers/common/sqlitecolumns.h"
#include "drivers/sqlite/handles.h"

namespace kvshare::drivers::sqlite {

namespace {

// The declared types that have amounts.
struct Found {
  bool texts = false;
  bool numbers = false;

  void Add(const char* declared) {
    if (declared == nullptr || ColumnOfType(declared).kind != data::ColumnKind::Decimal) return;
    (KeepsTexts(declared) ? texts : numbers) = true;
  }
};

}  // namespace

void MetColumns::Watch(sqlite3* database) {
  if (sqlite3_set_authorizer(database, Tell, this) != SQLITE_OK) Refuse(database);
}

int MetColumns::Tell(void* self, int action, const char* table, const char* column,
                     const char* database, const char* /*trigger*/) {
  auto& me = *static_cast<MetColumns*>(self);
  const bool meets = action == SQLITE_READ || action == SQLITE_UPDATE || action == SQLITE_INSERT;
  if (!me.keeps_ || !meets || table == nullptr || database == nullptr) return SQLITE_OK;
  try {
    const bool one = action != SQLITE_INSERT && column != nullptr;
    if (one && *column == '\0') return SQLITE_OK;  // a table of which only rows are counted
    me.met_.push_back({database, table, one ? column : ""});
  } catch (const std::bad_alloc&) {
    return SQLITE_DENY;
  }
  return SQLITE_OK;
}

Statement MetColumns::Prepare(sqlite3* database, std::string_view sql, Amounts& amounts) {
  struct Keeping {
    bool& keeps;
    ~Keeping() { keeps = false; }
  };
  met_.clear();
  Statement statement;
  {
    const Keeping keeping{keeps_ = true};
    statement = sqlite::Prepare(database, sql);
  }
  amounts = AmountsMet(database);
  return statement;
}

Amounts MetColumns::AmountsMet(sqlite3* database) const {
  Found found;
  for (const Met& met : met_) {
    if (!met.column.empty()) {
      const char* declared = nullptr;
      // Views have none, but the columns behind them have been met too.
      if (sqlite3_table_column_metadata(database, met.database.c_str(), met.table.c_str(),
                                        met.column.c_str(), &declared, nullptr, nullptr, nullptr,
                                        nullptr) == SQLITE_OK) {
        found.Add(declared);
      }
      continue;
    }
    const Statement all = sqlite::Prepare(
        database, "SELECT * FROM " + QuotedBy('"', met.database) + "." + QuotedBy('"', met.table));
    for (int i = 0; i < sqlite3_column_count(all.get()); ++i) {
      found.Add(sqlite3_column_decltype(all.get(), i));
    }
  }
  if (!found.texts) return Amounts::Numbers;
  return found.numbers ? Amounts::Both : Amounts::Texts;
}

}  // namespace kvshare::drivers::sqlite
