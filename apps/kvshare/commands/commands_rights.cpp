// `kvshare rights`.
#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/data/connections.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/database/sqlrights.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kShowExamples =
    "  kvshare rights show --connect LEDGER      every screen and position that has rights\n";
constexpr std::string_view kCheckExamples =
    "  kvshare rights check --connect LEDGER 2 10\n"
    "                                            what position 2 may do in screen 10\n"
    "  kvshare rights check --connect LEDGER 2 10 insert && echo yes\n"
    "                                            exit status 1 where the right is refused\n";

struct RightRow {
  std::string_view name;
  std::string_view column;
  bool (*granted)(TSQLConnection&, std::int32_t, std::int32_t);
};

constexpr RightRow kRights[] = {
    {"read", "SEC_READ", MayICanRead},          {"write", "SEC_WRITE", MayICanWrite},
    {"insert", "SEC_INSERT", MayICanInsert},    {"delete", "SEC_DELETE", MayICanDelete},
    {"execute", "SEC_EXECUTE", MayICanExecute},
};

struct Options {
  std::string connect;
  std::string position;
  std::string screen;
  std::string right;
};

std::int32_t UsageNumber(std::string_view operand, std::string_view typed) {
  const std::int64_t number = UsageInteger(operand, typed);
  if (!std::in_range<std::int32_t>(number)) RefuseUsage(operand, "is out of range");
  return static_cast<std::int32_t>(number);
}

struct Question {
  std::string connect;
  std::int32_t position = 0;
  std::int32_t screen = 0;
};

const RightRow& RightNamed(std::string_view name) {
  const auto* row =
      std::ranges::find_if(kRights, [name](const RightRow& r) { return SameText(r.name, name); });
  if (row == std::end(kRights)) RefuseUsage("RIGHT", "is read, write, insert, delete or execute");
  return *row;
}

bool IsGranted(const RightRow& right, TSQLConnection& connection, const Question& question) {
  bool granted = false;
  WithoutBoxes([&] { granted = right.granted(connection, question.position, question.screen); });
  return granted;
}

std::string_view YesOrNo(bool yes) {
  return yes ? "Y" : "N";
}

// As it is stored: only exactly "Y" grants.
RowPrinter PrintTable(const std::string& connect) {
  return [connect](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, connect);
    TSQLQuery query;
    query.SetSQLConnection(&connection);
    WithoutBoxes(
        [&] { RunSQL(query, "SELECT * FROM SCTYTAB ORDER BY SEC_TEMPDEF, SEC_POSN", true); });
    for (; !query.Eof(); query.Next()) {
      row.Clear();
      row.Number("template", query.FieldByName("SEC_TEMPDEF").AsLargeInt());
      row.Number("position", query.FieldByName("SEC_POSN").AsLargeInt());
      for (const RightRow& right : kRights) {
        row.Cell(right.name) = query.FieldByName(right.column).AsString();
      }
      print(row);
    }
  };
}

RowPrinter PrintRights(const Question& question) {
  return [question](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, question.connect);
    for (const RightRow& right : kRights) {
      row.Clear();
      row.Cell("right") = right.name;
      row.Cell("granted") = YesOrNo(IsGranted(right, connection, question));
      print(row);
    }
  };
}

RowPrinter PrintOneRight(const Question& question, const RightRow& right) {
  return [question, &right](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, question.connect);
    const bool granted = IsGranted(right, connection, question);
    row.Cell("right") = right.name;
    row.Cell("granted") = YesOrNo(granted);
    print(row);
    if (!granted) throw Exception(LoadStr(rstrEGrantUpdate01));
  };
}

void DeclareShow(Command rights, Plan& plan) {
  const auto connect = std::make_shared<std::string>();
  const Command command =
      AddCommand(rights, plan, "show", "All rights, as they are stored", kShowExamples);
  AddConnect(command, *connect);
  command.OnParsed([connect, &plan] { plan.action = PrintRows(plan, PrintTable(*connect)); });
}

void DeclareCheck(Command rights, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command = AddCommand(
      rights, plan, "check", "What the holder of a position may do in a screen", kCheckExamples);
  AddConnect(command, options->connect);
  command.AddOption("POSITION", options->position, "The user's position; 0 may do everything")
      .Required();
  command.AddOption("TEMPLATE", options->screen, "The screen; everybody may everything in 0")
      .Required();
  command.AddOption("RIGHT", options->right, "read, write, insert, delete or execute");
  command.OnParsed([options, &plan] {
    const Question question{options->connect, UsageNumber("POSITION", options->position),
                            UsageNumber("TEMPLATE", options->screen)};
    plan.action = PrintRows(plan, options->right.empty()
                                      ? PrintRights(question)
                                      : PrintOneRight(question, RightNamed(options->right)));
  });
}

}  // namespace

void DeclareRights(Command parent, Plan& plan) {
  const Command rights = parent.AddCommand("rights", "The access rights of a company");
  rights.RequireCommand();
  DeclareShow(rights, plan);
  DeclareCheck(rights, plan);
}

}  // namespace kvshare::app
