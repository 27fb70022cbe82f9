// What the client reports, as the contract wants it.
#pragma once

#include <mysql.h>

namespace kvshare::mysql {

[[noreturn]] void Fail(MYSQL* connection);
[[noreturn]] void Fail(MYSQL_STMT* statement);

}  // namespace kvshare::mysql
