// The columns that a server fills in by itself where an insert leaves them out.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {

// What a server makes of the letters of a name that is not quoted.
enum class Fold : char { None, Lower, Upper };

// How a server is asked. In the statement ?1 stands for the table's schema, Null where none is
// named, ?2 for its name as the server keeps it, and ?3 for both as a statement names them.
struct FilledQuery {
  std::string_view sql;  // "": it cannot be asked
  Fold fold = Fold::None;
};

extern const FilledQuery kSqliteFilled;
extern const FilledQuery kMariaDbFilled;  // and MySQL
extern const FilledQuery kPostgresFilled;
extern const FilledQuery kFirebirdFilled;

std::vector<std::string> FilledColumnsBy(const FilledQuery& query, data::Connection& connection,
                                         std::string_view table);

}  // namespace kvshare::drivers
