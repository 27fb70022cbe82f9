#include "apps/kvshare/dayinput.h"

#include "apps/kvshare/roundmodes.h"

namespace kvshare::app {

void AddRules(CLI::App& command, RuleOptions& options) {
  command.add_option("--round", options.round, "Mode of quantity x price (default mrTwoDigits)")
      ->type_name("MODE");
  command.add_option("--vat-round", options.vatRound, "Mode of VAT amounts (default mrTwoDigits)")
      ->type_name("MODE");
  command.add_option("--vat", options.vat, "VAT is computed and shown per line or per document")
      ->check(CLI::IsMember({"line", "document"}))
      ->type_name("line|document");
  command.add_option("--cash-step", options.cashStep, "Mode of the total, with a rounding line")
      ->type_name("MODE");
  command.add_flag("--price-includes-vat", options.priceIncludesVat, "Prices are with VAT");
}

receipts::Rules UsageRules(const RuleOptions& options) {
  receipts::Rules rules;
  rules.lineMode = UsageRoundMode("--round", options.round);
  rules.vatMode = UsageRoundMode("--vat-round", options.vatRound);
  if (!options.cashStep.empty()) rules.cashStep = UsageRoundMode("--cash-step", options.cashStep);
  rules.vatPerLine = options.vat == "line";
  rules.priceIncludesVat = options.priceIncludesVat;
  return rules;
}

void DayInput::FeedTo(receipts::DayReader& reader) const {
  constexpr std::size_t kBlock = std::size_t{256} << 10;
  std::string block(kBlock, '\0');
  const int fd = file_.IsOpen() ? file_.Fd() : in_;
  for (;;) {
    const std::size_t n = ReadSome(fd, block.data(), block.size());
    if (n == 0 || !reader.Feed({block.data(), n})) return;
  }
}

}  // namespace kvshare::app
