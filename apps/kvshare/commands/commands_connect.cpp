// `kvshare connect`.
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/data/connections.h"
#include "kvshare/data/sql/secrets.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlfunc.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kListExamples =
    "  kvshare connect list                      name, DBMS and driver of every connection\n";
constexpr std::string_view kTestExamples =
    "  kvshare connect test LEDGER               LEDGER  PostgreSQL 15.6\n";
constexpr std::string_view kShowExamples =
    "  kvshare connect show LEDGER               what the connection file has, no password\n";
constexpr std::string_view kTablesExamples =
    "  kvshare connect tables LEDGER             tables and views\n";

void PrintList(const std::function<void(const Row&)>& print, Row& row) {
  RequireConnectionFile();
  TStringList names;
  GetConnectNames(names);
  for (const std::string& name : names) {
    row.Clear();
    row.Cell("name") = name;
    row.Cell("dbms") = GetdbxTradeName(name);
    row.Cell("library") = GetdbxLibraryName(name);
    print(row);
  }
}

RowPrinter PrintTest(const std::string& name) {
  return [name](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, name);
    row.Cell("name") = connection.ConnectionName();
    row.Cell("server") = connection.ServerVersion();
    print(row);
  };
}

RowPrinter PrintParameters(const std::string& name) {
  return [name](const auto& print, Row& row) {
    const std::string alias = UsageText("NAME", name);
    RequireConnection(alias);
    TStringList params;
    GetdbxParams(alias, params);
    for (int i = 0; i < params.Count(); ++i) {
      const std::string_view key = params.Names(i);
      if (key.empty()) continue;
      row.Clear();
      row.Cell("key") = key;
      row.Cell("value") = data::WithoutSecrets(key, params.ValueFromIndex(i));
      print(row);
    }
  };
}

RowPrinter PrintTables(const std::string& name) {
  return [name](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, name);
    TStringList tables;
    GetAllTableNames(connection, tables);
    for (const std::string& table : tables) {
      row.Clear();
      row.Cell("table") = table;
      print(row);
    }
  };
}

using MakePrinter = RowPrinter (*)(const std::string&);

void DeclareForName(Command connect, Plan& plan, std::string_view command, std::string_view purpose,
                    std::string_view examples, MakePrinter make) {
  const auto name = std::make_shared<std::string>();
  const Command declared = AddCommand(connect, plan, command, purpose, examples);
  declared.AddOption("NAME", *name, "A connection of the connection file").Required();
  declared.OnParsed([name, make, &plan] { plan.action = PrintRows(plan, make(*name)); });
}

}  // namespace

void DeclareConnect(Command parent, Plan& plan) {
  const Command connect =
      parent.AddCommand("connect", "The database connections of the connection file");
  connect.RequireCommand();
  AddCommand(connect, plan, "list", "All connections", kListExamples).OnParsed([&plan] {
    plan.action = PrintRows(plan, PrintList);
  });
  DeclareForName(connect, plan, "test", "Connect, and tell the server's version", kTestExamples,
                 PrintTest);
  DeclareForName(connect, plan, "show", "The parameters of a connection", kShowExamples,
                 PrintParameters);
  DeclareForName(connect, plan, "tables", "The tables and views of a connection", kTablesExamples,
                 PrintTables);
}

}  // namespace kvshare::app
