#include "apps/posting/company.h"

#include <string>
#include <string_view>

#include "kvshare/database/sqlfunc.h"
#include "kvshare/platform/uguid.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/settings/globals.h"

namespace kvshare::posting {

namespace {

struct TableRow {
  std::string_view name;
  std::string_view key;      // a number, by which the table is looked for
  std::string_view columns;  // %0:s date, %1:s moment, %2:s amount, %3:s long text, %4:d the
                             // longest document number
};

constexpr TableRow kTables[] = {
    {"DOCUMENT", "DOC_LINES",
     "DOC_NO VARCHAR(%4:d) NOT NULL, DOC_DATE %0:s NOT NULL, DOC_CUSTOMER %3:s,"
     " DOC_LINES INTEGER NOT NULL, DOC_NET %2:s NOT NULL, DOC_VAT %2:s NOT NULL,"
     " DOC_ROUNDING %2:s NOT NULL, DOC_TOTAL %2:s NOT NULL, DOC_POSTED %1:s NOT NULL,"
     " DOC_SENDNO VARCHAR(17) NOT NULL, PRIMARY KEY (DOC_NO)"},
    {"DOCLINE", "LIN_NO",
     "LIN_DOC VARCHAR(%4:d) NOT NULL, LIN_NO INTEGER NOT NULL, LIN_ITEM %3:s,"
     " LIN_QTY %2:s NOT NULL, LIN_PRICE %2:s NOT NULL, LIN_DISCOUNT %2:s NOT NULL,"
     " LIN_VATRATE %2:s NOT NULL, LIN_NET %2:s NOT NULL, LIN_VAT %2:s NOT NULL,"
     " PRIMARY KEY (LIN_DOC, LIN_NO)"},
    {"DOCPAPER", "PAP_NO",
     "PAP_DOC VARCHAR(%4:d) NOT NULL, PAP_NO INTEGER NOT NULL, PAP_RULES VARCHAR(120) NOT NULL,"
     " PAP_ADDRESS %3:s, PAP_TAXID VARCHAR(13), PAP_BRANCH VARCHAR(5), PAP_REFERENCE %3:s,"
     " PAP_REFDATE %0:s, PAP_REASON %3:s, PRIMARY KEY (PAP_DOC, PAP_NO)"},
    {"SCTYTAB", "SEC_POSN",
     "SEC_TEMPDEF INTEGER NOT NULL, SEC_POSN INTEGER NOT NULL, SEC_READ CHAR(1),"
     " SEC_WRITE CHAR(1), SEC_INSERT CHAR(1), SEC_DELETE CHAR(1), SEC_EXECUTE CHAR(1),"
     " PRIMARY KEY (SEC_TEMPDEF, SEC_POSN)"},
    {"KOVRASYNC", "SYN_KEY",
     "SYN_KEY INTEGER NOT NULL, SYN_TABLENAME VARCHAR(40), SYN_LASTSEND VARCHAR(17),"
     " SYN_LASTUPD VARCHAR(17), PRIMARY KEY (SYN_KEY)"},
    {"KOVRAVERSION", "VER_KEY",
     "VER_KEY INTEGER NOT NULL, VER_GUID VARCHAR(40), VER_DATA_ID VARCHAR(40),"
     " PRIMARY KEY (VER_KEY)"},
};

// %0:d the screen, %1:s and %2:s the identities.
constexpr std::string_view kRows[] = {
    "INSERT INTO SCTYTAB VALUES (%0:d, 1, 'Y', 'Y', 'Y', 'Y', 'Y');",
    "INSERT INTO SCTYTAB VALUES (%0:d, 2, 'Y', 'N', 'N', 'N', 'N');",
    "INSERT INTO KOVRAVERSION VALUES (1, '%1:s', '%2:s');",
};

bool HasTable(TSQLConnection& connection, const TableRow& table) {
  return ExistTableBySQL(connection, table.name, table.key);
}

// They come in one batch: this one is there with all of them or not at all.
bool HasRows(TSQLConnection& connection) {
  return AnyData(connection, "SELECT COUNT(*) AS RECORDCOUNT FROM KOVRAVERSION WHERE VER_KEY = 1");
}

TStringList MissingTables(TSQLConnection& connection) {
  TStringList statements;
  for (const TableRow& table : kTables) {
    if (HasTable(connection, table)) continue;
    const std::string columns =
        Format(table.columns, {SQLDate, SQLDateTime, SQLBaht, SQLText, kLongestNumber});
    statements.Add(Format("CREATE TABLE %s (%s);", {table.name, columns}));
  }
  return statements;
}

}  // namespace

bool IsCompany(TSQLConnection& connection) {
  for (const TableRow& table : kTables) {
    if (!HasTable(connection, table)) return false;
  }
  return HasRows(connection);
}

TSQLBatchReport CreateCompany(TSQLConnection& connection) {
  // Some servers cannot fill a table in the transaction that makes it.
  TSQLBatchReport report = RunSQLBatch(connection, MissingTables(connection));
  if (!report.Committed || HasRows(connection)) return report;
  TStringList rows;
  for (const std::string_view row : kRows) {
    rows.Add(Format(row, {kPostingTemplate, GetGuid(), GetGuid()}));
  }
  return RunSQLBatch(connection, rows);
}

}  // namespace kvshare::posting
