// `kvshare post` and `kvshare company create`.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/opencompany.h"
#include "apps/kvshare/data/connections.h"
#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/system/process.h"
#include "apps/posting/books.h"
#include "apps/posting/company.h"
#include "apps/posting/poster.h"
#include "apps/receipts/amounts.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/database/sqlreplication.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare::app {

namespace {

using receipts::Document;
using receipts::Receipt;

constexpr std::string_view kCompanyExamples =
    "  kvshare company create --connect SHOP     the tables of a company, in an empty database\n";
constexpr std::string_view kPostExamples =
    "  kvshare post --connect SHOP day.csv       each document whole or not at all\n"
    "  kvshare post --connect SHOP day.csv       again: posts what is missing, doubles nothing\n"
    "  kvshare post --connect SHOP --print day.csv | less\n"
    "                                            with the receipts of what is posted\n";

struct Options {
  std::string connect;
  std::string file = "-";
  FormatOptions format;
  RuleOptions rules;
  LayoutOptions layout;
  bool print = false;
  std::int32_t position = 1;
};

struct Settings {
  receipts::DayFormat format;
  receipts::Rules rules;
  std::optional<receipts::Layout> layout;  // of the receipts, where they are printed
  bool json = false;
};

Settings UsageSettings(const Options& options, bool json) {
  Settings settings{UsageFormat(options.format, UsageEra(options.layout.era)),
                    UsageRules(options.rules), std::nullopt, json};
  if (options.print) settings.layout = UsageLayout(options.layout, options.rules);
  return settings;
}

// That nothing was written is said of a batch alone: the tables and their rows come in two.
std::string WhatFailed(const TSQLBatchReport& report) {
  if (report.Written.empty() && !report.InDoubt) return report.Message;
  std::string text = report.Text();
  std::erase(text, '\r');
  return text;
}

int MakeCompany(const std::string& connect) {
  OpenCompany company(connect);
  if (posting::IsCompany(company.Connection())) {
    throw Exception("there is a company already in this database");
  }
  TSQLBatchReport report;
  WithoutBoxes([&] { report = posting::CreateCompany(company.Connection()); });
  if (!report.Committed) throw Exception(WhatFailed(report));
  return kDone;
}

// What was posted so far. The sum is missing where it is out of range.
struct Tally {
  std::uint64_t documents = 0;
  std::uint64_t lines = 0;
  std::uint64_t wasThere = 0;
  std::optional<Currency> total = Currency();
  std::string lastSend;

  void Add(const Document& document, const Receipt& receipt, std::string_view sendNumber) {
    ++documents;
    lines += document.lines.size();
    lastSend = sendNumber;
    try {
      if (total) *total += receipt.total;
    } catch (const EIntOverflow&) {
      total.reset();
    }
  }
};

// A run ends early, and reports everything that it has posted, when the next document cannot be
// posted either or would be posted unseen.
class EEndOfRun : public Exception {
 public:
  using Exception::Exception;
};

class PostRun {
 public:
  PostRun(TSQLConnection& connection, const Settings& settings, const Stdio& stdio)
      : connection_(connection),
        poster_(connection, settings.rules),
        settings_(settings),
        output_(stdio, settings.json, settings.layout.has_value()),
        reader_([this](const receipts::Problem& problem) { output_.Report(problem); },
                settings.format) {}

  int Run(const DayInput& input) {
    input.FeedTo(reader_);
    const std::vector<Document> documents = reader_.Finish();
    try {
      const Interruption interruption;
      for (const Document& document : documents) {
        if (interruption.Asked()) {
          throw EEndOfRun(receipts::Say("interrupted: what is posted stays posted"));
        }
        Take(document);
      }
    } catch (const EEndOfRun& e) {
      output_.Report({0, 0, "", Cp874ToUtf8Lossy(e.Message()), false});
    }
    Summarize(documents.size() - tally_.documents - tally_.wasThere);
    return output_.Failed() ? kBadInput : kDone;
  }

 private:
  void Take(const Document& document) {
    try {
      if (!document.complete) throw posting::EPosting(receipts::Say("a row of it cannot be read"));
      const Receipt receipt = Calculate(document, settings_.rules);
      const receipts::Sheet sheet{"", OriginalNet(document)};
      std::optional<std::string> sendNumber;
      WithoutBoxes([&] { sendNumber = poster_.Post(document, receipt); });
      if (sendNumber) {
        TakePosted(document, receipt, sheet, *sendNumber);
      } else {
        ++tally_.wasThere;
      }
    } catch (const receipts::UnprintableDocument& e) {
      Leave(document, Utf8ToCp874(reader_.ProblemIn(e.Column(), e.Row(), e.what()).Message()));
    } catch (const EEndOfRun&) {
      throw;
    } catch (const EServerError& e) {
      if (e.ConnectionLost()) throw EEndOfRun(e.Message());
      Leave(document, e.Message());
    } catch (const Exception& e) {
      Leave(document, e.Message());
    }
  }

