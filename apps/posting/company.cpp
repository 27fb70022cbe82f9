#include "apps/posting/company.h"

#include <initializer_list>
#include <string_view>

#include "kvshare/database/sqlfunc.h"
#include "kvshare/platform/uguid.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/settings/globals.h"

namespace kvshare::posting {

namespace {

// %0:s date, %1:s moment, %2:s amount, %3:s long text, %4:d the longest number.
// NOLINTBEGIN(bugprone-suspicious-missing-comma): each table is one text
constexpr std::string_view kTables[] = {
    "CREATE TABLE DOCUMENT (DOC_NO VARCHAR(%4:d) NOT NULL, DOC_DATE %0:s NOT NULL,"
    " DOC_CUSTOMER %3:s, DOC_LINES INTEGER NOT NULL, DOC_NET %2:s NOT NULL, DOC_VAT %2:s NOT NULL,"
    " DOC_ROUNDING %2:s NOT NULL, DOC_TOTAL %2:s NOT NULL, DOC_POSTED %1:s NOT NULL,"
    " DOC_SENDNO VARCHAR(17) NOT NULL, PRIMARY KEY (DOC_NO));",
    "CREATE TABLE DOCLINE (LIN_DOC VARCHAR(%4:d) NOT NULL, LIN_NO INTEGER NOT NULL, LIN_ITEM %3:s,"
    " LIN_QTY %2:s NOT NULL, LIN_PRICE %2:s NOT NULL, LIN_DISCOUNT %2:s NOT NULL,"
    " LIN_VATRATE %2:s NOT NULL, LIN_NET %2:s NOT NULL, LIN_VAT %2:s NOT NULL,"
    " PRIMARY KEY (LIN_DOC, LIN_NO));",
    "CREATE TABLE SCTYTAB (SEC_TEMPDEF INTEGER NOT NULL, SEC_POSN INTEGER NOT NULL,"
    " SEC_READ CHAR(1), SEC_WRITE CHAR(1), SEC_INSERT CHAR(1), SEC_DELETE CHAR(1),"
    " SEC_EXECUTE CHAR(1), PRIMARY KEY (SEC_TEMPDEF, SEC_POSN));",
    "CREATE TABLE KOVRASYNC (SYN_KEY INTEGER NOT NULL, SYN_TABLENAME VARCHAR(40),"
    " SYN_LASTSEND VARCHAR(17), SYN_LASTUPD VARCHAR(17), PRIMARY KEY (SYN_KEY));",
    "CREATE TABLE KOVRAVERSION (VER_KEY INTEGER NOT NULL, VER_GUID VARCHAR(40),"
    " VER_DATA_ID VARCHAR(40), PRIMARY KEY (VER_KEY));",
};
// NOLINTEND(bugprone-suspicious-missing-comma)

// %0:d the screen, %1:s and %2:s the identities.
constexpr std::string_view kRows[] = {
    "INSERT INTO SCTYTAB VALUES (%0:d, 1, 'Y', 'Y', 'Y', 'Y', 'Y');",
    "INSERT INTO SCTYTAB VALUES (%0:d, 2, 'Y', 'N', 'N', 'N', 'N');",
    "INSERT INTO KOVRAVERSION VALUES (1, '%1:s', '%2:s');",
};

}  // namespace

bool IsCompany(TSQLConnection& connection) {
  return ExistTable(connection, "DOCUMENT");
}

TSQLBatchReport CreateCompany(TSQLConnection& connection) {
  TStringList tables;
  for (const std::string_view table : kTables) {
    tables.Add(Format(table, {SQLDate, SQLDateTime, SQLBaht, SQLText, kLongestNumber}));
  }
  // Some servers cannot fill a table in the transaction that makes it.
  TSQLBatchReport report = RunSQLBatch(connection, tables);
  if (!report.Committed) return report;
  TStringList rows;
  for (const std::string_view row : kRows) {
    rows.Add(Format(row, {kPostingTemplate, GetGuid(), GetGuid()}));
  }
  return RunSQLBatch(connection, rows);
}

}  // namespace kvshare::posting
