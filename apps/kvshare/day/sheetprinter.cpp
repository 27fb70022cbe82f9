#include "apps/kvshare/day/sheetprinter.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "apps/kvshare/day/shopsettings.h"
#include "apps/kvshare/terminal/usage.h"
#include "apps/receipts/usertexts.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::app {

namespace {

// Which copy a sheet is, as `--copies` names it and as the sheet says it.
struct CopyRow {
  std::string_view name;
  std::string_view shown;
};
constexpr CopyRow kCopies[] = {
    {"original", "ต้นฉบับ / Original"_th},
    {"copy", "สำเนา / Copy"_th},
};

// One unnamed sheet for "".
std::vector<std::string_view> UsageCopies(std::string_view names) {
  if (names.empty()) return {""};
  std::vector<std::string_view> copies;
  for (;;) {
    const std::size_t comma = std::min(names.find(','), names.size());
    const auto* row = std::ranges::find(kCopies, names.substr(0, comma), &CopyRow::name);
    if (row == std::end(kCopies)) RefuseUsage("--copies", "is a list of original and copy");
    copies.push_back(row->shown);
    if (comma == names.size()) return copies;
    names.remove_prefix(comma + 1);
  }
}

void SetRules(receipts::Layout& layout, const receipts::Rules& rules) {
  layout.vatPerLine = rules.vatPerLine;
  layout.priceIncludesVat = rules.priceIncludesVat;
  layout.cashStep = rules.cashStep.has_value();
}

}  // namespace

void AddCopies(Command command, std::string& copies) {
  command
      .AddOption(
          "--copies", copies,
          "Sheets of each document: a list of original and copy (default: one without a name)")
      .TypeName("LIST");
}

Looks UsageLooks(const LayoutOptions& layout, const RuleOptions& rules, const std::string& copies) {
  Looks looks{UsageLayout(layout, rules), {}, UsageCopies(copies)};
  looks.pages = looks.text;
  if (layout.era.empty()) looks.pages.yearOffset = kBuddhistEraOffset;
  return looks;
}

SheetPrinter::SheetPrinter(DayOutput& output, Looks looks, const PaperPlan& plan)
    : output_(output),
      looks_(std::move(looks)),
      paper_(plan.IsPaper() ? std::make_unique<DayPaper>(plan) : nullptr),
      file_(plan.IsFile()) {
  if (paper_) looks_.pages.seller.logo = StoredLogo();
}

void SheetPrinter::UseRules(const receipts::Rules& rules) {
  SetRules(looks_.text, rules);
  SetRules(looks_.pages, rules);
}

void SheetPrinter::Print(const receipts::Document& document, const receipts::Receipt& receipt,
                         std::optional<Currency> originalNet) {
  WarnOfWords(document, receipt.total);
  const auto missing = MissingOn(document, receipt, looks_.text.seller, originalNet);
  if (missing) lackings_.Add(document, *missing, IsCreditNote(document, receipt));
  receipts::Sheet sheet{"", originalNet};
  if (output_.Json()) output_.Print(document, receipt, looks_.text);
  for (const std::string_view copy : looks_.copies) {
    sheet.copy = copy;
    if (paper_) paper_->Print(document, receipt, looks_.pages, sheet);
    if (!paper_ && !output_.Json()) output_.Print(document, receipt, looks_.text, sheet);
  }
  ++printed_;
}

void SheetPrinter::WarnOfWords(const receipts::Document& document, Currency total) {
  using receipts::UserText;
  const bool thai = TKovraMoney::ThaiNoteIsSafe(total);
  const bool english = TKovraMoney::EngNoteIsSafe(total);
  if (thai && english) return;
  const UserText text =
      thai ? UserText("document %s: no English words for %.2n, the figures stand alone")
      : english
          ? UserText("document %s: no Thai words for %.2n, the figures stand alone")
          : UserText("document %s: no Thai and English words for %.2n, the figures stand alone");
  output_.ReportDocument(document, receipts::SayUtf8(text, {document.number, total}), true);
}

void SheetPrinter::Finish() {
  if (paper_ && !paper_->Finish()) {
    output_.Report({0, 0, "",
                    file_ ? receipts::SayUtf8("no document is printed, and no file is written")
                          : receipts::SayUtf8("no document is printed"),
                    false});
  }
  for (std::string& message : lackings_.Messages()) {
    output_.Report({0, 0, "", std::move(message), true});
  }
  if (printed_ != 0 && looks_.text.seller.name.empty() && (paper_ || !output_.Json())) {
    output_.Report({0, 0, "",
                    receipts::SayUtf8("no seller is set, and the papers name none; `kvshare shop "
                                      "set` sets one"),
                    true});
  }
}

}  // namespace kvshare::app
