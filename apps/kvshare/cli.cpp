#include "apps/kvshare/cli.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <new>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/terminal/suggestion.h"
#include "apps/kvshare/version.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kFooter =
    "\nWithout operands a command reads one item a line from standard input and writes one line\n"
    "for each. An item that cannot be read gives an empty line, and its number and reason on\n"
    "standard error. Exit status: 0 done, 1 something could not be read, 2 wrong usage.\n"
    "`kvshare COMMAND --help` shows options and examples; man kvshare shows all.\n";

// The option parser takes `-5` for an operand but `-.5` for an option. A blank in front makes it an
// operand too, and every command drops blanks around an item. A setting is kept as it is given.
void MarkNegativeFractions(std::vector<std::string>& arguments) {
  if (!arguments.empty() && arguments.front() == "settings") return;
  for (std::string& argument : arguments) {
    if (argument == "--") return;
    if (argument.size() > 1 && argument[0] == '-' && (argument[1] == '.' || argument[1] == ',')) {
      argument.insert(0, 1, ' ');
    }
  }
}

void Declare(CLI::App& app, Plan& plan) {
  app.set_version_flag("--version", "kvshare " + std::string(kVersion), "Print the version");
  app.footer(std::string(kFooter));
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.require_subcommand(0, 1);
  const Command command(app);
  DeclareReceipts(command, plan);
  DeclareWords(command, plan);
  DeclareRound(command, plan);
  DeclareShare(command, plan);
  DeclareQty(command, plan);
  DeclareFormat(command, plan);
  DeclareMask(command, plan);
  DeclareDate(command, plan);
  DeclareFiles(command, plan);
  DeclareEncode(command, plan);
  DeclareDecode(command, plan);
  DeclareKey(command, plan);
  DeclareMessage(command, plan);
  DeclareDialect(command, plan);
  DeclareLog(command, plan);
  DeclareConnect(command, plan);
  DeclareSql(command, plan);
  DeclareEdit(command, plan);
  DeclareDataset(command, plan);
  DeclareCompany(command, plan);
  DeclarePost(command, plan);
  DeclareReprint(command, plan);
  DeclareRights(command, plan);
  DeclareReplication(command, plan);
  DeclareDialog(command, plan);
  DeclarePrinters(command, plan);
  DeclareDoctor(command, plan);
  DeclareSettings(command, plan);
  DeclareShop(command, plan);
  DeclareVersion(command, plan);
}

void WriteTo(int fd, std::string_view text) {
  BlockWriter writer(fd, fd == 1 ? "standard output" : "output");
  writer.Buffer() = text;
  writer.Flush();
}

int Complain(const Stdio& stdio, std::string_view what, int status) {
  try {
    WriteTo(stdio.err, "kvshare: " + std::string(what) + "\n");
  } catch (const StreamError&) {
    return status;  // nowhere left to say it
  }
  return status;
}

int RefuseLine(const CLI::App& app, const std::exception& error, const Stdio& stdio) {
  const auto named = app.get_subcommands();
  const std::string command = named.empty() ? "" : " " + named.front()->get_name();
  return Complain(stdio, std::string(error.what()) + "\nTry `kvshare" + command + " --help`.",
                  kWrongUsage);
}

// What the parser stops with: a question that it answers itself, or wrong usage.
int Answer(const CLI::App& app, const CLI::ParseError& error, const Stdio& stdio) {
  if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
    return RefuseLine(app, error, stdio);
  }
  const bool version = error.get_name() == "CallForVersion";
  WriteTo(stdio.out, version ? std::string(error.what()) + "\n" : app.help());
  return kDone;
}

[[noreturn]] void RefuseCommand(const std::string& path, const std::string& word,
                                const std::vector<CLI::App*>& known) {
  std::vector<std::string> names;
  names.reserve(known.size());
  for (const CLI::App* command : known) names.push_back(command->get_name());
  std::string reason = Format("there is no command `%s %s`", {path, word});
  const std::string near = NearestWord(word, names);
  if (!near.empty()) reason += Format("; did you mean `%s %s`?", {path, near});
  throw CLI::ExtrasError(reason, CLI::ExitCodes::ExtrasError);
}

// Says which word is no command, and which one is near, where the parser would only count words.
void CheckCommands(CLI::App& app, const std::vector<std::string>& arguments) {
  CLI::App* above = &app;
  std::string path = "kvshare";
  for (const std::string& word : arguments) {
    const auto known = above->get_subcommands([](CLI::App* /*any*/) { return true; });
    if (known.empty() || word.starts_with('-')) return;
    const auto next =
        std::ranges::find_if(known, [&word](CLI::App* one) { return one->get_name() == word; });
    if (next == known.end()) RefuseCommand(path, word, known);
    above = *next;
    path.append(" ").append(word);
  }
}

int Run(const Plan& plan, const Stdio& stdio) {
  if (plan.prepare) plan.prepare(stdio);
  if (plan.action) return plan.action(stdio);
  return RunItems(plan.transform, plan.operands, plan.json, stdio);
}

int ParseAndRun(std::vector<std::string> arguments, const Stdio& stdio) {
  CLI::App app("Thai money and text: amounts in words, rounding, a day's receipts", "kvshare");
  Plan plan;
  Declare(app, plan);
  MarkNegativeFractions(arguments);
  try {
    CheckCommands(app, arguments);
  } catch (const CLI::ParseError& e) {
    return Answer(app, e, stdio);
  }
  std::reverse(arguments.begin(), arguments.end());  // the parser's own order
  try {
    app.parse(std::move(arguments));
    if (app.get_subcommands().empty()) RefuseUsage("COMMAND", "is needed");
    return Run(plan, stdio);
  } catch (const CLI::ParseError& e) {
    return Answer(app, e, stdio);
  } catch (const WrongUsage& e) {
    return RefuseLine(app, e, stdio);
  }
}

}  // namespace

int RunCommandLine(std::vector<std::string> arguments, const Stdio& stdio) {
  try {
    return ParseAndRun(std::move(arguments), stdio);
  } catch (const ReaderGone&) {
    return kReaderGone;
  } catch (const Exception& e) {
    return Complain(stdio, Cp874ToUtf8Lossy(e.Message()), kBadInput);
  } catch (const std::bad_alloc&) {
    return Complain(stdio, "out of memory", kBadInput);
  } catch (const std::exception& e) {
    return Complain(stdio, e.what(), kBadInput);
  }
}

}  // namespace kvshare::app
