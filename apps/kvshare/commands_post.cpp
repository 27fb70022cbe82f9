#include <cstdint>
#include <memory>
#include <utility>

#include "apps/kvshare/commands.h"
#include "apps/kvshare/connections.h"
#include "apps/kvshare/dayinput.h"
#include "apps/kvshare/progress.h"
#include "apps/posting/company.h"
#include "apps/posting/poster.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/catalogue.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/package.h"
#include "kvshare/settings/sqldialect.h"

namespace kvshare::app {

namespace {

using posting::Outcome;
using receipts::Document;
using receipts::Receipt;

constexpr std::string_view kCompanyExamples =
    "  kvshare company --connect SHOP            the tables of a company, in an empty database\n";
constexpr std::string_view kPostExamples =
    "  kvshare post --connect SHOP day.csv       each document whole or not at all\n"
    "  kvshare post --connect SHOP day.csv       again: posts what is missing, doubles nothing\n";

struct Options {
  std::string connect;
  std::string file = "-";
  RuleOptions rules;
  std::int32_t position = 1;
};

// The library as a program of the suite starts and ends it, with the company's globals: its
// connection, its server's dialect and its log.
class OpenCompany {
 public:
  explicit OpenCompany(const std::string& connect) {
    Initialize();
    try {
      OpenConnection(connection_, connect);
      const std::string alias = connection_.ConnectionName();
      KovraAliasName = alias;
      KovraAliasTradeName = GetdbxTradeName(alias);
      KovraLogDatabaseName = GetKovraShareDataPath() + "Log\\";
      KovraLogTableName = alias + ".log";
      WithoutBoxes([] { ReadSQLIntf(""); });
    } catch (...) {
      Finalize();
      throw;
    }
  }
  ~OpenCompany() {
    connection_.Close();
    Finalize();
  }
  OpenCompany(const OpenCompany&) = delete;
  OpenCompany& operator=(const OpenCompany&) = delete;

  TSQLConnection& Connection() { return connection_; }

 private:
  TSQLConnection connection_;
};

int MakeCompany(const std::string& connect) {
  OpenCompany company(connect);
  if (posting::IsCompany(company.Connection())) {
    throw Exception("there is a company already in this database");
  }
  const TSQLBatchReport report = posting::CreateCompany(company.Connection());
  if (!report.Committed) throw Exception(report.Message);
  return kDone;
}

class PostRun {
 public:
  PostRun(TSQLConnection& connection, const receipts::Rules& rules, bool json, const Stdio& stdio)
      : poster_(connection),
        rules_(rules),
        row_(json),
        out_(stdio.out, "standard output"),
        err_(stdio.err, "standard error"),
        progress_(stdio, "documents"),
        reader_([this](const receipts::Problem& problem) { Report(problem); }) {}

  void RequireRight(std::int32_t position) {
    bool granted = false;
    WithoutBoxes([&] { granted = poster_.MayPost(position); });
    if (!granted) {
      throw Exception(LoadStr(rstrEGrantInsert01).append(LoadStr(rstrEGrantInsert02)));
    }
  }

  int Run(const DayInput& input) {
    input.FeedTo(reader_);
    for (const Document& document : reader_.Finish()) Take(document);
    Summarize();
    return failed_ ? kBadInput : kDone;
  }

 private:
  void Report(const receipts::Problem& problem) {
    failed_ = failed_ || !problem.warning;
    progress_.Erase();
    err_.Buffer() += problem.Message();
    err_.EndLine();
  }

  void Take(const Document& document) {
    try {
      if (!document.complete) throw posting::EPosting("a row of it cannot be read");
      const Receipt receipt = Calculate(document, rules_);
      Outcome outcome = Outcome::WasThere;
      WithoutBoxes([&] { outcome = poster_.Post(document, receipt); });
      Count(document, receipt, outcome);
    } catch (const receipts::UnprintableDocument& e) {
      Leave(document, reader_.ProblemIn(e.Column(), e.Row(), e.what()).Message());
    } catch (const EServerError& e) {
      if (e.ConnectionLost()) throw;
      Leave(document, Cp874ToUtf8Lossy(e.Message()));
    } catch (const posting::EPosting& e) {
      Leave(document, Cp874ToUtf8Lossy(e.Message()));
    }
  }

  void Count(const Document& document, const Receipt& receipt, Outcome outcome) {
    if (outcome == Outcome::WasThere) {
      ++wasThere_;
      return;
    }
    lines_ += document.lines.size();
    total_ += receipt.total;
    progress_.Show(++posted_);
  }

  void Leave(const Document& document, const std::string& why) {
    ++left_;
    Report({document.row, 0, "",
            "document " + Cp874ToUtf8Lossy(document.number) + " is not posted: " + why, false});
  }

  void Summarize() {
    progress_.Erase();
    const auto number = [](std::uint64_t count) { return static_cast<std::int64_t>(count); };
    if (row_.Json()) {
      row_.Number("posted", number(posted_));
      row_.Number("lines", number(lines_));
      row_.Member("total") = CurrToStr(total_);
      row_.Number("there", number(wasThere_));
      row_.Number("left", number(left_));
    } else {
      row_.Cell("summary") =
          Format("%d documents with %d lines posted, %.2n baht; %d were there already, %d are left",
                 {number(posted_), number(lines_), total_, number(wasThere_), number(left_)});
    }
    row_.AppendTo(out_.Buffer());
    out_.EndLine();
    out_.Flush();
    err_.Flush();
  }

  posting::Poster poster_;
  receipts::Rules rules_;
  Row row_;
  BlockWriter out_;
  BlockWriter err_;
  Progress progress_;
  receipts::DayReader reader_;
  std::uint64_t posted_ = 0;
  std::uint64_t lines_ = 0;
  std::uint64_t wasThere_ = 0;
  std::uint64_t left_ = 0;
  Currency total_;
  bool failed_ = false;
};

int Post(const Options& options, const receipts::Rules& rules, bool json, const Stdio& stdio) {
  const DayInput input(options.file, stdio);
  OpenCompany company(options.connect);
  PostRun run(company.Connection(), rules, json, stdio);
  run.RequireRight(options.position);
  return run.Run(input);
}

}  // namespace

void DeclareCompany(CLI::App& parent, Plan& plan) {
  const auto connect = std::make_shared<std::string>();
  CLI::App* command =
      AddCommand(parent, plan, "company", "Make the tables of a sample company", kCompanyExamples);
  AddConnect(*command, *connect);
  command->callback([connect, &plan] {
    plan.action = [connect](const Stdio&) { return MakeCompany(*connect); };
  });
}

void DeclarePost(CLI::App& parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  CLI::App* command =
      AddCommand(parent, plan, "post", "Post a day's sales documents to a company", kPostExamples);
  AddConnect(*command, options->connect);
  command->add_option("--position", options->position, "Who posts, as the rights know him")
      ->type_name("N");
  AddRules(*command, options->rules);
  command->add_option("FILE", options->file, "The file (default: standard input)");
  command->callback([options, &plan] {
    plan.action = [options, rules = UsageRules(options->rules), json = plan.json](
                      const Stdio& stdio) { return Post(*options, rules, json, stdio); };
  });
}

}  // namespace kvshare::app
