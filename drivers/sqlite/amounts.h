// How the columns that a statement meets keep amounts.
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>
#include <vector>

#include "drivers/common/sqlitestatement.h"
#include "drivers/sqlite/handles.h"

namespace kvshare::drivers::sqlite {

// Learns from the server what a statement reads and writes, while it is prepared.
class MetColumns {
 public:
  // From now on, of each statement of the connection; for as long as this object lives.
  void Watch(sqlite3* database);

  // As sqlite::Prepare does; `amounts` says what the statement meets. Numbers where it meets none.
  Statement Prepare(sqlite3* database, std::string_view sql, Amounts& amounts);

 private:
  struct Met {
    std::string database;
    std::string table;
    std::string column;  // "" for all of the table
  };

  Amounts AmountsMet(sqlite3* database) const;
  static int Tell(void* self, int action, const char* table, const char* column,
                  const char* database, const char* trigger);

  bool keeps_ = false;
  std::vector<Met> met_;
};

}  // namespace kvshare::drivers::sqlite
