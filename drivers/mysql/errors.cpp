#include "drivers/mysql/errors.h"

#include <algorithm>

#include "kvshare/data/contract/driver.h"

namespace kvshare::mysql {
namespace {

using data::DriverError;

struct KindRow {
  unsigned code;
  DriverError::Kind kind;
};
constexpr KindRow kKinds[] = {
    {1020, DriverError::Kind::Conflict},        // the record has changed since it was read
    {1040, DriverError::Kind::Busy},            // too many connections
    {1047, DriverError::Kind::Busy},            // a cluster's node without its majority
    {1053, DriverError::Kind::ConnectionLost},  // the server shuts down
    {1203, DriverError::Kind::Busy},            // too many connections of this user
    {1205, DriverError::Kind::Busy},            // waited too long for a lock
    {1213, DriverError::Kind::Conflict},        // deadlock; in a cluster: another node was first
    {1927, DriverError::Kind::ConnectionLost},  // the connection was killed
    {2002, DriverError::Kind::ConnectionLost},  // no server there
    {2003, DriverError::Kind::ConnectionLost},
    {2005, DriverError::Kind::ConnectionLost},  // unknown host
    {2006, DriverError::Kind::ConnectionLost},  // the server has gone away
    {2013, DriverError::Kind::ConnectionLost},  // lost in the middle of a query
    {2055, DriverError::Kind::ConnectionLost},
    {4031, DriverError::Kind::ConnectionLost},  // idle for too long
};
static_assert(std::ranges::is_sorted(kKinds, {}, &KindRow::code));

[[noreturn]] void Fail(unsigned code, const char* text) {
  const auto* row = std::ranges::lower_bound(kKinds, code, {}, &KindRow::code);
  const bool known = row != std::end(kKinds) && row->code == code;
  throw DriverError(text, known ? row->kind : DriverError::Kind::Other, static_cast<int>(code));
}

}  // namespace

void Fail(MYSQL* connection) {
  Fail(mysql_errno(connection), mysql_error(connection));
}

void Fail(MYSQL_STMT* statement) {
  Fail(mysql_stmt_errno(statement), mysql_stmt_error(statement));
}

}  // namespace kvshare::mysql
