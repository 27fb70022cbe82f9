#include <array>
#include <memory>

#include "apps/kvshare/commands.h"
#include "apps/kvshare/connections.h"
#include "apps/kvshare/inputfile.h"
#include "apps/kvshare/legible.h"
#include "apps/kvshare/rowset.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlfunc.h"
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
    "                                            in a transaction of its own\n"
    "  kvshare sql --connect LEDGER --batch month-end.sql\n"
    "                                            all statements of the file, or none\n"
    "A line is cut before its first `;`, in a quoted text too; in a batch it ends a statement.\n";

struct Options {
  std::string connect;
  std::string sql;
  std::string batch;
  bool csv = false;
};

// Behind blanks and comments.
std::string_view FirstWord(std::string_view sql) {
  for (;;) {
    sql = Trim(sql);
    const bool block = sql.starts_with("/*");
    if (!block && !sql.starts_with("--")) return sql;
    const std::string_view close = block ? "*/" : "\n";
    const std::size_t end = sql.find(close);
    if (end == std::string_view::npos) return {};
    sql.remove_prefix(end + close.size());
  }
}

bool GivesRows(std::string_view sql) {
  constexpr std::array<std::string_view, 8> kWords = {"SELECT", "WITH",    "VALUES",   "PRAGMA",
                                                      "SHOW",   "EXPLAIN", "DESCRIBE", "("};
  const std::string_view text = FirstWord(sql);
  for (const std::string_view word : kWords) {
    if (SameText(text.substr(0, word.size()), word)) return true;
  }
  return false;
}

RowForm FormAsked(const Options& options, bool json) {
  if (json) return RowForm::Json;
  return options.csv ? RowForm::Csv : RowForm::Table;
}

void PrintQuery(TSQLConnection& connection, const std::string& sql, RowForm form,
                const Stdio& stdio) {
  TSQLQuery query;
  query.SetSQLConnection(&connection);
  WithoutBoxes([&] { RunSQL(query, sql, true); });
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

// The rule that cuts a line can take a half of a quoted text away: whoever typed it is told.
void NoteWhatIsCut(std::string_view line, std::string_view place, BlockWriter& notes) {
  const std::size_t end = line.find(';');
  if (end == std::string_view::npos) return;
  const std::string_view rest = Trim(line.substr(end + 1));
  if (rest.empty() || rest.starts_with("--")) return;
  notes.Buffer()
      .append("kvshare: note: ")
      .append(place)
      .append("what stands behind the first `;` is not run: ")
      .append(Legible(Cp874ToUtf8Lossy(rest)));
  notes.EndLine();
}

TStringList LinesOfBatch(const std::string& file, const Stdio& stdio) {
  TStringList lines;
  const std::string utf8 = ReadWhole(file, stdio);
  try {
    lines.SetText(Utf8ToCp874(utf8));
  } catch (const EConvertError& e) {
    throw Exception(file + ": " + e.Message());
  }
  if (const std::size_t zero = utf8.find('\0'); zero != std::string::npos) {
    throw Exception(file + ": a zero byte, at byte " + std::to_string(zero + 1));
  }
  return lines;
}

void RunBatch(TSQLConnection& connection, const std::string& file, const Stdio& stdio) {
  const TStringList lines = LinesOfBatch(file, stdio);
  BlockWriter notes(stdio.err, "standard error");
  for (int i = 0; i < lines.Count(); ++i) {
    NoteWhatIsCut(lines[i], file + ", line " + std::to_string(i + 1) + ": ", notes);
  }
  notes.Flush();
  const TSQLBatchReport report = RunSQLBatch(connection, lines);
  if (report.Committed) return;
  std::string text = file + ": " + report.Text();
  std::erase(text, '\r');
  throw Exception(text);
}

void RunStatement(TSQLConnection& connection, const std::string& sql, const Stdio& stdio) {
  BlockWriter notes(stdio.err, "standard error");
  NoteWhatIsCut(sql, "", notes);
  notes.Flush();
  WithoutBoxes([&] { RunExecSQL(connection, sql, true); });
}

int Run(const Options& options, bool json, const Stdio& stdio) {
  TSQLConnection connection;
  OpenConnection(connection, options.connect);
  if (!options.batch.empty()) {
    RunBatch(connection, options.batch, stdio);
    return kDone;
  }
  const std::string sql = UsageText("SQL", options.sql);
  if (GivesRows(sql)) {
    PrintQuery(connection, sql, FormAsked(options, json), stdio);
  } else {
    RunStatement(connection, sql, stdio);
  }
  return kDone;
}

}  // namespace

void DeclareSql(CLI::App& parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      AddCommand(parent, plan, "sql", "Run a query, a statement or a batch", kExamples);
  AddConnect(*command, options->connect);
  auto* batch = command
                    ->add_option("--batch", options->batch,
                                 "A file of statements, UTF-8; - is standard input")
                    ->type_name("FILE");
  command->add_flag("--csv", options->csv, "Rows as CSV");
  command->add_option("SQL", options->sql, "One query or statement")->excludes(batch);
  command->callback([options, &plan] {
    if (options->sql.empty() && options->batch.empty()) RefuseUsage("SQL", "or --batch is needed");
    plan.action = [options, &plan](const Stdio& stdio) { return Run(*options, plan.json, stdio); };
  });
}

}  // namespace kvshare::app