  // Nothing that goes wrong from here on takes the document out of the books again.
  void TakePosted(const Document& document, const Receipt& receipt, const receipts::Sheet& sheet,
                  const std::string& sendNumber) {
    tally_.Add(document, receipt, sendNumber);
    if (settings_.layout) output_.Print(document, receipt, *settings_.layout, sheet);
    output_.ShowProgress(tally_.documents);
    try {
      WithoutBoxes([&] { posting::Poster::Log(document, receipt, sendNumber); });
    } catch (const Exception& e) {
      throw EEndOfRun(receipts::Say("document %s is posted, but not in the log: %s",
                                    {document.number, e.Message()}));
    }
  }

  // The value of the invoice that a printed document refers to, from the books.
  std::optional<Currency> OriginalNet(const Document& document) {
    std::optional<Currency> net;
    const bool refers = document.particulars != nullptr && !document.particulars->reference.empty();
    if (!settings_.layout || !refers) return net;
    WithoutBoxes([&] { net = posting::NetInBooks(connection_, document.particulars->reference); });
    return net;
  }

  void Leave(const Document& document, std::string_view why) {
    output_.ReportDocument(
        document, receipts::SayUtf8("document %s is not posted: %s", {document.number, why}));
  }

  std::string LastSend() {
    return tally_.lastSend.empty() ? SQLReadRpl(connection_) : tally_.lastSend;
  }

  void Summarize(std::uint64_t left) {
    Row row(settings_.json);
    settings_.json ? FillMembers(row, left) : FillSentence(row, left);
    row.AppendTo(output_.Out().Buffer());
    output_.Out().EndLine();
    output_.Finish();
  }

  void FillMembers(Row& row, std::uint64_t left) {
    row.Number("posted", Whole(tally_.documents));
    row.Number("lines", Whole(tally_.lines));
    if (tally_.total) {
      receipts::AppendDecimals(row.Member("total"), *tally_.total);
    } else {
      row.JsonMember("total") = "null";
    }
    row.Number("there", Whole(tally_.wasThere));
    row.Number("left", Whole(left));
    row.Member("send") = LastSend();
  }

  void FillSentence(Row& row, std::uint64_t left) {
    const std::string total = tally_.total ? receipts::Say("%.2n baht", {*tally_.total})
                                           : receipts::Say("a sum that is out of range");
    row.Cell("summary") = receipts::Say(
        "%d documents with %d lines posted, %s; %d were there already, %d are left; last send "
        "number %s",
        {Whole(tally_.documents), Whole(tally_.lines), total, Whole(tally_.wasThere), Whole(left),
         LastSend()});
  }

  static std::int64_t Whole(std::uint64_t count) { return static_cast<std::int64_t>(count); }

  TSQLConnection& connection_;
  posting::Poster poster_;
  const Settings& settings_;
  DayOutput output_;
  receipts::DayReader reader_;
  Tally tally_;
};

void RequireRight(TSQLConnection& connection, std::int32_t position) {
  bool granted = false;
  WithoutBoxes([&] { granted = posting::Poster(connection).MayPost(position); });
  if (!granted) throw Exception(LoadStr(rstrEGrantInsert01).append(LoadStr(rstrEGrantInsert02)));
}

int Post(const Options& options, const Settings& settings, const Stdio& stdio) {
  const DayInput input(options.file, stdio);
  OpenCompany company(options.connect);
  RequireCompany(company.Connection(), options.connect);
  RequireRight(company.Connection(), options.position);
  return PostRun(company.Connection(), settings, stdio).Run(input);
}

}  // namespace

void DeclareCompanyCreate(Command company, Plan& plan) {
  const auto connect = std::make_shared<std::string>();
  const Command command =
      AddQuietCommand(company, "create", "Make the tables of a sample company", kCompanyExamples);
  AddConnect(command, *connect);
  command.OnParsed([connect, &plan] {
    plan.action = [connect](const Stdio&) { return MakeCompany(*connect); };
  });
}

void DeclarePost(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddCommand(parent, plan, "post", "Post a day's sales documents to a company", kPostExamples);
  AddConnect(command, options->connect);
  command.AddOption("--position", options->position, "Who posts, as the rights know him")
      .TypeName("N");
  AddFormat(command, options->format);
  AddRules(command, options->rules);
  command.AddFlag("--print", options->print, "Print the receipt of each document posted");
  AddLayout(command, options->layout);
  command.AddOption("FILE", options->file, "The file (default: standard input)");
  command.OnParsed([options, &plan] {
    plan.action = [options, settings = UsageSettings(*options, plan.json)](const Stdio& stdio) {
      return Post(*options, settings, stdio);
    };
  });
}

}  // namespace kvshare::app
