#include "apps/kvshare/day/dayinput.h"

#include "apps/kvshare/day/roundmodes.h"
#include "apps/kvshare/terminal/usage.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/programsettings.h"

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

namespace {

void ReadDigits() {
  try {
    ReadNumberSettings(TKovraRegistry());
  } catch (const EConvertError& e) {
    throw EConvertError("the stored digits cannot be used: " + e.Message() +
                        "; `kvshare doctor` tells which");
  }
}

}  // namespace

void AddLayout(CLI::App& command, LayoutOptions& options) {
  command.add_option("--discount", options.discount, "Discounts are shown per line or as one sum")
      ->check(CLI::IsMember({"line", "document"}))
      ->type_name("line|document");
  AddEra(command, options.era);
  command.add_option("--width", options.width, "Columns of a receipt (default 80)")
      ->check(CLI::Range(40, 1000))
      ->type_name("N");
}

receipts::Layout UsageLayout(const LayoutOptions& options, const RuleOptions& rules) {
  receipts::Layout layout;
  layout.width = options.width;
  layout.discountPerLine = options.discount == "line";
  layout.vatPerLine = rules.vat == "line";
  layout.priceIncludesVat = rules.priceIncludesVat;
  layout.yearOffset = UsageEra(options.era);
  layout.cashStep = !rules.cashStep.empty();
  ReadDigits();
  layout.quantityDigits = QtyDigit;
  layout.priceDigits = UPrcDigit;
  layout.amountDigits = BahtDigit;
  return layout;
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
