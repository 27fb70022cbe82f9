// `kvshare words`.
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/money/money.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare words 1200                        (หนึ่งพันสองร้อยบาทถ้วน)\n"
    "  kvshare words --english 1,234.50          One Thousand Two Hundred and Thirty Four Baht "
    "...\n"
    "  kvshare words --currency Dollars,Cents 12.01\n"
    "                                            Twelve Dollars One Cents\n"
    "  kvshare words -12.50                      the magnitude, with a warning\n"
    "  cut -d, -f3 totals.csv | kvshare words > words.txt\n";

struct Options {
  bool english = false;
  std::string currency;  // UNIT,SUBUNIT
};

using Speller = std::function<void(std::string& out, Currency amount)>;

Speller EnglishSpeller(const std::string& currency) {
  if (currency.empty()) return TKovraMoney::AppendEngNote;
  const std::string names = UsageText("--currency", currency);
  const std::size_t comma = names.find(',');
  if (comma == std::string_view::npos || comma == 0 || comma + 1 == names.size()) {
    RefuseUsage("--currency", "UNIT,SUBUNIT are two names with a comma between");
  }
  return [unit = names.substr(0, comma), sub = names.substr(comma + 1)](std::string& out,
                                                                        Currency amount) {
    TKovraMoney::AppendEngCrncy(out, amount, unit, sub);
  };
}

void WarnUnsafe(Currency amount, Row& row) {
  row.Warn(amount.Raw() < 0
               ? receipts::Say("the words do not say that the amount is negative")
               : receipts::Say("the amount is too large: the words are not its words"));
}

Transform MakeWords(const Options& options) {
  const bool english = options.english || !options.currency.empty();
  if (!english) {
    return OnAmounts("amount", [](Currency amount, Row& row) {
      TKovraMoney::AppendThaiNote(row.Cell("words"), amount);
      const bool safe = TKovraMoney::ThaiNoteIsSafe(amount);
      row.Flag("safe", safe);
      if (!safe) WarnUnsafe(amount, row);
    });
  }
  return OnAmounts("amount", [spell = EnglishSpeller(options.currency)](Currency amount, Row& row) {
    spell(row.Cell("words"), amount);
    const bool safe = TKovraMoney::EngNoteIsSafe(amount);
    row.Flag("safe", safe);
    if (!safe) WarnUnsafe(amount, row);
  });
}

}  // namespace

void DeclareWords(Command parent, Plan& plan) {
  const auto options = std::make_shared<Options>();
  const Command command = AddCommand(
      parent, plan, "words", "Amounts in words, as cheques and receipts show them", kExamples);
  command.AddFlag("--english", options->english, "English baht and stang instead of Thai");
  command
      .AddOption("--currency", options->currency,
                 "English with these names of the unit and its hundredth")
      .TypeName("UNIT,SUBUNIT");
  AddItems(command, plan, "AMOUNT", "Amounts, thousands commas allowed");
  command.OnParsed([options, &plan] { plan.transform = MakeWords(*options); });
}

}  // namespace kvshare::app
