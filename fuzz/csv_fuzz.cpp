// A day's file of any bytes: every document that is accepted closes, prints and becomes JSON, and
// its credit note is exactly minus it; in blocks of another size the same is read. The first byte
// chooses the rules and how the file is written.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "apps/receipts/calc.h"
#include "apps/receipts/dayreader.h"
#include "apps/receipts/json.h"
#include "apps/receipts/plainreceipt.h"

namespace {

using namespace kvshare::receipts;
using kvshare::Currency;

void Require(bool holds) {
  if (!holds) std::abort();
}

Rules RulesOf(std::uint8_t choice) {
  Rules rules;
  rules.vatPerLine = (choice & 1) != 0;
  rules.priceIncludesVat = (choice & 2) != 0;
  rules.lineMode = static_cast<kvshare::TKovraMoneyRound>(choice % kvshare::kRoundModes);
  if ((choice & 4) != 0) rules.cashStep = kvshare::mrDownTo25;
  return rules;
}

DayFormat FormatOf(std::uint8_t choice) {
  DayFormat format;
  format.encoding = static_cast<TextEncoding>(choice / 8 % 5);
  format.decimalMark = (choice & 4) != 0 ? DecimalMark::Comma : DecimalMark::Point;
  format.era = (choice & 1) != 0 ? 543 : 0;
  return format;
}

Layout LayoutOfSeller() {
  Layout layout;
  layout.seller = {"Shop", {"Street"}, "0105561000003", "00000", "02", nullptr};
  return layout;
}

void CheckCreditNote(Document document, const Receipt& receipt, const Rules& rules) {
  for (Line& line : document.lines) {
    line.quantity = -line.quantity;
    line.discount = -line.discount;
  }
  const Receipt note = Calculate(document, rules);
  Require(note.net == -receipt.net && note.vat == -receipt.vat && note.total == -receipt.total);
}

void Check(const Document& document, const Rules& rules) {
  try {
    const Receipt receipt = Calculate(document, rules);
    Require(receipt.Closes());
    CheckCreditNote(document, receipt, rules);
    std::string out;
    const Layout layout = LayoutOfSeller();
    AppendReceipt(out, document, receipt, layout, {"Copy", document.lines.front().price});
    AppendJson(out, document, receipt, layout.seller);
  } catch (const UnprintableDocument&) {
    return;  // reported to the user, not printed
  } catch (const kvshare::EIntOverflow&) {
    return;  // -922337203685477.5808 has no negative
  }
}

struct Day {
  std::vector<Document> documents;
  std::string problems;
  bool failed = false;
};

Day Read(std::string_view text, std::size_t block, const DayFormat& format) {
  Day day;
  DayReader reader(
      [&day](const Problem& problem) {
        Require(!problem.Message().empty());
        day.problems += problem.Message() + "\n";
        day.failed = day.failed || !problem.warning;
      },
      format);
  for (; !text.empty(); text.remove_prefix(std::min(block, text.size()))) {
    if (!reader.Feed(text.substr(0, block))) break;
  }
  day.documents = reader.Finish();
  return day;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Rules rules = RulesOf(data[0]);
  const DayFormat format = FormatOf(data[0]);
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const Day day = Read(text, std::max<std::size_t>(text.size(), 1), format);
  Require(Read(text, 7, format).problems == day.problems);
  for (const Document& document : day.documents) {
    Require(document.complete || day.failed);
    if (document.complete) Check(document, rules);
  }
  return 0;
}
