#include "apps/kvshare/commands.h"

#include "apps/receipts/amounts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

CLI::App* AddCommand(CLI::App& parent, Plan& plan, std::string_view name, std::string_view purpose,
                     std::string_view examples) {
  CLI::App* command = AddQuietCommand(parent, name, purpose, examples);
  AddJson(*command, plan);
  return command;
}

void AddJson(CLI::App& command, Plan& plan) {
  command.add_flag("--json", plan.json, "One JSON object a line");
}

CLI::App* AddQuietCommand(CLI::App& parent, std::string_view name, std::string_view purpose,
                          std::string_view examples) {
  CLI::App* command = parent.add_subcommand(std::string(name), std::string(purpose));
  command->group("Commands");
  command->footer("\nExamples:\n" + std::string(examples));
  return command;
}

void AddItems(CLI::App& command, Plan& plan, std::string_view name, std::string_view description) {
  command.add_option(std::string(name), plan.operands,
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

void RefuseUsage(std::string_view option, std::string_view reason) {
  throw CLI::ValidationError(std::string(option), std::string(reason));
}

std::string UsageText(std::string_view option, std::string_view utf8) {
  try {
    return Utf8ToCp874(utf8);
  } catch (const EConvertError& e) {
    RefuseUsage(option, e.Message());
  }
}

// The option parser would read 010 as eight.
std::int64_t UsageInteger(std::string_view option, std::string_view utf8) {
  try {
    return StrToInt64(UsageText(option, utf8));
  } catch (const EConvertError& e) {
    RefuseUsage(option, Cp874ToUtf8Lossy(e.Message()));
  }
}

Currency UsageAmount(std::string_view option, std::string_view utf8) {
  try {
    return receipts::ParseAmount(UsageText(option, utf8));
  } catch (const EConvertError& e) {
    RefuseUsage(option, Cp874ToUtf8Lossy(e.Message()));
  }
}

void AddEra(CLI::App& command, std::string& era) {
  command
      .add_option("--era", era,
                  "Years of the Buddhist era (543) or not (0); default: the machine's")
      ->type_name("543|0");
}

Word UsageEra(std::string_view era) {
  if (era.empty()) return static_cast<Word>(TKovraDate::YearOffset());
  if (era == "543") return kBuddhistEraOffset;
  if (era == "0") return 0;
  RefuseUsage("--era", "is 543 or 0");
}

}  // namespace kvshare::app
