#include <algorithm>
#include <memory>

#include "apps/kvshare/commands.h"
#include "apps/kvshare/connections.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/rtl/strutils.h"

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

constexpr std::string_view kHidden = "***";

bool IsSecret(std::string_view key) {
  const std::string upper = UpperCase(key);
  return upper.find("PASSWORD") != std::string::npos || upper.find("PWD") != std::string::npos;
}

// One `key=value` of a connection string, without its value where that is a secret.
std::string WithoutSecret(std::string_view part) {
  const std::size_t equals = part.find('=');
  if (equals == std::string_view::npos || !IsSecret(part.substr(0, equals))) {
    return std::string(part);
  }
  return std::string(part.substr(0, equals + 1)).append(kHidden);
}

// A value may be a connection string of its own: `Data Source=x;PWD=y`. From a password in it on,
// which may have a `;` in quotes or braces, nothing is shown.
std::string ShownValue(std::string_view key, std::string_view value) {
  if (IsSecret(key)) return std::string(kHidden);
  std::string shown;
  for (std::string_view rest = value;;) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    const std::string_view part = rest.substr(0, end);
    shown += WithoutSecret(part);
    if (shown.ends_with(kHidden) || end == rest.size()) return shown;
    shown += ';';
    rest.remove_prefix(end + 1);
  }
}

void PrintList(const std::function<void(const Row&)>& print, Row& row) {
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
    if (!Isdbx(alias)) {
      throw Exception("no connection '" + alias + "' in " + GetDbxConnectFileName());
    }
    TStringList params;
    GetdbxParams(alias, params);
    for (int i = 0; i < params.Count(); ++i) {
      const std::string_view key = params.Names(i);
      if (key.empty()) continue;
      row.Clear();
      row.Cell("key") = key;
      row.Cell("value") = ShownValue(key, params.ValueFromIndex(i));
      print(row);
    }
  };
}

RowPrinter PrintTables(const std::string& name) {
  return [name](const auto& print, Row& row) {
    TSQLConnection connection;
    OpenConnection(connection, name);
    TStringList tables;
    connection.GetTableNames(tables, false);
    for (const std::string& table : tables) {
      row.Clear();
      row.Cell("table") = table;
      print(row);
    }
  };
}

using MakePrinter = RowPrinter (*)(const std::string&);

void DeclareForName(CLI::App& connect, Plan& plan, std::string_view command,
                    std::string_view purpose, std::string_view examples, MakePrinter make) {
  const auto name = std::make_shared<std::string>();
  CLI::App* declared = AddCommand(connect, plan, command, purpose, examples);
  declared->add_option("NAME", *name, "A connection of the connection file")->required();
  declared->callback([name, make, &plan] { plan.action = PrintRows(plan, make(*name)); });
}

}  // namespace

void DeclareConnect(CLI::App& parent, Plan& plan) {
  CLI::App* connect =
      parent.add_subcommand("connect", "The database connections of the connection file");
  connect->group("Commands");
  connect->require_subcommand(1);
  AddCommand(*connect, plan, "list", "All connections", kListExamples)->callback([&plan] {
    plan.action = PrintRows(plan, PrintList);
  });
  DeclareForName(*connect, plan, "test", "Connect, and tell the server's version", kTestExamples,
                 PrintTest);
  DeclareForName(*connect, plan, "show", "The parameters of a connection", kShowExamples,
                 PrintParameters);
  DeclareForName(*connect, plan, "tables", "The tables and views of a connection", kTablesExamples,
                 PrintTables);
}

}  // namespace kvshare::app
