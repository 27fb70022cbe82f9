#include "kvshare/database/sqlbatch.h"

#include "kvshare/data/errors.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/database/sqltransaction.h"

namespace kvshare {

std::string TSQLBatchReport::Text() const {
  if (Committed) return {};
  std::string text;
  if (Statement != 0) {
    text = "Statement " + std::to_string(Statement) + " (line " + std::to_string(Line) + "): ";
  }
  text += Message;
  text +=
      InDoubt ? "\r\nIt is not known whether the batch was written." : "\r\nNothing was written.";
  return text;
}

TSQLBatchReport RunSQLBatch(TSQLConnection& Connection, const TStrings& Lines) {
  TSQLBatchReport report;
  if (Lines.Count() == 0) {
    report.Committed = true;
    return report;
  }
  bool committing = false;
  try {
    StatementTransaction transaction(Connection);
    ForEachSqlStatement(Lines, [&](const SqlStatement& statement) {
      report.Statement = statement.number;
      report.Line = statement.firstLine;
      try {
        Connection.ExecuteDirect(statement.text);
      } catch (...) {
        report.StatementText = statement.text;
        throw;
      }
    });
    report.Statement = 0;
    report.Line = 0;
    committing = true;
    transaction.Commit();
    report.Committed = true;
  } catch (const EServerError& e) {
    report.Message = e.Message();
    report.InDoubt = committing && e.ConnectionLost();
  } catch (const Exception& e) {
    report.Message = e.Message();
  }
  return report;
}

}  // namespace kvshare
