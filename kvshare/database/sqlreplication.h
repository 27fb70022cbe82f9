// The send counter of a database that is copied between sites (table KOVRASYNC, row SYN_KEY = 1),
// the database's identity (KOVRAVERSION, row VER_KEY = 1), and the server's clock.
//
// A send number is a text of 17 digits: "0" and the number with 16. Every write stamps SYN_LASTUPD
// with the local time, yyyymmddhhnnsszzz. The blanks behind a text of a CHAR column are not read:
// they are the column's, not the text's.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {

// The next send number, which is stored: inserted where it is 1, else updated. Shows what goes
// wrong and returns the number that it meant to write all the same; a counter that cannot be read
// counts as missing. Two callers at one moment can get the same number: see TakeNextRpl. A stored
// text that is no number throws EConvertError.
KVSHARE_API std::string SQLNextRpl(TSQLConnection& Connection);

// The same, but at least `Value`, which a peer supplies; without a stored number it is 1.
KVSHARE_API std::string UpdateNextRpl(TSQLConnection& Connection, std::int64_t Value);

// The next send number, which nobody else gets: it is stored only where the counter still holds
// what was read, in one transaction, and read again where it does not. Any number of processes take
// numbers without doubles, and without gaps as long as nobody dies between the commit and the use.
// Needs SYN_KEY to be unique. Throws EDatabaseError when the number could not be stored; what is
// locked for longer than the connection's LockTimeout is tried again, for 60 seconds in all.
KVSHARE_API std::string TakeNextRpl(TSQLConnection& Connection);

// The stored text, or seventeen zeros without one; shows nothing.
KVSHARE_API std::string SQLReadRpl(TSQLConnection& Connection);
KVSHARE_API std::string SQLReadRpldate(TSQLConnection& Connection);  // "" without one

KVSHARE_API std::string OriginID(TSQLConnection& Connection);  // VER_GUID, or ""
KVSHARE_API std::string DataID(TSQLConnection& Connection);    // VER_DATA_ID, or ""

// The server's clock, by a query that gives it as CURRENTDATETIME (SQLServerDateTime of the
// dialect); the local clock without a query. One that fails is shown, and then throws
// EDatabaseError `Field 'CURRENTDATETIME' not found`.
KVSHARE_API TDateTime ServerDateTime(TSQLConnection& Connection, std::string_view SQL);
KVSHARE_API TDateTime ServerDate(TSQLConnection& Connection, std::string_view SQL);
KVSHARE_API TDateTime ServerTime(TSQLConnection& Connection, std::string_view SQL);

}  // namespace kvshare
