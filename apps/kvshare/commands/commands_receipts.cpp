// `kvshare receipts`.
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/day/daypaper.h"
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
    "Columns, in any order: document, date, customer, item, quantity, price, discount, vat.\n";

struct Options {
  std::string file = "-";
  std::string pdf;
  FormatOptions format;
  RuleOptions rules;
  LayoutOptions layout;
};

class ReceiptsRun {
 public:
  // With a `pdf` the documents stand there instead of on standard output.
  ReceiptsRun(const receipts::DayFormat& format, receipts::Rules rules, receipts::Layout layout,
              const std::string& pdf, bool json, const Stdio& stdio)
      : rules_(rules),
        layout_(layout),
        paper_(pdf.empty() ? nullptr : std::make_unique<DayPaper>(pdf)),
        output_(stdio, json, paper_ == nullptr || json),
        reader_([this](const receipts::Problem& problem) { output_.Report(problem); }, format) {}

  int Run(const DayInput& input) {
    input.FeedTo(reader_);
    for (const Document& document : reader_.Finish()) {
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
      WarnOfWords(document, receipt.total);
      if (paper_) paper_->Print(document, receipt, layout_);
      if (!paper_ || output_.Json()) output_.Print(document, receipt, layout_);
      output_.ShowProgress(++printed_);
    } catch (const receipts::UnprintableDocument& e) {
      ++left_;
      output_.Report(reader_.ProblemIn(e.Column(), e.Row(), e.what()));
      output_.ReportDocument(document,
                             receipts::SayUtf8("document %s is not printed", {document.number}));
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
    const receipts::UserText text =
        thai ? receipts::UserText("document %s: no English words for %.2n, the figures stand alone")
        : english
            ? receipts::UserText("document %s: no Thai words for %.2n, the figures stand alone")
            : receipts::UserText(
                  "document %s: no Thai and English words for %.2n, the "
                  "figures stand alone");
    output_.ReportDocument(document, receipts::SayUtf8(text, {document.number, total}), true);
  }

  void Finish() {
    if (paper_ && !paper_->Finish()) {
      output_.Report({0, 0, "",
                      receipts::SayUtf8("no document is printed, and no PDF file is written"),
                      false});
    }
    if (!dayFits_) {
      output_.Report(
          {0, 0, "", receipts::SayUtf8("the day's total is out of range and not printed"), false});
    } else if (!output_.Json() && printed_ != 0) {
      AppendDayTotal(output_.Out().Buffer(), day_, left_, layout_);
    }
    output_.Finish();
  }

  receipts::Rules rules_;
  receipts::Layout layout_;
  std::unique_ptr<DayPaper> paper_;
  DayOutput output_;
  receipts::DayReader reader_;
  receipts::DayTotal day_;
  std::uint64_t printed_ = 0;
  std::uint64_t left_ = 0;
  bool dayFits_ = true;
};

std::function<int(const Stdio&)> MakeReceipts(const Options& options, const Plan& plan) {
  return [options, json = plan.json, rules = UsageRules(options.rules),
          layout = UsageLayout(options.layout, options.rules),
          format = UsageFormat(options.format, UsageEra(options.layout.era))](const Stdio& stdio) {
    const DayInput input(options.file, stdio);
    return ReceiptsRun(format, rules, layout, options.pdf, json, stdio).Run(input);
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
  command.AddOption("--pdf", options->pdf, "The documents on pages of that file").TypeName("FILE");
  command.OnParsed([options, &plan] { plan.action = MakeReceipts(*options, plan); });
}

}  // namespace kvshare::app
