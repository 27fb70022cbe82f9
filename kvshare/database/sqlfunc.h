// Opening a configured connection, running statements, and simple questions to a database
// (docs/databases.md). Texts are code page 874.
//
// Statements run in a transaction of their own, which a failure rolls back. A failure gives false;
// where the last argument is true, it is shown in an error box first. A transaction of the
// program's own that is active on the connection makes a runner fail, and is rolled back by it.
// Only exceptions of the Exception family count as failures; others go to the caller, after the
// rollback.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare {

// The id of the last transaction that a helper began; each takes the next one.
extern KVSHARE_API std::int32_t KovraTranactionId;  // 0

// For the programs to hand an SQL error text around; the library only empties it, at Finalize.
extern KVSHARE_API std::string KovraSQLEMessage;

// --- Connections, by their names in the connection file (dbxconf.h)

// Connects and disconnects again. False for a name that is no connection, and when it fails, which
// is always shown.
KVSHARE_API bool CanConnectDBMS(TSQLConnection& Connection, std::string_view Name);

// Disconnects; then, unless the name is blank, connects. Ask Connected() for the outcome.
KVSHARE_API void ConnectDBMS(TSQLConnection& Connection, std::string_view Name, bool ShowError);

KVSHARE_API void DisConnectDBMS(TSQLConnection& Connection);

// --- Queries; a failed one is left closed

KVSHARE_API void RunSQL(TSQLQuery& Query, std::string_view SQL, bool ShowError);
// The lines as they are: not trimmed, `;` not looked for.
KVSHARE_API void RunSQLList(TSQLQuery& Query, const TStrings& Lines, bool ShowError);

// --- Statements
//
// A line is trimmed, skipped when it is empty, and cut before its first `;`. What stands behind the
// `;` is lost, a comment as well as a second statement; so is the rest of a text that has a `;` in
// quotes.

// False for a blank text, which runs nothing.
KVSHARE_API bool RunExecSQL(TSQLConnection& Connection, std::string_view SQL, bool ShowError);

// All lines as one statement, CR LF between them. False for a list without lines.
KVSHARE_API bool RunExecSQLList(TSQLConnection& Connection, const TStrings& Lines, bool ShowError);

// Lines with a `;` end a statement; each runs in a transaction of its own, those after a failed one
// too. False when any of them failed.
KVSHARE_API bool RunMultipleExecSQLList(TSQLConnection& Connection, const TStrings& Lines,
                                        bool ShowError);

// The same statements, each line with CR LF behind, in one transaction: all or none. The first
// failure ends it and goes to the event log, the list with it. sqlbatch.h tells which one it was.
KVSHARE_API bool RunExecSQLBatch(TSQLConnection& Connection, const TStrings& Lines, bool ShowError);

// --- Questions. The SQL names the column that is asked for as the comment says. A query that fails
// is shown, and then throws EDatabaseError `Field '%s' not found`.

KVSHARE_API bool AnyData(TSQLConnection& Connection, std::string_view SQL);  // RECORDCOUNT > 0
KVSHARE_API std::int32_t CountData(TSQLConnection& Connection, std::string_view SQL);
KVSHARE_API std::string StringData(TSQLConnection& Connection, std::string_view SQL);  // MYDATA
// Whether the result has such a column; false as well when the query fails.
KVSHARE_API bool ExistFieldName(TSQLConnection& Connection, std::string_view SQL,
                                std::string_view FieldName);

// Whether GetAllTableNames has the name, in any letter case.
KVSHARE_API bool ExistTable(TSQLConnection& Connection, std::string_view TableName);
// Whether a table and a field in it can be read; nothing is shown or thrown.
KVSHARE_API bool ExistTableBySQL(TSQLConnection& Connection, std::string_view TableName,
                                 std::string_view FieldName);

// Replaces the list by the names of tables and views, without owner and quotes, and without those
// that code page 874 cannot spell. The first name alone decides whether names are quoted: it
// begins and ends with one same character, no letter A to Z, which stands in it an even number of
// times; what stands between its last two is the name. All names are then cut likewise; one without
// them is left empty or cut. The drivers of this library give names of any form so that they come
// whole.
KVSHARE_API void GetAllTableNames(TSQLConnection& Connection, TStrings& List);

// --- Datasets

KVSHARE_API bool InEdit(const TDataSet& DataSet);  // dsEdit, dsInsert
KVSHARE_API void EditDataSet(TDataSet& DataSet);   // Edit, unless it is so already

// "ORDER BY F ASC" for direction 0, else "ORDER BY F DESC".
KVSHARE_API std::string SQLOrderBy(std::string_view FieldName, std::int32_t Direction);

}  // namespace kvshare
