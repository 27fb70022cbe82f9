// `kvshare log`.
#include <chrono>
#include <memory>
#include <thread>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/log/logbook.h"
#include "apps/kvshare/log/logfollower.h"
#include "apps/kvshare/log/moments.h"
#include "apps/receipts/daycolumns.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kShowExamples =
    "  kvshare log show --file 'C:\\Logs\\ledger.log'\n"
    "  kvshare log show --file ledger.log --day 25/11/2569 --user somchai\n";
constexpr std::string_view kFollowExamples =
    "  kvshare log follow --file ledger.log        as long as you wait, until Ctrl-C\n"
    "  kvshare log follow --file ledger.log --lines 3 --once\n";
constexpr std::string_view kVerifyExamples = "  kvshare log verify --file ledger.log\n";

struct Options {
  std::string file;
  std::string day, user, computer;
  std::size_t lines = 10;
  bool once = false;
};

std::string PathOf(const Options& options) {
  try {
    return os::NativePath(UsageText("--file", options.file));
  } catch (const EInOutError& e) {
    RefuseUsage("--file", Cp874ToUtf8Lossy(e.Message()));
  }
}

// Bytes that are no letters do not keep the rest from being read.
class LinePrinter {
 public:
  LinePrinter(bool json, const Stdio& stdio) : json_(json), out_(stdio.out, "standard output") {}

  void Print(std::string_view line) {
    const std::string text = Cp874ToUtf8Lossy(line);
    json_ ? AppendObject(line, text) : static_cast<void>(out_.Buffer() += text);
    out_.EndLine();
  }
  void PrintAll(std::string_view lines) {
    while (!lines.empty()) Print(TakeLogLine(lines).text);
    Flush();
  }
  void Flush() { out_.Flush(); }

 private:
  void AppendObject(std::string_view line, const std::string& text) {
    std::string& out = out_.Buffer();
    out += R"({"time":")";
    if (const auto moment = StampOf(line)) AppendIso(out, *moment);
    out += R"(","text":)";
    AppendJsonString(out, text);
    out += '}';
  }

  bool json_;
  BlockWriter out_;
};

LogFilter FilterOf(const Options& options) {
  LogFilter filter;
  filter.user = UsageText("--user", options.user);
  filter.computer = UsageText("--computer", options.computer);
  if (options.day.empty()) return filter;
  try {
    filter.day = receipts::ParseDate(UsageText("--day", options.day)).date;
  } catch (const EConvertError& e) {
    RefuseUsage("--day", Cp874ToUtf8Lossy(e.Message()));
  }
  return filter;
}

std::vector<std::string> FilesOf(const std::string& log) {
  std::vector<std::string> files = LogFiles(log);
  if (files.empty()) throw StreamError(log + ": there is no such log, nor an archive of one");
  return files;
}

int Show(const Options& options, bool json, const Stdio& stdio) {
  LogFilter filter = FilterOf(options);
  LinePrinter printer(json, stdio);
  for (const std::string& file : FilesOf(PathOf(options))) {
    const std::string bytes = ReadLogFile(file);
    for (std::string_view rest = bytes; !rest.empty();) {
      const std::string_view line = TakeLogLine(rest).text;
      if (filter.Shows(line)) printer.Print(line);
    }
  }
  printer.Flush();
  return kDone;
}

int Follow(const Options& options, bool json, const Stdio& stdio) {
  constexpr std::chrono::milliseconds kPause{200};
  LogFollower follower(PathOf(options), options.lines);
  LinePrinter printer(json, stdio);
  for (;;) {
    std::string lines;
    follower.Take(lines);
    printer.PrintAll(lines);
    if (options.once) break;
    std::this_thread::sleep_for(kPause);
  }
  printer.PrintAll(follower.Unfinished());
  return kDone;
}

void AppendProblem(std::string& out, const LogProblem& problem, bool json) {
  if (json) {
    out += "{\"file\":";
    AppendJsonString(out, problem.file);
    out.append(",\"line\":").append(std::to_string(problem.line)).append(",\"problem\":");
    AppendJsonString(out, problem.text);
    out += '}';
    return;
  }
  if (!problem.file.empty()) {
    out.append(problem.file).append(":").append(std::to_string(problem.line)).append(": ");
  }
  out += problem.text;
}

int Verify(const Options& options, bool json, const Stdio& stdio) {
  const std::string log = PathOf(options);
  FilesOf(log);
  BlockWriter out(stdio.out, "standard output");
  const std::vector<LogProblem> problems = VerifyLog(log);
  for (const LogProblem& problem : problems) {
    AppendProblem(out.Buffer(), problem, json);
    out.EndLine();
  }
  out.Flush();
  return problems.empty() ? kDone : kBadInput;
}

using Action = int (*)(const Options&, bool, const Stdio&);

Command AddLogCommand(Command log, Plan& plan, std::shared_ptr<Options> options,
                      std::string_view name, std::string_view purpose, std::string_view examples,
                      Action action) {
  const Command command = AddCommand(log, plan, name, purpose, examples);
  command.AddOption("--file", options->file, "The log, as C:\\Logs\\x.log or by its path here")
      .TypeName("FILE")
      .Required();
  command.OnParsed([options = std::move(options), action, &plan] {
    plan.action = [options, action, &plan](const Stdio& stdio) {
      return action(*options, plan.json, stdio);
    };
  });
  return command;
}

}  // namespace

void DeclareLog(Command parent, Plan& plan) {
  const Command log = parent.AddCommand("log", "The suite's event log and its monthly archives");
  log.RequireCommand();
  const auto options = std::make_shared<Options>();

  const Command show = AddLogCommand(log, plan, options, "show",
                                     "Lines of all months, oldest first", kShowExamples, Show);
  show.AddOption("--day", options->day, "Only of that day, yyyy-mm-dd or dd/mm/yyyy, of either era")
      .TypeName("DATE");
  show.AddOption("--user", options->user, "Only of that login name").TypeName("NAME");
  show.AddOption("--computer", options->computer, "Only of that computer").TypeName("NAME");

  const Command follow = AddLogCommand(log, plan, options, "follow", "Lines as they are written",
                                       kFollowExamples, Follow);
  follow.AddOption("--lines", options->lines, "Begin with the last N lines")
      .TypeName("N")
      .ShowsDefault();
  follow.AddFlag("--once", options->once, "End after the lines that there are");

  AddLogCommand(log, plan, options, "verify", "Broken lines and missing months", kVerifyExamples,
                Verify);
}

}  // namespace kvshare::app
