// `kvshare qty`, `kvshare format` and `kvshare mask`.
#include <array>
#include <memory>
#include <optional>

#include "apps/kvshare/commands/commands.h"
#include "kvshare/money/money.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kQtyExamples =
    "  kvshare qty 12 29                         2.05, right-aligned: 2 packs and 5 pieces\n"
    "  kvshare qty 12 29 --sku 1,2,0,0,0         2+5\n"
    "  kvshare qty 12 29 --sku 2,6,0,6,0.5       2+5=14.500000\n";

constexpr std::string_view kFormatExamples =
    "  kvshare format '%12.2n' 1234.5            1,234.50 in 12 columns\n"
    "  kvshare format 'Total: %.0f baht' 99.50   Total: 100 baht\n";

constexpr std::string_view kMaskExamples =
    "  kvshare mask '#,##0.00' 1234.5            1,234.50\n"
    "  kvshare mask '0.00;(0.00);-' -5 0         (5.00), -\n";

struct QtyOptions {
  std::string factor;
  std::string sku;  // MODE,STYLE,DECIMALS,EQSTYLE,RATE
};

struct SkuLayout {
  std::array<int, 4> numbers{};  // mode, style, decimals, equivalent style
  std::string rate;

  std::string Text(Currency factor, Currency qty) const {
    return TKovraMoney::ShowSkuQty(numbers[0], numbers[1], numbers[2], numbers[3], qty, factor,
                                   rate);
  }
};

SkuLayout ParseSku(std::string_view option) {
  SkuLayout layout;
  for (int& number : layout.numbers) {
    const std::size_t comma = option.find(',');
    std::int32_t value = 0;
    if (comma == std::string_view::npos || !TryStrToInt(Trim(option.substr(0, comma)), value)) {
      RefuseUsage("--sku", "needs four whole numbers and a rate: MODE,STYLE,DECIMALS,EQSTYLE,RATE");
    }
    number = value;
    option.remove_prefix(comma + 1);
  }
  layout.rate = UsageText("--sku", Trim(option));
  return layout;
}

Transform MakeQty(const QtyOptions& options) {
  const Currency factor = UsageAmount("FACTOR", options.factor);
  if (factor == Currency()) RefuseUsage("FACTOR", "a pack has more than 0 units");
  if (options.sku.empty()) {
    return OnAmounts("quantity", [factor](Currency qty, Row& row) {
      row.Cell("text") = TKovraMoney::ReformatQty(factor, qty);
    });
  }
  const SkuLayout layout = ParseSku(options.sku);
  if (layout.Text(factor, Currency()).empty()) {
    RefuseUsage("--sku", "mode 1 has styles 1 to 4, mode 2 equivalent styles 1 to 8 and a rate");
  }
  return OnAmounts("quantity", [factor, layout](Currency qty, Row& row) {
    row.Cell("text") = layout.Text(factor, qty);
  });
}

// A pattern that does not suit an amount suits none: better one complaint than one a line.
Transform MakeFormat(const std::string& option) {
  std::string pattern = UsageText("PATTERN", option);
  try {
    Format(pattern, {Currency()});
  } catch (const EConvertError& e) {
    RefuseUsage("PATTERN", Cp874ToUtf8Lossy(e.Message()));
  }
  return OnAmounts("amount", [pattern = std::move(pattern)](Currency amount, Row& row) {
    AppendFormat(row.Cell("text"), pattern, {amount});
  });
}

Transform MakeMask(const std::string& option) {
  return OnAmounts("amount", [mask = UsageText("MASK", option)](Currency amount, Row& row) {
    AppendFormatFloat(row.Cell("text"), mask, amount);
  });
}

}  // namespace

void DeclareQty(Command parent, Plan& plan) {
  const auto options = std::make_shared<QtyOptions>();
  const Command command =
      AddCommand(parent, plan, "qty", "Quantities as packs and loose units", kQtyExamples);
  command.AddOption("FACTOR", options->factor, "Base units in a pack").Required();
  command
      .AddOption("--sku", options->sku,
                 "The text of a stock-keeping unit: mode 1 with style 1 to 4, or mode 2 with "
                 "equivalent style 1 to 8 and rate")
      .TypeName("MODE,STYLE,DECIMALS,EQSTYLE,RATE");
  AddItems(command, plan, "QTY", "Quantities in base units");
  command.OnParsed([options, &plan] { plan.transform = MakeQty(*options); });
}

void DeclareFormat(Command parent, Plan& plan) {
  const auto pattern = std::make_shared<std::string>();
  const Command command =
      AddCommand(parent, plan, "format", "Amounts through a format pattern with one argument",
                 kFormatExamples);
  command
      .AddOption("PATTERN", *pattern,
                 "Text with one of %f %n %m %e %g, e.g. %12.2n; %% prints a per cent sign")
      .Required();
  AddItems(command, plan, "AMOUNT", "Amounts to show");
  command.OnParsed([pattern, &plan] { plan.transform = MakeFormat(*pattern); });
}

void DeclareMask(Command parent, Plan& plan) {
  const auto mask = std::make_shared<std::string>();
  const Command command =
      AddCommand(parent, plan, "mask", "Amounts through a display mask", kMaskExamples);
  command.AddOption("MASK", *mask, "Sections for positive;negative;zero of 0 # . , and text")
      .Required();
  AddItems(command, plan, "AMOUNT", "Amounts to show");
  command.OnParsed([mask, &plan] { plan.transform = MakeMask(*mask); });
}

}  // namespace kvshare::app
