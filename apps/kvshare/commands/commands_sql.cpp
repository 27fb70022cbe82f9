// `kvshare sql`.
#include <memory>
#include <stdexcept>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/data/connections.h"
#include "apps/kvshare/data/rowwriter.h"
#include "apps/kvshare/data/sqltext.h"
#include "apps/kvshare/terminal/inputfile.h"
#include "apps/kvshare/terminal/progress.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/database/sqltransaction.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare sql --connect LEDGER \"SELECT CODE, NAME FROM ITEM\"\n"
    "                                            a table; --csv and --json for programs\n"
    "  kvshare sql --connect LEDGER \"UPDATE ITEM SET PRICE = '12.50' WHERE CODE = 'A'\"\n"
    "                                            in a transaction of its own; the rows changed\n"
    "  kvshare sql --connect LEDGER --batch month-end.sql\n"
    "                                            all statements of the file, or none\n"
    "In a batch a line's first `;` ends the statement, in a quoted text too. A line that would\n"
    "lose something by it is refused before anything runs: begin each statement on its own line.\n";

struct Options {
  std::string connect;
  std::string sql;
  std::string batch;
  bool csv = false;
};

RowForm FormAsked(const Options& options, bool json) {
  if (json) return RowForm::Json;
  return options.csv ? RowForm::Csv : RowForm::Table;
}

// False for a statement that gives no rows: it has run, once.
bool OpenRows(TSQLQuery& query, const std::string& sql) {
  constexpr std::string_view kNoRows = "Cursor not returned from Query";  // of TSQLQuery
  try {
    WithoutBoxes([&] { RunSQL(query, sql, true); });
  } catch (const Exception& e) {
    if (e.Message() == kNoRows) return false;
    throw;
  }
  return true;
}

void PrintQuery(TSQLConnection& connection, const std::string& sql, RowForm form,
                const Stdio& stdio) {
  TSQLQuery query;
  query.SetSQLConnection(&connection);
  if (!OpenRows(query, sql)) return;
  BlockWriter out(stdio.out, "standard output");
  WriteRows(query, form, out);
}

constexpr std::string_view kStandardInput = "-";

std::string ReadWhole(const std::string& name, const Stdio& stdio) {
  std::string bytes;
  if (name == kStandardInput) {
    AppendRest(bytes, stdio.in);
  } else {
    AppendRest(bytes, InputFile(name).Fd());
  }
  return std::string(WithoutUtf8Mark(bytes));
}

// The file's name is UTF-8, whatever letters it has; the reason is code page 874.
[[noreturn]] void RefuseBatch(const std::string& file, std::string_view reason) {
  throw std::runtime_error(file + ": " + Cp874ToUtf8Lossy(reason));
}

TStringList LinesOfBatch(const std::string& file, const Stdio& stdio) {
  TStringList lines;
  const std::string utf8 = ReadWhole(file, stdio);
  try {
    lines.SetText(Utf8ToCp874(utf8));
  } catch (const EConvertError& e) {
    RefuseBatch(file, e.Message());
  }
  if (const std::size_t zero = utf8.find('\0'); zero != std::string::npos) {
    RefuseBatch(file, "a zero byte, at byte " + std::to_string(zero + 1));
  }
  return lines;
}

// Shows how far the batch has come, which reads one line after another.
class ShownLines : public TStringList {
 public:
  ShownLines(const TStringList& lines, const Stdio& stdio)
      : progress_(stdio, "of " + std::to_string(lines.Count()) + " lines", Progress::Lines::None) {
    Assign(lines);
  }
  const std::string& operator[](int index) const override {
    progress_.Show(static_cast<std::uint64_t>(index) + 1);
    return TStringList::operator[](index);
  }

 private:
  mutable Progress progress_;
};

void RunBatch(TSQLConnection& connection, const std::string& file, const Stdio& stdio) {
  TStringList lines = LinesOfBatch(file, stdio);
  if (const auto loss = PrepareBatch(lines)) RefuseBatch(file, *loss);
  TSQLBatchReport report;
  {
    const ShownLines shown(lines, stdio);
    report = RunSQLBatch(connection, shown);
  }
  if (report.Committed) return;
  std::string text = report.Text();
  std::erase(text, '\r');
  RefuseBatch(file, text);
}

// For the person at a terminal; a program asks for JSON.
void TellChanged(std::int64_t rows, RowForm form, const Stdio& stdio) {
  const std::string number = std::to_string(rows);
  if (form == RowForm::Json) {
    BlockWriter out(stdio.out, "standard output");
    out.Buffer() = "{\"changed\":" + number + "}\n";
    out.Flush();
  } else if (IsTerminal(stdio.err)) {
    BlockWriter err(stdio.err, "standard error");
    err.Buffer() = number + (rows == 1 ? " row changed\n" : " rows changed\n");
    err.Flush();
  }
}

// One statement in a transaction of its own, cut as every runner of statements cuts it.
void RunStatement(TSQLConnection& connection, const std::string& sql, SqlKind kind, RowForm form,
                  const Stdio& stdio) {
  if (const auto loss = LossInStatement(sql)) throw Exception(*loss);
  StatementTransaction transaction(connection);
  const std::int64_t rows = connection.ExecuteDirect(BeforeSemicolon(Trim(sql)));
  transaction.Commit();
  if (kind == SqlKind::Change) TellChanged(rows, form, stdio);
}

void RunSql(TSQLConnection& connection, const std::string& sql, RowForm form, const Stdio& stdio) {
  const SqlKind kind = KindOfSql(sql);
  switch (kind) {
    case SqlKind::Query:
      return PrintQuery(connection, sql, form, stdio);
    case SqlKind::ChangeWithRows: {
      StatementTransaction transaction(connection);
      PrintQuery(connection, sql, form, stdio);
      return transaction.Commit();
    }
    case SqlKind::Change:
    case SqlKind::Other:
      return RunStatement(connection, sql, kind, form, stdio);
  }
}

int Run(const Options& options, bool json, const Stdio& stdio) {
  TSQLConnection connection;
  OpenConnection(connection, options.connect);
  if (!options.batch.empty()) {
    RunBatch(connection, options.batch, stdio);
    return kDone;
  }
  const std::string sql = UsageText("SQL", options.sql);
  RunSql(connection, sql, FormAsked(options, json), stdio);
  return kDone;
}

}  // namespace

void DeclareSql(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddCommand(parent, plan, "sql", "Run a query, a statement or a batch", kExamples);
  AddConnect(command, options->connect);
  const Option batch =
      command
          .AddOption("--batch", options->batch, "A file of statements, UTF-8; - is standard input")
          .TypeName("FILE");
  command.AddFlag("--csv", options->csv, "Rows as CSV");
  command.AddOption("SQL", options->sql, "One query or statement").Excludes(batch);
  command.OnParsed([options, &plan] {
    if (options->sql.empty() && options->batch.empty()) RefuseUsage("SQL", "or --batch is needed");
    plan.action = [options, &plan](const Stdio& stdio) { return Run(*options, plan.json, stdio); };
  });
}

}  // namespace kvshare::app
