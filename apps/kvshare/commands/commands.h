// The commands as the option parser sees them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/terminal/itemloop.h"
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

void DeclareWords(Command parent, Plan& plan);
void DeclareRound(Command parent, Plan& plan);
void DeclareShare(Command parent, Plan& plan);
void DeclareQty(Command parent, Plan& plan);
void DeclareFormat(Command parent, Plan& plan);
void DeclareMask(Command parent, Plan& plan);
void DeclareDate(Command parent, Plan& plan);
void DeclareDateExplain(Command date, Plan& plan);
void DeclareFiles(Command parent, Plan& plan);
void DeclareEncode(Command parent, Plan& plan);
void DeclareDecode(Command parent, Plan& plan);
void DeclareKey(Command parent, Plan& plan);
void DeclareMessage(Command parent, Plan& plan);
void DeclareDoctor(Command parent, Plan& plan);
void DeclareSettings(Command parent, Plan& plan);
void DeclareDialect(Command parent, Plan& plan);
void DeclareDialog(Command parent, Plan& plan);
void DeclareLog(Command parent, Plan& plan);
void DeclareDataset(Command parent, Plan& plan);
void DeclareCompany(Command parent, Plan& plan);
void DeclareCompanyCreate(Command company, Plan& plan);
void DeclarePost(Command parent, Plan& plan);
void DeclarePrinters(Command parent, Plan& plan);
void DeclareReprint(Command parent, Plan& plan);
void DeclareReceipts(Command parent, Plan& plan);
void DeclareShop(Command parent, Plan& plan);
void DeclareVersion(Command parent, Plan& plan);
void DeclareConnect(Command parent, Plan& plan);
void DeclareEdit(Command parent, Plan& plan);
void DeclareSql(Command parent, Plan& plan);
void DeclareRights(Command parent, Plan& plan);
void DeclareReplication(Command parent, Plan& plan);

// Adds a command with its `--json` and its worked examples.
Command AddCommand(Command parent, Plan& plan, std::string_view name, std::string_view purpose,
                   std::string_view examples);

void AddJson(Command command, Plan& plan);

// One that prints no rows, so that there is nothing for `--json`.
Command AddQuietCommand(Command parent, std::string_view name, std::string_view purpose,
                        std::string_view examples);

// The operands of a command for items.
void AddItems(Command command, Plan& plan, std::string_view name, std::string_view description);

// A transform for commands whose items are amounts; the amount is a member of each row.
Transform OnAmounts(std::string_view member, std::function<void(Currency, Row&)> make);

// An action that prints rows which need no input.
using RowPrinter = std::function<void(const std::function<void(const Row&)>& print, Row& row)>;
std::function<int(const Stdio&)> PrintRows(const Plan& plan, RowPrinter make);

}  // namespace kvshare::app
