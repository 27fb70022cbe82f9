#include "apps/kvshare/commands/commands.h"

#include "apps/receipts/amounts.h"

namespace kvshare::app {

Command AddCommand(Command parent, Plan& plan, std::string_view name, std::string_view purpose,
                   std::string_view examples) {
  const Command command = AddQuietCommand(parent, name, purpose, examples);
  AddJson(command, plan);
  return command;
}

void AddJson(Command command, Plan& plan) {
  command.AddFlag("--json", plan.json, "One JSON object a line");
}

Command AddQuietCommand(Command parent, std::string_view name, std::string_view purpose,
                        std::string_view examples) {
  const Command command = parent.AddCommand(std::string(name), std::string(purpose));
  command.SetFooter("\nExamples:\n" + std::string(examples));
  return command;
}

void AddItems(Command command, Plan& plan, std::string_view name, std::string_view description) {
  command.AddOption(std::string(name), plan.operands,
                    std::string(description) + "; without any, one a line from standard input");
}

Transform OnAmounts(std::string_view member, std::function<void(Currency, Row&)> make) {
  return [member, make = std::move(make)](std::string_view item, Row& row) {
    const Currency amount = receipts::ParseAmount(item);
    if (row.Json()) receipts::AppendFourDecimals(row.Member(member), amount);
    make(amount, row);
  };
}

std::function<int(const Stdio&)> PrintRows(const Plan& plan, RowPrinter make) {
  return [&plan, make = std::move(make)](const Stdio& stdio) {
    BlockWriter out(stdio.out, "standard output");
    Row row(plan.json);
    const auto print = [&out](const Row& filled) {
      filled.AppendTo(out.Buffer());
      out.EndLine();
    };
    make(print, row);
    out.Flush();
    return kDone;
  };
}

}  // namespace kvshare::app
