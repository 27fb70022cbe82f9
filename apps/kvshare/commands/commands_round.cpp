// `kvshare round` and `kvshare share`.
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/day/roundmodes.h"
#include "apps/receipts/amounts.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/money/money.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kRoundExamples =
    "  kvshare round mrNearBaht 12.50            13.0000\n"
    "  kvshare round mrnear25 12.125 -12.125     12.2500, -12.2500\n"
    "  kvshare round 8 --price 2.345             2.3500 (code 8 of the price list)\n"
    "  kvshare round --list                      code, name and caption of every mode\n"
    "  kvshare round mrTwoDigits < amounts.txt\n";

constexpr std::string_view kShareExamples =
    "  kvshare share 33.3333 100                 33.3300, tab, 66.6700\n"
    "  kvshare share 7 --json 1,234.50\n"
    "The two always add up to the amount.\n";

struct RoundOptions {
  std::string mode;
  bool price = false;
  bool list = false;

  CodeList Codes() const { return price ? CodeList::Price : CodeList::Full; }
};

void ListModes(CodeList list, const std::function<void(const Row&)>& print, Row& row) {
  const int codes = list == CodeList::Price ? kPriceRoundCodes : kRoundModes;
  for (int code = 0; code < codes; ++code) {
    const auto word = static_cast<Word>(code);
    const TRoundModeInfo& info = RoundModeInfo(
        list == CodeList::Price ? TKovraMoney::PrRoundType(word) : TKovraMoney::RoundType(word));
    row.Clear();
    row.Number("code", code);
    row.Cell("name") = info.Name;
    row.Cell("caption") = LoadStr(static_cast<TMessage>(info.Caption));
    print(row);
  }
}

Transform MakeRound(const RoundOptions& options) {
  const auto mode = ParseRoundMode(options.mode, options.Codes());
  if (!mode) {
    RefuseUsage("MODE", "'" + options.mode + "' is no rounding mode; --list shows them");
  }
  const bool unlisted = IsUnlistedCode(options.mode, options.Codes());
  return OnAmounts("amount", [mode = *mode, unlisted](Currency amount, Row& row) {
    receipts::AppendFourDecimals(row.Cell("rounded"), TKovraMoney::Round_Baht(amount, mode));
    if (unlisted) row.Warn(receipts::Say("the code is in no list: the amount stays as it is"));
  });
}

void PlanRound(const RoundOptions& options, Plan& plan) {
  if (!options.list) {
    if (options.mode.empty()) RefuseUsage("MODE", "is needed; --list shows the modes");
    plan.transform = MakeRound(options);
    return;
  }
  if (!options.mode.empty()) RefuseUsage("--list", "takes no MODE and no AMOUNT");
  plan.action = PrintRows(
      plan, [list = options.Codes()](const auto& print, Row& row) { ListModes(list, print, row); });
}

Transform MakeShare(const std::string& percent) {
  return OnAmounts("amount",
                   [percent = UsageAmount("PERCENT", percent)](Currency amount, Row& row) {
                     Currency share;
                     Currency rest;
                     TKovraMoney::ShareValue(amount, percent, share, rest);
                     receipts::AppendFourDecimals(row.Cell("share"), share);
                     receipts::AppendFourDecimals(row.Cell("rest"), rest);
                   });
}

}  // namespace

void DeclareRound(Command parent, Plan& plan) {
  const auto options = std::make_shared<RoundOptions>();
  const Command command =
      AddCommand(parent, plan, "round", "Amounts rounded by a mode of the suite", kRoundExamples);
  command.AddOption("MODE", options->mode, "A mode's name in any letter case, or its code");
  command.AddFlag("--price", options->price, "Take the codes from the price list");
  command.AddFlag("--list", options->list, "Print code, name and caption of every mode");
  AddItems(command, plan, "AMOUNT", "Amounts to round");
  command.OnParsed([options, &plan] { PlanRound(*options, plan); });
}

void DeclareShare(Command parent, Plan& plan) {
  const auto percent = std::make_shared<std::string>();
  const Command command =
      AddCommand(parent, plan, "share", "A percentage of each amount, to the satang, and the rest",
                 kShareExamples);
  command.AddOption("PERCENT", *percent, "The share in per cent").Required();
  AddItems(command, plan, "AMOUNT", "Amounts to split");
  command.OnParsed([percent, &plan] { plan.transform = MakeShare(*percent); });
}

}  // namespace kvshare::app
