// The commands as the option parser sees them.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/terminal/items.h"
#include "apps/kvshare/terminal/usage.h"
#include "kvshare/rtl/currency.h"

namespace kvshare::app {

// What a command line asks for; the callback of the command that was named fills it.
struct Plan {
  std::vector<std::string> operands;
  bool json = false;
  std::function<void(const Stdio&)> prepare;  // optional, runs first; may refuse the usage
  Transform transform;                        // a command for items, or
  std::function<int(const Stdio&)> action;    // one that does not read items
};

void DeclareWords(CLI::App& parent, Plan& plan);
void DeclareRound(CLI::App& parent, Plan& plan);
void DeclareShare(CLI::App& parent, Plan& plan);
void DeclareQty(CLI::App& parent, Plan& plan);
void DeclareFormat(CLI::App& parent, Plan& plan);
void DeclareMask(CLI::App& parent, Plan& plan);
void DeclareDate(CLI::App& parent, Plan& plan);
void DeclareDateExplain(CLI::App& date, Plan& plan);
void DeclareFiles(CLI::App& parent, Plan& plan);
void DeclareEncode(CLI::App& parent, Plan& plan);
void DeclareDecode(CLI::App& parent, Plan& plan);
void DeclareKey(CLI::App& parent, Plan& plan);
void DeclareMessage(CLI::App& parent, Plan& plan);
void DeclareDoctor(CLI::App& parent, Plan& plan);
void DeclareSettings(CLI::App& parent, Plan& plan);
void DeclareDialect(CLI::App& parent, Plan& plan);
void DeclareDialog(CLI::App& parent, Plan& plan);
void DeclareLog(CLI::App& parent, Plan& plan);
void DeclareDataset(CLI::App& parent, Plan& plan);
void DeclareCompany(CLI::App& parent, Plan& plan);
void DeclareCompanyCreate(CLI::App& company, Plan& plan);
void DeclarePost(CLI::App& parent, Plan& plan);
void DeclarePrinters(CLI::App& parent, Plan& plan);
void DeclareReceipts(CLI::App& parent, Plan& plan);
void DeclareVersion(CLI::App& parent, Plan& plan);
void DeclareConnect(CLI::App& parent, Plan& plan);
void DeclareEdit(CLI::App& parent, Plan& plan);
void DeclareSql(CLI::App& parent, Plan& plan);
void DeclareRights(CLI::App& parent, Plan& plan);
void DeclareReplication(CLI::App& parent, Plan& plan);

// Adds a command with its `--json` and its worked examples.
CLI::App* AddCommand(CLI::App& parent, Plan& plan, std::string_view name, std::string_view purpose,
                     std::string_view examples);

void AddJson(CLI::App& command, Plan& plan);

// One that prints no rows, so that there is nothing for `--json`.
CLI::App* AddQuietCommand(CLI::App& parent, std::string_view name, std::string_view purpose,
                          std::string_view examples);

// The operands of a command for items.
void AddItems(CLI::App& command, Plan& plan, std::string_view name, std::string_view description);

// A transform for commands whose items are amounts; the amount is a member of each row.
Transform OnAmounts(std::string_view member, std::function<void(Currency, Row&)> make);

// An action that prints rows which need no input.
using RowPrinter = std::function<void(const std::function<void(const Row&)>& print, Row& row)>;
std::function<int(const Stdio&)> PrintRows(const Plan& plan, RowPrinter make);

}  // namespace kvshare::app
