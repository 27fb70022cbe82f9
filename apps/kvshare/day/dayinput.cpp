#include "apps/kvshare/day/dayinput.h"

#include <utility>

#include "apps/kvshare/day/roundmodes.h"
#include "apps/kvshare/day/shopsettings.h"
#include "apps/kvshare/terminal/usage.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/programsettings.h"

namespace kvshare::app {

void AddRules(Command command, RuleOptions& options) {
  command.AddOption("--round", options.round, "Mode of quantity x price (default mrTwoDigits)")
      .TypeName("MODE");
  command.AddOption("--vat-round", options.vatRound, "Mode of VAT amounts (default mrTwoDigits)")
      .TypeName("MODE");
  command.AddOption("--vat", options.vat, "VAT is computed and shown per line or per document")
      .OneOf({"line", "document"})
      .TypeName("line|document");
  command.AddOption("--cash-step", options.cashStep, "Mode of the total, with a rounding line")
      .TypeName("MODE");
  command.AddFlag("--price-includes-vat", options.priceIncludesVat, "Prices are with VAT");
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

void AddFormat(Command command, FormatOptions& options) {
  command
      .AddOption("--encoding", options.encoding,
                 "utf-8, utf-16le, utf-16be or cp874 (default: found by the content)")
      .TypeName("NAME");
  command
      .AddOption("--separator", options.separator,
                 "Of cells: comma, semicolon or tab (default: as in the header)")
      .TypeName("NAME");
  command.AddFlag("--decimal-comma", options.decimalComma, "Amounts are written 1.234,50");
}

namespace {

char UsageSeparator(const std::string& name) {
  constexpr std::pair<std::string_view, char> kNames[] = {
      {"comma", ','}, {",", ','}, {"semicolon", ';'}, {";", ';'}, {"tab", '\t'}, {"\t", '\t'}};
  if (name.empty()) return '\0';
  for (const auto& [known, separator] : kNames) {
    if (SameText(name, known)) return separator;
  }
  RefuseUsage("--separator", "'" + name + "' is not comma, semicolon or tab");
}

}  // namespace

receipts::DayFormat UsageFormat(const FormatOptions& options, Word era) {
  receipts::DayFormat format;
  if (!options.encoding.empty()) {
    const auto encoding = receipts::FindEncoding(options.encoding);
    if (!encoding) {
      RefuseUsage("--encoding",
                  "'" + options.encoding + "' is not utf-8, utf-16le, utf-16be or cp874");
    }
    format.encoding = *encoding;
  }
  format.separator = UsageSeparator(options.separator);
  if (options.decimalComma) format.decimalMark = receipts::DecimalMark::Comma;
  format.era = era;
  return format;
}

namespace {

bool IsStored(std::string_view digits) {
  return !TKovraRegistry().ReadRegistryString("", "Default", digits, "").empty();
}

void ReadDigits() {
  try {
    ReadNumberSettings(TKovraRegistry());
  } catch (const EConvertError& e) {
    throw EConvertError("the stored digits cannot be used: " + e.Message() +
                        "; `kvshare doctor` tells which");
  }
}

}  // namespace

void AddLayout(Command command, LayoutOptions& options) {
  command.AddOption("--discount", options.discount, "Discounts are shown per line or as one sum")
      .OneOf({"line", "document"})
      .TypeName("line|document");
  AddEra(command, options.era);
  command.AddOption("--width", options.width, "Columns of a receipt (default 80)")
      .Between(40, 1000)
      .TypeName("N");
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
  if (IsStored("QtyDigit")) layout.quantityDigits = QtyDigit;
  layout.priceDigits = UPrcDigit;
  layout.amountDigits = BahtDigit;
  layout.seller = StoredSeller();
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
