// `kvshare dialog`.
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/startedlibrary.h"
#include "apps/kvshare/log/moments.h"
#include "apps/kvshare/terminal/talkinginterface.h"
#include "kvshare/platform/kovrawin.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/desktop.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare dialog calculator 1234.50\n"
    "  kvshare dialog calendar 2026-11-25        prints the day that is chosen, 2026-11-30\n"
    "  kvshare dialog date                       asks for a date, typed in either era\n"
    "  kvshare dialog range 2026-11-01 2026-11-30\n"
    "                                            prints both, a tab between them\n"
    "  kvshare dialog year 2569                  stays in the era of the given year\n"
    "  kvshare dialog sql \"$(cat report.sql)\" >report.sql.new\n"
    "  kvshare dialog about\n"
    "  kvshare dialog sysinfo                    what support asks for first\n"
    "The dialogs come from the library KovraWin.DLL, a shop's own or the one that comes with\n"
    "kvshare. They talk on standard error and read standard input, a line for each step; ? tells\n"
    "which. Exit status 1, and nothing printed: cancelled, or no such dialog there.\n";

constexpr std::size_t kMostValues = 2;

// What a dialog begins with.
struct Order {
  std::vector<std::string> values;  // code page 874
  Word era = 0;
  bool windows = false;

  // Those of the companion that comes with the library.
  std::int32_t Mode() const { return era == 0 ? 1 : 0; }
  TDateTime Moment(std::size_t index) const {
    return index < values.size() ? ParseIso(values[index]) : TDateTime();
  }
};

std::string IsoText(TDateTime moment) {
  std::string text;
  AppendIso(text, moment);
  return text;
}

// Each runs a dialog and returns what it has given, whether the user has chosen it or not.

std::string Calculator(const Order& order) {
  const TFormatSettings plain = TFormatSettings::UsEnglish();
  const double given = order.values.empty() ? 0 : StrToFloat(order.values.front(), plain);
  return FloatToStr(ExecCalculator(0, given), plain);
}

std::string Calendar(const Order& order) {
  return IsoText(ExecCalendar(order.Mode(), order.Moment(0)));
}

std::string AskDate(const Order& order) {
  TDateTime date = order.Moment(0);
  ExecGetDate(order.Mode(), "", date);
  return IsoText(date);
}

std::string AskRange(const Order& order) {
  TDateTime from = order.Moment(0);
  TDateTime to = order.Moment(1);
  ExecGetDateRange(order.Mode(), "", "", from, to);
  return IsoText(from) + "\t" + IsoText(to);
}

std::string AskYear(const Order& order) {
  std::int32_t year =
      order.values.empty() ? DecodeDate(Date()).Year + order.era : StrToInt(order.values.front());
  ExecGetYear(0, "", year);
  return IntToStr(year);
}

// With the line ends of this system's files.
std::string Sql(const Order& order) {
  return StringReplace(ExecReadSQLCmd(0, order.values.empty() ? "" : order.values.front()), "\r\n",
                       "\n", {.ReplaceAll = true});
}

std::string About(const Order& /*order*/) {
  ExecAboutBox(0);
  return {};
}

std::string SysInfo(const Order& /*order*/) {
  TStringList list;
  ExecReadKovraSysInfo(list);
  return list.Count() > 0 ? list[0] : std::string();
}

struct Dialog {
  std::string_view name;
  std::size_t values;  // at most
  bool hasForm;        // whose OK counts
  std::string (*run)(const Order& order);
};
constexpr Dialog kDialogs[] = {
    {"calculator", 1, true, Calculator}, {"calendar", 1, true, Calendar},
    {"date", 1, true, AskDate},          {"range", kMostValues, true, AskRange},
    {"year", 1, true, AskYear},          {"sql", 1, true, Sql},
    {"about", 0, true, About},           {"sysinfo", 0, false, SysInfo},
};

// Another back end, and what came of the last form: the dialogs give back what they were given
// where the user has cancelled.
class WatchingInterface : public TUserInterface {
 public:
  explicit WatchingInterface(TUserInterface& watched) : watched_(watched) {}

  bool Accepted() const { return lastResult_ == mrOk; }

  int ShowMessage(const TMessageBox& message) override { return watched_.ShowMessage(message); }
  void PrepareForm(TForm& form) override { watched_.PrepareForm(form); }
  int ShowModalForm(TForm& form) override { return lastResult_ = watched_.ShowModalForm(form); }
  void ProcessMessages() override { watched_.ProcessMessages(); }
  void RunUntilHidden(TForm& form) override { watched_.RunUntilHidden(form); }
  TSize ScreenSize() override { return watched_.ScreenSize(); }
  TBounds WorkArea() override { return watched_.WorkArea(); }
  int TextHeight(std::string_view text) override { return watched_.TextHeight(text); }

 private:
  TUserInterface& watched_;
  int lastResult_ = mrNone;
};

int Run(const Dialog& dialog, const Order& order, const Stdio& stdio) {
  const StartedLibrary library;
  TalkingInterface terminal(stdio, EchoingConsole(stdio.in, stdio.err));
  WatchingInterface watching(order.windows ? Desktop() : terminal);
  std::string chosen;
  {
    const TUseInterface use(watching);
    chosen = dialog.run(order);
  }
  if (dialog.hasForm ? !watching.Accepted() : chosen.empty()) return kBadInput;
  if (dialog.run == About) return kDone;
  BlockWriter out(stdio.out, "standard output");
  out.Buffer() = Cp874ToUtf8Lossy(chosen);
  out.EndLine();
  out.Flush();
  return kDone;
}

const Dialog& UsageDialog(const std::string& name) {
  const auto* const found = std::ranges::find(kDialogs, name, &Dialog::name);
  if (found != std::end(kDialogs)) return *found;
  std::string names;
  for (const Dialog& dialog : kDialogs) {
    names.append(names.empty() ? "" : ", ").append(dialog.name);
  }
  RefuseUsage("NAME", "is one of " + names);
}

struct Options {
  std::string name;
  std::vector<std::string> values;
  std::string era;
  bool windows = false;
};

Order UsageOrder(const Options& options, const Dialog& dialog) {
  if (options.values.size() > dialog.values) RefuseUsage("VALUE", "is one too much");
  Order order;
  for (const std::string& value : options.values) {
    order.values.push_back(UsageText("VALUE", value));
  }
  order.era = UsageEra(options.era);
  order.windows = options.windows;
  return order;
}

}  // namespace

void DeclareDialog(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddQuietCommand(parent, "dialog", "Show a common dialog and print what is chosen", kExamples);
  command
      .AddOption("NAME", options->name,
                 "calculator, calendar, date, range, year, sql, about or sysinfo")
      .Required();
  command.AddOption("VALUE", options->values,
                    "What the dialog begins with: a number, dates as yyyy-mm-dd, a year, a text");
  command.AddFlag("--windows", options->windows, "Show windows instead of lines");
  AddEra(command, options->era);
  command.OnParsed([options, &plan] {
    const Dialog& dialog = UsageDialog(options->name);
    plan.action = [&dialog, order = UsageOrder(*options, dialog)](const Stdio& stdio) {
      return Run(dialog, order, stdio);
    };
  });
}

}  // namespace kvshare::app
