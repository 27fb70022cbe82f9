// `kvshare dialect`.
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/log/moments.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare dialect                           the servers that the profile knows\n"
    "  kvshare dialect MYSQL --field NAME --value ab\n"
    "                                            begins   UPPER(NAME) LIKE 'AB%'  ...\n"
    "  kvshare dialect --file SqlIntf.ini SQLITE --field AMOUNT --value 12.50\n";

struct Options {
  std::string section;
  std::string file;
  std::string field = "FIELD";
  std::string value = "value";
  std::string date;
  bool matchCase = false;
};

// What the fragments are made of, in code page 874.
struct Given {
  std::string field, value;
  bool matchCase = false;
  TDateTime moment;
};

using Builder = std::string (*)(const Given&);

template <auto Compare, int Kind>
std::string Condition(const Given& given) {
  return Compare(given.field, given.value, given.matchCase, Kind);
}

template <auto Compare>
std::string Numbers(const Given& given) {
  return Compare(given.field, given.value);
}

template <auto Literal>
std::string Moment(const Given& given) {
  return Literal(given.moment);
}

std::string Joined(std::string_view pattern, std::initializer_list<TVarRec> parts) {
  std::string text;
  AppendFormatAll(text, pattern, parts);
  return text;
}

struct FragmentRow {
  std::string_view name;
  Builder build;
};

constexpr FragmentRow kFragments[] = {
    {"field", [](const Given& g) { return SQLFieldFormat(g.field, g.matchCase); }},
    {"value", [](const Given& g) { return SQLCharFormat(g.value, g.matchCase); }},
    {"begins", Condition<SQLCompareCmd, 0>},
    {"contains", Condition<SQLCompareCmd, 1>},
    {"ends", Condition<SQLCompareCmd, 2>},
    {"not begins", Condition<SQLNotCmd, 0>},
    {"not contains", Condition<SQLNotCmd, 1>},
    {"not ends", Condition<SQLNotCmd, 2>},
    {"equal numbers", Numbers<SQLNumEqual>},
    {"unequal numbers", Numbers<SQLNumNotEqual>},
    {"over two decimals", [](const Given& g) { return SQLNumNot2DecPt(g.field); }},
    {"two joined",
     [](const Given& g) {
       return Joined(SQLConcat2Format, {g.field, g.field});
     }},
    {"three joined",
     [](const Given& g) {
       return Joined(SQLConcat3Format, {g.field, g.field, g.field});
     }},
    {"date", Moment<DateTimeToSQLDate>},
    {"date and time", Moment<DateTimeToSQLDateTime>},
    {"server time", [](const Given&) { return SQLServerDateTime; }},
    {"table prefix", [](const Given&) { return TablePrefix; }},
    {"table case", [](const Given&) { return TableCase; }},
    {"amount type", [](const Given&) { return SQLBaht; }},
    {"date type", [](const Given&) { return SQLDate; }},
    {"time type", [](const Given&) { return SQLTime; }},
    {"date and time type", [](const Given&) { return SQLDateTime; }},
    {"picture type", [](const Given&) { return SQLGraphic; }},
    {"text type", [](const Given&) { return SQLText; }},
};

class Printer {
 public:
  Printer(bool json, const Stdio& stdio)
      : row_(json), out_(stdio.out, "standard output"), err_(stdio.err, "standard error") {}

  void Print(std::string_view member, std::string_view name, const std::string& text = "") {
    row_.Clear();
    row_.Cell(member) = name;
    if (member == "fragment") row_.Cell("sql") = text;
    row_.AppendTo(out_.Buffer());
    out_.EndLine();
  }

  // A pattern that does not fit leaves the fragment out.
  void PrintFragment(const FragmentRow& fragment, const Given& given) {
    try {
      Print("fragment", fragment.name, fragment.build(given));
    } catch (const EConvertError& e) {
      failed_ = true;
      err_.Buffer().append(fragment.name).append(": ").append(Cp874ToUtf8Lossy(e.Message()));
      err_.EndLine();
    }
  }

  int Finish() {
    out_.Flush();
    err_.Flush();
    return failed_ ? kBadInput : kDone;
  }

 private:
  Row row_;
  BlockWriter out_;
  BlockWriter err_;
  bool failed_ = false;
};

std::string ProfileOf(const Options& options) {
  std::string file =
      options.file.empty() ? GetDialectFileName() : UsageText("--file", options.file);
  if (!FileExists(file)) throw EInOutError(file + " is missing", 2);
  return file;
}

void PrintServers(const std::string& file, Printer& printer) {
  TStringList sections;
  TIniContents(file).ReadSections(sections);
  for (const std::string& section : sections) {
    if (SameText(section.substr(0, kDialectSection.size()), kDialectSection)) {
      printer.Print("server", section.substr(kDialectSection.size()));
    }
  }
}

// Without the prefix that sections have.
std::string TradeName(const Options& options, const std::string& file) {
  std::string name = UsageText("SECTION", options.section);
  if (SameText(name.substr(0, kDialectSection.size()), kDialectSection)) {
    name.erase(0, kDialectSection.size());
  }
  const std::string section = std::string(kDialectSection) + name;
  if (!TIniContents(file).SectionExists(section)) {
    throw EConvertError(file + " has no section " + section);
  }
  return name;
}

TDateTime MomentOf(const Options& options) {
  if (options.date.empty()) return Now();
  try {
    return ParseIso(options.date);
  } catch (const EConvertError& e) {
    RefuseUsage("--date", Cp874ToUtf8Lossy(e.Message()));
  }
}

int PrintDialect(const Options& options, bool json, const Stdio& stdio) {
  const Given given{UsageText("--field", options.field), UsageText("--value", options.value),
                    options.matchCase, MomentOf(options)};
  const std::string file = ProfileOf(options);
  Printer printer(json, stdio);
  if (options.section.empty()) {
    PrintServers(file, printer);
    return printer.Finish();
  }
  ReadDialectFile(file, TradeName(options, file));
  for (const FragmentRow& fragment : kFragments) printer.PrintFragment(fragment, given);
  return printer.Finish();
}

}  // namespace

void DeclareDialect(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command = AddCommand(parent, plan, "dialect",
                                     "SQL fragments of a database server's dialect", kExamples);
  command.AddOption("SECTION", options->section,
                    "The server, such as MYSQL; without it, the servers that there are");
  command.AddOption("--file", options->file, "Instead of the suite's SqlIntf.ini").TypeName("FILE");
  command.AddOption("--field", options->field, "A field or expression").TypeName("NAME");
  command.AddOption("--value", options->value, "A value, as a user types it").TypeName("TEXT");
  command.AddFlag("--matchcase", options->matchCase, "Respect letter case");
  command.AddOption("--date", options->date, "yyyy-mm-dd or yyyy-mm-ddThh:mm:ss; default: now")
      .TypeName("DATE");
  command.OnParsed([options, &plan] {
    plan.action = [options, &plan](const Stdio& stdio) {
      return PrintDialect(*options, plan.json, stdio);
    };
  });
}

}  // namespace kvshare::app
