// `kvshare receipts`.
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/day/paperoptions.h"
#include "apps/kvshare/day/sheetprinter.h"
#include "apps/kvshare/terminal/usage.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/rtl/exceptions.h"

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
    "  kvshare receipts --pdf day.pdf day.csv    on pages; the day's total is printed\n"
    "  kvshare receipts --printer Office day.csv\n"
    "  kvshare receipts --roll 80 --printer Till --drawer day.csv\n"
    "                                            on the roll of a receipt printer\n"
    "Columns, in any order: document, date, customer, item, quantity, price, discount, vat.\n";

struct Options {
  std::string file = "-";
  PaperOptions paper;
  FormatOptions format;
  RuleOptions rules;
  LayoutOptions layout;
  std::string copies;
};

class ReceiptsRun {
 public:
  ReceiptsRun(const receipts::DayFormat& format, receipts::Rules rules, const Looks& looks,
              const PaperPlan& paper, bool json, const Stdio& stdio)
      : rules_(rules),
        output_(stdio, json, !paper.IsPaper() || json),
        sheets_(output_, looks, paper),
        reader_([this](const receipts::Problem& problem) { output_.Report(problem); }, format) {}

  int Run(const DayInput& input) {
    input.FeedTo(reader_);
    documents_ = reader_.Finish();
    for (const Document& document : documents_) {
      document.complete ? Take(document) : static_cast<void>(++left_);
    }
    Finish();
    return output_.Failed() ? kBadInput : kDone;
  }

 private:
  void Take(const Document& document) {
    try {
      const Receipt receipt = Calculate(document, rules_);
      AddToDay(receipt);
      sheets_.Print(document, receipt, OriginalNet(document));
      output_.ShowProgress(sheets_.Printed());
    } catch (const receipts::UnprintableDocument& e) {
      ++left_;
      output_.Report(reader_.ProblemIn(e.Column(), e.Row(), e.what()));
      output_.ReportDocument(document,
                             receipts::SayUtf8("document %s is not printed", {document.number}));
    }
  }

  // The value of the invoice that a document refers to; nothing where the file does not have it.
  std::optional<Currency> OriginalNet(const Document& document) {
    if (document.particulars == nullptr || document.particulars->reference.empty()) return {};
    if (byNumber_.empty()) {
      for (const Document& known : documents_) byNumber_.emplace(known.number, &known);
    }
    const auto found = byNumber_.find(document.particulars->reference);
    if (found == byNumber_.end() || !found->second->complete) return {};
    try {
      return Calculate(*found->second, rules_).net;
    } catch (const receipts::UnprintableDocument&) {
      return {};  // it is reported where it stands
    }
  }

  void AddToDay(const Receipt& receipt) {
    try {
      if (dayFits_) day_.Add(receipt);
    } catch (const EIntOverflow&) {
      dayFits_ = false;
    }
  }

  void Finish() {
    if (!dayFits_) {
      output_.Report(
          {0, 0, "", receipts::SayUtf8("the day's total is out of range and not printed"), false});
    } else if (!output_.Json() && sheets_.Printed() != 0) {
      AppendDayTotal(output_.Out().Buffer(), day_, left_, sheets_.TextLayout());
    }
    sheets_.Finish();
    output_.Finish();
  }

  receipts::Rules rules_;
  DayOutput output_;
  SheetPrinter sheets_;
  receipts::DayReader reader_;
  receipts::DayTotal day_;
  std::vector<Document> documents_;
  std::unordered_map<std::string_view, const Document*> byNumber_;
  std::uint64_t left_ = 0;
  bool dayFits_ = true;
};

std::function<int(const Stdio&)> MakeReceipts(const Options& options, const Plan& plan) {
  return [options, json = plan.json, rules = UsageRules(options.rules),
          looks = UsageLooks(options.layout, options.rules, options.copies),
          paper = UsagePaper(options.paper),
          format = UsageFormat(options.format, UsageEra(options.layout.era))](const Stdio& stdio) {
    const DayInput input(options.file, stdio);
    return ReceiptsRun(format, rules, looks, paper, json, stdio).Run(input);
  };
}

}  // namespace

void DeclareReceipts(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command = AddCommand(
      parent, plan, "receipts", "A day's sales documents from a CSV file, as receipts", kExamples);
  command.AddOption("FILE", options->file, "The file (default: standard input)");
  AddFormat(command, options->format);
  AddRules(command, options->rules);
  AddLayout(command, options->layout);
  AddCopies(command, options->copies);
  AddPaper(command, options->paper);
  command.OnParsed([options, &plan] { plan.action = MakeReceipts(*options, plan); });
}

}  // namespace kvshare::app
