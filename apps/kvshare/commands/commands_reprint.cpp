// `kvshare reprint`.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/opencompany.h"
#include "apps/kvshare/data/connections.h"
#include "apps/kvshare/day/dayinput.h"
#include "apps/kvshare/day/dayoutput.h"
#include "apps/kvshare/day/paperoptions.h"
#include "apps/kvshare/day/sheetprinter.h"
#include "apps/posting/books.h"
#include "apps/posting/eposting.h"
#include "apps/receipts/usertexts.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare reprint --connect SHOP IV6911-0002\n"
    "                                            the receipt as it was posted\n"
    "  kvshare reprint --connect SHOP --copies copy --pdf copy.pdf IV6911-0002 IV6911-0004\n";

struct Options {
  std::string connect;
  std::vector<std::string> documents;
  LayoutOptions layout;
  std::string copies;
  PaperOptions paper;
};

class ReprintRun {
 public:
  ReprintRun(TSQLConnection& connection, const Looks& looks, const PaperPlan& paper, bool json,
             const Stdio& stdio)
      : connection_(connection),
        output_(stdio, json, !paper.IsPaper() || json),
        sheets_(output_, looks, paper) {}

  int Run(const std::vector<std::string>& numbers) {
    for (const std::string& number : numbers) Take(number);
    sheets_.Finish();
    output_.Finish();
    return output_.Failed() ? kBadInput : kDone;
  }

 private:
  void Take(const std::string& number) {
    try {
      std::optional<posting::Posted> posted;
      WithoutBoxes([&] { posted = posting::ReadFromBooks(connection_, number); });
      if (!posted) {
        Refuse(receipts::SayUtf8("there is no document %s in the books", {number}));
        return;
      }
      sheets_.UseRules(posted->rules);
      sheets_.Print(posted->document, posted->receipt, OriginalNet(posted->document));
    } catch (const posting::EPosting& e) {
      Refuse(receipts::SayUtf8("document %s is not printed: %s", {number, e.Message()}));
    }
  }

  std::optional<Currency> OriginalNet(const receipts::Document& document) {
    std::optional<Currency> net;
    const std::string& reference = document.particulars->reference;
    if (reference.empty()) return net;
    WithoutBoxes([&] { net = posting::NetInBooks(connection_, reference); });
    return net;
  }

  void Refuse(std::string text) { output_.Report({0, 0, "", std::move(text), false}); }

  TSQLConnection& connection_;
  DayOutput output_;
  SheetPrinter sheets_;
};

std::function<int(const Stdio&)> MakeReprint(const Options& options, bool json) {
  std::vector<std::string> numbers;
  numbers.reserve(options.documents.size());
  for (const std::string& number : options.documents) {
    numbers.push_back(UsageText("DOCUMENT", number));
  }
  return [options, numbers, json, paper = UsagePaper(options.paper),
          looks = UsageLooks(options.layout, {}, options.copies)](const Stdio& stdio) {
    OpenCompany company(options.connect);
    RequireCompany(company.Connection(), options.connect);
    return ReprintRun(company.Connection(), looks, paper, json, stdio).Run(numbers);
  };
}

}  // namespace

void DeclareReprint(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command =
      AddCommand(parent, plan, "reprint", "Documents of a company as they were posted", kExamples);
  AddConnect(command, options->connect);
  AddLayout(command, options->layout);
  AddCopies(command, options->copies);
  AddPaper(command, options->paper);
  command.AddOption("DOCUMENT", options->documents, "Their numbers").Required();
  command.OnParsed([options, &plan] { plan.action = MakeReprint(*options, plan.json); });
}

}  // namespace kvshare::app
