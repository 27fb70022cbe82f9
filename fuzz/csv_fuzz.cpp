// A day's file of any bytes: every document that is accepted closes, prints and becomes JSON, and
// its credit note is exactly minus it. The first byte chooses the rules.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

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
    AppendReceipt(out, document, receipt, {});
    AppendJson(out, document, receipt);
  } catch (const UnprintableDocument&) {
    return;  // reported to the user, not printed
  } catch (const kvshare::EIntOverflow&) {
    return;  // -922337203685477.5808 has no negative
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Rules rules = RulesOf(data[0]);
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::size_t problems = 0;
  DayReader reader([&problems](const Problem& problem) {
    Require(problem.line > 0 && !problem.Message().empty());
    if (!problem.warning) ++problems;
  });
  reader.Feed(text.substr(0, text.size() / 2));
  reader.Feed(text.substr(text.size() / 2));
  for (const Document& document : reader.Finish()) {
    Require(document.complete || problems > 0);
    if (document.complete) Check(document, rules);
  }
  return 0;
}
