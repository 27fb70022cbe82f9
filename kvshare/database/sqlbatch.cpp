#include "kvshare/database/sqlbatch.h"

#include "kvshare/data/contract/errors.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/database/sqltransaction.h"

namespace kvshare {

namespace {

void AppendStatements(std::string& text, const TSQLStatements& statements) {
  text += std::to_string(statements.First);
  if (statements.Last != statements.First) text += " to " + std::to_string(statements.Last);
}

// "Statements 1 to 3 and 5"
std::string Named(const std::vector<TSQLStatements>& written) {
  const bool one = written.size() == 1 && written[0].First == written[0].Last;
  std::string text = one ? "Statement " : "Statements ";
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (i > 0) text += i + 1 < written.size() ? ", " : " and ";
    AppendStatements(text, written[i]);
  }
  return text;
}

std::string WhatWasWritten(const TSQLBatchReport& report) {
  if (report.Written.empty()) {
    return report.InDoubt ? "It is not known whether the batch was written."
                          : "Nothing was written.";
  }
  return Named(report.Written) + " had been committed before; " +
         (report.InDoubt ? "it is not known whether anything else was written."
                         : "nothing else was written.");
}

// Follows how the server ends the transaction before its end.
class EarlyEnds {
 public:
  EarlyEnds(const TSQLConnection& connection, TSQLBatchReport& report)
      : connection_(connection), report_(report) {}

  // After statement `number`, of which one that failed wrote nothing.
  void Look(int number, bool failed) {
    const bool committed = Raised(commits_, connection_.EarlyCommits());
    const bool rolledBack = Raised(rollbacks_, connection_.EarlyRollbacks());
    if (!committed && !rolledBack) return;
    if (committed && rolledBack) {
      report_.InDoubt = true;
    } else if (committed) {
      AddWritten(failed ? number - 1 : number);
    }
    first_ = number + 1;
  }

 private:
  static bool Raised(std::int64_t& known, std::int64_t now) {
    const bool raised = now > known;
    known = now;
    return raised;
  }
  void AddWritten(int last) {
    if (last < first_) return;
    std::vector<TSQLStatements>& written = report_.Written;
    if (!written.empty() && written.back().Last + 1 == first_) {
      written.back().Last = last;
    } else {
      written.push_back({first_, last});
    }
  }

  const TSQLConnection& connection_;
  TSQLBatchReport& report_;
  int first_ = 1;  // of the statements that the server has neither committed nor taken back
  std::int64_t commits_ = 0;
  std::int64_t rollbacks_ = 0;
};

void RunStatements(TSQLConnection& connection, const TStrings& lines, TSQLBatchReport& report) {
  EarlyEnds ends(connection, report);
  ForEachSqlStatement(lines, [&](const SqlStatement& statement) {
    report.Statement = statement.number;
    report.Line = statement.firstLine;
    try {
      connection.ExecuteDirect(statement.text);
      ends.Look(statement.number, false);
    } catch (...) {
      report.StatementText = statement.text;
      ends.Look(statement.number, true);
      throw;
    }
  });
  report.Statement = 0;
  report.Line = 0;
}

}  // namespace

std::string TSQLBatchReport::Text() const {
  if (Committed) return {};
  std::string text;
  if (Statement != 0) {
    text = "Statement " + std::to_string(Statement) + " (line " + std::to_string(Line) + "): ";
  }
  return text + Message + "\r\n" + WhatWasWritten(*this);
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
    RunStatements(Connection, Lines, report);
    committing = true;
    transaction.Commit();
    report = {};
    report.Committed = true;
  } catch (const EServerError& e) {
    report.Message = e.Message();
    report.InDoubt = report.InDoubt || (committing && e.ConnectionLost());
  } catch (const Exception& e) {
    report.Message = e.Message();
  }
  return report;
}

}  // namespace kvshare
