#include <memory>

#include "apps/kvshare/commands.h"
#include "apps/kvshare/dayinput.h"
#include "apps/kvshare/progress.h"
#include "apps/receipts/json.h"
#include "apps/receipts/print.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare::app {

namespace {

using receipts::Document;
using receipts::Receipt;

constexpr std::string_view kExamples =
    "  kvshare receipts day.csv | less           a day's receipts and the day's total\n"
    "  kvshare receipts --cash-step mrDownTo25 day.csv\n"
    "                                            totals in quarters of a baht\n"
    "  kvshare receipts --vat line --price-includes-vat day.csv\n"
    "  kvshare receipts --json day.csv           one JSON object a document\n"
    "Columns, in any order: document, date, customer, item, quantity, price, discount, vat.\n";

struct Options {
  std::string file = "-";
  RuleOptions rules;
  LayoutOptions layout;
};

class ReceiptsRun {
 public:
  ReceiptsRun(receipts::Rules rules, receipts::Layout layout, bool json, const Stdio& stdio)
      : rules_(rules),
        layout_(layout),
        json_(json),
        out_(stdio.out, "standard output"),
        err_(stdio.err, "standard error"),
        progress_(stdio, "documents"),
        reader_([this](const receipts::Problem& problem) { Report(problem); }) {}

  int Run(const DayInput& input) {
    input.FeedTo(reader_);
    for (const Document& document : reader_.Finish()) {
      document.complete ? Take(document) : static_cast<void>(++left_);
    }
    Finish();
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
      const Receipt receipt = Calculate(document, rules_);
      AddToDay(receipt);
      WarnOfWords(document, receipt.total);
      std::string& out = out_.Buffer();
      if (json_) {
        AppendJson(out, document, receipt);
        out_.EndLine();
      } else {
        AppendReceipt(out, document, receipt, layout_);
        out_.EndBlock();
      }
      progress_.Show(++printed_);
    } catch (const receipts::UnprintableDocument& e) {
      ++left_;
      Report(reader_.ProblemIn(e.Column(), e.Row(), e.what()));
      Report({document.row, 0, "",
              "document " + Cp874ToUtf8Lossy(document.number) + " is not printed", false});
    }
  }

  void AddToDay(const Receipt& receipt) {
    try {
      if (dayFits_) day_.Add(receipt);
    } catch (const EIntOverflow&) {
      dayFits_ = false;
    }
  }

  void WarnOfWords(const Document& document, Currency total) {
    const bool thai = TKovraMoney::ThaiNoteIsSafe(total);
    const bool english = TKovraMoney::EngNoteIsSafe(total);
    if (thai && english) return;
    const std::string_view lacking = thai ? "English" : english ? "Thai" : "Thai and English";
    Report({document.row, 0, "",
            "document " + Cp874ToUtf8Lossy(document.number) + ": no " + std::string(lacking) +
                " words for " + Format("%.2n", {total}) + ", the figures stand alone",
            true});
  }

  void Finish() {
    progress_.Erase();
    if (!json_ && printed_ != 0 && dayFits_) {
      AppendDayTotal(out_.Buffer(), day_, left_, layout_);
    }
    out_.Flush();
    if (!dayFits_) {
      failed_ = true;
      err_.Buffer() += "the day's total is out of range and not printed\n";
    }
    err_.Flush();
  }

  receipts::Rules rules_;
  receipts::Layout layout_;
  bool json_;
  BlockWriter out_;
  BlockWriter err_;
  Progress progress_;
  receipts::DayReader reader_;
  receipts::DayTotal day_;
  std::uint64_t printed_ = 0;
  std::uint64_t left_ = 0;
  bool dayFits_ = true;
  bool failed_ = false;
};

std::function<int(const Stdio&)> MakeReceipts(const Options& options, const Plan& plan) {
  return [options, json = plan.json, rules = UsageRules(options.rules),
          layout = UsageLayout(options.layout, options.rules)](const Stdio& stdio) {
    const DayInput input(options.file, stdio);
    return ReceiptsRun(rules, layout, json, stdio).Run(input);
  };
}

}  // namespace

void DeclareReceipts(CLI::App& parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = AddCommand(parent, plan, "receipts",
                                 "A day's sales documents from a CSV file, as receipts", kExamples);
  command->add_option("FILE", options->file, "The file (default: standard input)");
  AddRules(*command, options->rules);
  AddLayout(*command, options->layout);
  command->callback([options, &plan] { plan.action = MakeReceipts(*options, plan); });
}

}  // namespace kvshare::app
