// Days and times, which the server holds as texts.
#pragma once

#include <sqlite3.h>

namespace kvshare::drivers::sqlite {

// Makes known to a connection the collation MOMENT, under which a day equals its midnight, and a
// moment the same one with a `T` for the blank, or with other zeros at the end of its fraction.
// Texts that are neither come before days, and days before times, by bytes. Throws DriverError.
void AddMoments(sqlite3* database);

}  // namespace kvshare::drivers::sqlite
