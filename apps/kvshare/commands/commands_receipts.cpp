// `kvshare receipts`.
#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/day/daypaper.h"
#include "apps/kvshare/day/lackings.h"
#include "apps/kvshare/terminal/usage.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"
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
  std::string copies;
};

// Which copy a sheet is, as `--copies` names it and as the sheet says it.
struct CopyRow {
  std::string_view name;
  std::string_view shown;
};
constexpr CopyRow kCopies[] = {
    {"original", "ต้นฉบับ / Original"_th},
    {"copy", "สำเนา / Copy"_th},
};

// One unnamed sheet for "".
std::vector<std::string_view> UsageCopies(std::string_view names) {
  if (names.empty()) return {""};
  std::vector<std::string_view> copies;
  while (true) {
    const std::size_t comma = std::min(names.find(','), names.size());
    const auto* row = std::ranges::find(kCopies, names.substr(0, comma), &CopyRow::name);
    if (row == std::end(kCopies)) RefuseUsage("--copies", "is a list of original and copy");
    copies.push_back(row->shown);
    if (comma == names.size()) return copies;
    names.remove_prefix(comma + 1);
  }
}

// How documents are set, on a terminal and on pages.
struct Looks {
  receipts::Layout text;
  receipts::Layout pages;
  std::vector<std::string_view> copies;
};

// Thai papers are dated in the Buddhist era; text stays in the machine's, for scripts.
Looks UsageLooks(const Options& options) {
  Looks looks{UsageLayout(options.layout, options.rules), {}, UsageCopies(options.copies)};
  looks.pages = looks.text;
  if (options.layout.era.empty()) looks.pages.yearOffset = kBuddhistEraOffset;
  return looks;
}

class ReceiptsRun {
 public:
  // With a `pdf` the documents stand there instead of on standard output.
  ReceiptsRun(const receipts::DayFormat& format, receipts::Rules rules, const Looks& looks,
              const std::string& pdf, bool json, const Stdio& stdio)
      : rules_(rules),
        looks_(looks),
        paper_(pdf.empty() ? nullptr : std::make_unique<DayPaper>(pdf)),
        output_(stdio, json, paper_ == nullptr || json),
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
      WarnOfWords(document, receipt.total);
      Print(document, receipt);
      output_.ShowProgress(++printed_);
    } catch (const receipts::UnprintableDocument& e) {
      ++left_;
      output_.Report(reader_.ProblemIn(e.Column(), e.Row(), e.what()));
      output_.ReportDocument(document,
                             receipts::SayUtf8("document %s is not printed", {document.number}));
    }
  }

  void Print(const Document& document, const Receipt& receipt) {
    receipts::Sheet sheet{"", OriginalNet(document)};
    const auto missing = MissingOn(document, receipt, looks_.text.seller, sheet.originalNet);
    if (missing) lackings_.Add(document, *missing, IsCreditNote(document, receipt));
    if (output_.Json()) output_.Print(document, receipt, looks_.text);
    for (const std::string_view copy : looks_.copies) {
      sheet.copy = copy;
      if (paper_) paper_->Print(document, receipt, looks_.pages, sheet);
      if (!paper_ && !output_.Json()) output_.Print(document, receipt, looks_.text, sheet);
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
      AppendDayTotal(output_.Out().Buffer(), day_, left_, looks_.text);
    }
    for (std::string& message : lackings_.Messages()) {
      output_.Report({0, 0, "", std::move(message), true});
    }
    if (printed_ != 0 && looks_.text.seller.name.empty() && (paper_ || !output_.Json())) {
      output_.Report({0, 0, "",
                      receipts::SayUtf8("no seller is set, and the papers name none; `kvshare shop "
                                        "set` sets one"),
                      true});
    }
    output_.Finish();
  }

  receipts::Rules rules_;
  const Looks& looks_;
  std::unique_ptr<DayPaper> paper_;
  DayOutput output_;
  receipts::DayReader reader_;
  receipts::DayTotal day_;
  std::vector<Document> documents_;
  std::unordered_map<std::string_view, const Document*> byNumber_;
  Lackings lackings_;
  std::uint64_t printed_ = 0;
  std::uint64_t left_ = 0;
  bool dayFits_ = true;
};

std::function<int(const Stdio&)> MakeReceipts(const Options& options, const Plan& plan) {
  return [options, json = plan.json, rules = UsageRules(options.rules), looks = UsageLooks(options),
          format = UsageFormat(options.format, UsageEra(options.layout.era))](const Stdio& stdio) {
    const DayInput input(options.file, stdio);
    return ReceiptsRun(format, rules, looks, options.pdf, json, stdio).Run(input);
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
  command
      .AddOption(
          "--copies", options->copies,
          "Sheets of each document: a list of original and copy (default: one without a name)")
      .TypeName("LIST");
  command.AddOption("--pdf", options->pdf, "The documents on pages of that file").TypeName("FILE");
  command.OnParsed([options, &plan] { plan.action = MakeReceipts(*options, plan); });
}

}  // namespace kvshare::app
