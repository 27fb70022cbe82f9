// `kvshare replication`.
#include <memory>
#include <optional>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/data/connections.h"
#include "kvshare/database/sqlreplication.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kShowExamples =
    "  kvshare replication show --connect LEDGER last send number, its time, identities\n";
constexpr std::string_view kTakeExamples =
    "  kvshare replication take --connect LEDGER the next number, which nobody else gets\n";
constexpr std::string_view kUpdateExamples =
    "  kvshare replication update --connect LEDGER 1200\n"
    "                                            the next number, 1200 at least\n";

struct FactRow {
  std::string_view name;
  std::string (*read)(TSQLConnection&);
};

constexpr FactRow kFacts[] = {
    {"lastsend", SQLReadRpl},
    {"changed", SQLReadRpldate},
    {"origin", OriginID},
    {"data", DataID},
};

RowPrinter PrintFacts(const std::string& connect) {
  return [connect](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, connect);
    for (const FactRow& fact : kFacts) {
      row.Clear();
      std::string value;
      WithoutBoxes([&] { value = fact.read(connection); });
      row.Cell("name") = fact.name;
      row.Cell("value") = value;
      print(row);
    }
  };
}

// Prints the number that `take` gets from an open connection.
RowPrinter PrintNumber(const std::string& connect,
                       const std::function<std::string(TSQLConnection&)>& take) {
  return [connect, take](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, connect);
    std::string number;
    WithoutBoxes([&] { number = take(connection); });
    row.Cell("number") = number;
    print(row);
  };
}

void DeclareShow(Command replication, Plan& plan) {
  const auto connect = std::make_shared<std::string>();
  const Command command =
      AddCommand(replication, plan, "show",
                 "The last number, its time, and the database's identity", kShowExamples);
  AddConnect(command, *connect);
  command.OnParsed([connect, &plan] { plan.action = PrintRows(plan, PrintFacts(*connect)); });
}

void DeclareTake(Command replication, Plan& plan) {
  const auto connect = std::make_shared<std::string>();
  const Command command =
      AddCommand(replication, plan, "take", "Take the next send number", kTakeExamples);
  AddConnect(command, *connect);
  command.OnParsed(
      [connect, &plan] { plan.action = PrintRows(plan, PrintNumber(*connect, TakeNextRpl)); });
}

void DeclareUpdate(Command replication, Plan& plan) {
  struct Options {
    std::string connect;
    std::string least;
  };
  const auto options = std::make_shared<Options>();
  const Command command =
      AddCommand(replication, plan, "update",
                 "Move the number on, past a peer's; two at once get the same", kUpdateExamples);
  AddConnect(command, options->connect);
  command.AddOption("NUMBER", options->least, "The peer's number").Required();
  command.OnParsed([options, &plan] {
    const std::int64_t least = UsageInteger("NUMBER", options->least);
    plan.action =
        PrintRows(plan, PrintNumber(options->connect, [least](TSQLConnection& connection) {
                    return UpdateNextRpl(connection, least);
                  }));
  });
}

}  // namespace

void DeclareReplication(Command parent, Plan& plan) {
  const Command replication =
      parent.AddCommand("replication", "The send counter and the identity of a database");
  replication.RequireCommand();
  DeclareShow(replication, plan);
  DeclareTake(replication, plan);
  DeclareUpdate(replication, plan);
}

}  // namespace kvshare::app
