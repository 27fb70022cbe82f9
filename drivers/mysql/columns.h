#pragma once

#include <mysql.h>

#include <vector>

#include "kvshare/data/contract/driver.h"

namespace kvshare::mysql {

// A column, and what its kind does not say about reading it.
struct ServerColumn {
  data::Column column;
  bool bits = false;  // a bit field: its number's bytes, the highest first
};

std::vector<ServerColumn> ColumnsOf(MYSQL_RES* result);

}  // namespace kvshare::mysql
