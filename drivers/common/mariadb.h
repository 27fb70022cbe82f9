// What is sent to MariaDB and MySQL, whatever driver speaks to them.
#pragma once

namespace kvshare::drivers {

// Strict, whatever the server's own settings: a value that does not fit is an error, never cut or
// replaced, and a CHAR has no blanks at its end. A program may leave rows unread for as long as a
// person looks at the first ones.
inline constexpr const char* kMariaDbSession =
    "SET SESSION sql_mode = CONCAT(REPLACE(@@sql_mode, 'PAD_CHAR_TO_FULL_LENGTH', ''),"
    " ',STRICT_ALL_TABLES,ERROR_FOR_DIVISION_BY_ZERO'), SESSION net_write_timeout = 86400";

}  // namespace kvshare::drivers
