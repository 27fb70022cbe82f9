// The list of database connections that all programs on this machine share: "DConnect.ini" in the
// shared data folder, which administrators write and this module only reads.
//
//   [dbConnect]                       every connection (alias) and its DBMS trade name
//   LEDGER=POSTGRESQL
//   [LEDGER]                          how to reach it; every key is optional
//   DriverName=POSTGRESQL             of the database layer
//   GetDriverFunc=getSQLDriverPOSTGRES
//   ...
//
// The file is read afresh on every call, once, so that a change counts at once. A missing file is
// an empty one: every call gives its default. Sections and keys ignore letter case; a value has at
// most 2047 bytes.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// The suite's folders, with a final `\`: \QXN\Share\ in the application data of all users and in
// the program files; the running program's own folder where the system knows none.
KVSHARE_API std::string GetKovraShareDataPath();
KVSHARE_API std::string GetKovraProgramPath();

// "DConnect.ini" in the shared data folder.
KVSHARE_API std::string GetDbxConnectFileName();

// Replaces the list by the names of all connections, in the file's order.
KVSHARE_API void GetConnectNames(TStrings& names);

// Whether the alias is in the list of connections; one whose trade name is UNDEFINE counts as
// missing.
KVSHARE_API bool Isdbx(std::string_view alias);

// The DBMS, in upper case, which selects the SQL dialect: "TradeName" of the alias, else its value
// in the list of connections, else MYSQL.
KVSHARE_API std::string GetdbxTradeName(std::string_view alias);

KVSHARE_API std::string GetdbxDriverName(std::string_view alias);   // "", letter case as stored
KVSHARE_API std::string GetdbxDriverFunc(std::string_view alias);   // "getSQLDriverMYSQL"
KVSHARE_API std::string GetdbxLibraryName(std::string_view alias);  // "dbexpmys.dll"
KVSHARE_API std::string GetdbxVendorLib(std::string_view alias);    // "LIBMYSQL.dll"

// Replaces the list by every `key=value` of the alias, also those that this module does not know:
// parameters of the driver.
KVSHARE_API void GetdbxParams(std::string_view alias, TStrings& params);

// The login that is stored in plain text; "" where the section has none. A section that uses the
// names EncryptUser, DecryptUser, EncryptPwd and DecryptPwd stores no plain login.
KVSHARE_API std::string GetdbxUserName(std::string_view alias);
KVSHARE_API std::string GetdbxPassword(std::string_view alias);

// Whether the driver is one of the desktop database engine's: ADO, OPENODBCACCESS, DBXMSJETACCESS,
// in any letter case.
KVSHARE_API bool IsdbxAccess(std::string_view alias);

// The database file of an alias, in upper case; "" for a driver without files and for no alias.
// INTERBASE and FIREBIRD have it as "Database". Those of IsdbxAccess have it there or in a
// connection string: what follows the first `=` behind DATA SOURCE, else DBQ, up to ".MDB". The
// text from the marker on, and the path, are cut at 100 bytes each; a string without ".MDB" is not
// cut behind the path.
KVSHARE_API std::string GetdbxFileName(std::string_view alias);

// The key-generator service of the alias: whether it is used ("KeyGenEnable" is TRUE in any letter
// case), its host and its TCP port. A port that is no integer gives the default.
KVSHARE_API bool NeedGenKey(std::string_view alias);              // false
KVSHARE_API std::string GetGenKeyServer(std::string_view alias);  // "127.0.0.1"
KVSHARE_API int GetGenKeyPort(std::string_view alias);            // 10023

}  // namespace kvshare
