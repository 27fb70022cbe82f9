#include "apps/kvshare/day/paperoptions.h"

#include <utility>

#include "apps/kvshare/terminal/usage.h"

namespace kvshare::app {

namespace {

using To = PaperPlan::To;

struct Place {
  std::string_view option;
  std::string PaperOptions::*value;
  To to;
};
constexpr Place kPlaces[] = {
    {"--pdf", &PaperOptions::pdf, To::Pdf},
    {"--png", &PaperOptions::png, To::Png},
    {"--raw", &PaperOptions::raw, To::Raw},
    {"--printer", &PaperOptions::printer, To::Printer},
};

TCut CutOf(std::string_view name) {
  if (name == "partial") return TCut::Partial;
  return name == "none" ? TCut::None : TCut::Full;
}

void ChoosePlace(PaperPlan& plan, const PaperOptions& options) {
  for (const Place& place : kPlaces) {
    const std::string& value = options.*place.value;
    if (value.empty()) continue;
    if (plan.IsPaper()) RefuseUsage(place.option, "is one place too many: choose one");
    plan.to = place.to;
    plan.name = UsageText(place.option, value);
  }
}

void RefuseOddPairs(const PaperPlan& plan, const PaperOptions& options) {
  const bool bytes = plan.roll && (plan.to == To::Raw || plan.to == To::Printer);
  if (plan.sheet && plan.roll) RefuseUsage("--roll", "is paper of its own: --paper is for sheets");
  if (!plan.roll && plan.to == To::Png) RefuseUsage("--png", "needs --roll");
  if (!plan.roll && plan.to == To::Raw) RefuseUsage("--raw", "needs --roll");
  if (plan.sheet && !plan.IsPaper()) RefuseUsage("--paper", "needs --pdf or --printer");
  if (plan.roll && !plan.IsPaper()) {
    RefuseUsage("--roll", "needs --pdf, --png, --raw or --printer");
  }
  if (options.drawer && !bytes) RefuseUsage("--drawer", "needs --roll with --raw or --printer");
  if (options.cut != "full" && !bytes) RefuseUsage("--cut", "needs --roll with --raw or --printer");
}

std::unique_ptr<TRollPrinter> MakeRoll(const PaperPlan& plan) {
  switch (plan.to) {
    case To::Pdf:
      return Paper().RollPdfPrinter(plan.name, *plan.roll);
    case To::Png:
      return Paper().RollPngPrinter(plan.name, *plan.roll);
    case To::Raw:
      return Paper().RollFilePrinter(plan.name, *plan.roll, plan.work);
    case To::Printer:
      return Paper().RollQueuePrinter(plan.name, *plan.roll, plan.work);
    case To::Nothing:
      break;
  }
  return nullptr;
}

}  // namespace

void AddPaper(Command command, PaperOptions& options) {
  command.AddOption("--pdf", options.pdf, "The documents on pages of that file").TypeName("FILE");
  command.AddOption("--printer", options.printer, "The documents on that printer").TypeName("NAME");
  command.AddOption("--paper", options.paper, "Of pages: A4 or A5 (default: the printer's, or A4)")
      .OneOf({"A4", "A5"})
      .TypeName("A4|A5");
  command.AddOption("--roll", options.roll, "Paper of a receipt printer: 80 or 58 mm wide")
      .OneOf({"80", "58"})
      .TypeName("80|58");
  command.AddOption("--png", options.png, "Pictures of a roll: FILE, then FILE-2 and so on")
      .TypeName("FILE");
  command.AddOption("--raw", options.raw, "The bytes for a receipt printer, in that file")
      .TypeName("FILE");
  command.AddOption("--cut", options.cut, "Behind each receipt of a roll (default full)")
      .OneOf({"full", "partial", "none"})
      .TypeName("full|partial|none");
  command.AddFlag("--drawer", options.drawer, "The receipt printer opens the cash drawer first");
}

PaperPlan UsagePaper(const PaperOptions& options) {
  PaperPlan plan;
  ChoosePlace(plan, options);
  if (!options.paper.empty()) plan.sheet = options.paper == "A5" ? kSheetA5 : kSheetA4;
  if (!options.roll.empty()) plan.roll = options.roll == "80" ? TRoll::Roll80 : TRoll::Roll58;
  plan.work = {CutOf(options.cut), options.drawer};
  RefuseOddPairs(plan, options);
  return plan;
}

std::unique_ptr<TPrinter> MakePrinter(const PaperPlan& plan) {
  if (plan.roll) return MakeRoll(plan);
  if (plan.to == To::Printer) return Paper().QueuePrinter(plan.name, plan.sheet);
  return Paper().PdfPrinter(plan.name, plan.sheet.value_or(kSheetA4));
}

}  // namespace kvshare::app
