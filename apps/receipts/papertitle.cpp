#include "apps/receipts/papertitle.h"

#include <algorithm>
#include <cstddef>

#include "kvshare/rtl/cp874.h"

namespace kvshare::receipts {

namespace {

struct TitleRow {
  PaperTitle title;
  std::string_view name;
  std::string_view shown;
};
constexpr TitleRow kTitles[] = {
    {PaperTitle::Receipt, "receipt", "ใบเสร็จรับเงิน / Receipt"_th},
    {PaperTitle::AbbreviatedTaxInvoice, "abbreviated_tax_invoice",
     "ใบเสร็จรับเงิน/ใบกำกับภาษีอย่างย่อ / Receipt/Abbreviated tax invoice"_th},
    {PaperTitle::TaxInvoice, "tax_invoice", "ใบเสร็จรับเงิน/ใบกำกับภาษี / Receipt/Tax invoice"_th},
    {PaperTitle::CreditNote, "credit_note", "ใบลดหนี้ / Credit note"_th},
};

constexpr bool AreInOrder() {
  std::size_t number = 0;
  return std::ranges::all_of(kTitles, [&number](const TitleRow& row) {
    return static_cast<std::size_t>(row.title) == number++;
  });
}
static_assert(AreInOrder());

bool HasVat(const Document& document) {
  return std::ranges::any_of(document.lines,
                             [](const Line& line) { return line.vatRate != 0_baht; });
}

bool HasAddress(const Document& document) {
  return document.particulars != nullptr && !document.particulars->address.empty();
}

bool IsTaxPaper(const Document& document, const Seller& seller) {
  return !seller.name.empty() && !seller.taxId.empty() && HasVat(document);
}

std::optional<UserText> MissingOnCreditNote(const Document& document,
                                            std::optional<Currency> originalNet) {
  const Particulars* particulars = document.particulars.get();
  if (particulars == nullptr || particulars->reference.empty()) {
    return UserText("the invoice's number");
  }
  if (!particulars->referenceDate) return UserText("the invoice's date");
  if (particulars->reason.empty()) return UserText("the reason");
  if (!originalNet) return UserText("the invoice's value, which is not in the file");
  return std::nullopt;
}

}  // namespace

bool IsCreditNote(const Document& document, const Receipt& receipt) {
  if (receipt.total != 0_baht) return receipt.total < 0_baht;
  const auto negative = [](const Line& line) { return line.quantity < 0_baht; };
  const auto notPositive = [](const Line& line) { return line.quantity <= 0_baht; };
  return std::ranges::any_of(document.lines, negative) &&
         std::ranges::all_of(document.lines, notPositive);
}

PaperTitle TitleOf(const Document& document, const Receipt& receipt, const Seller& seller) {
  if (IsCreditNote(document, receipt)) return PaperTitle::CreditNote;
  if (!IsTaxPaper(document, seller)) return PaperTitle::Receipt;
  const bool full = !seller.address.empty() && !document.customer.empty() && HasAddress(document);
  return full ? PaperTitle::TaxInvoice : PaperTitle::AbbreviatedTaxInvoice;
}

std::optional<UserText> MissingOn(const Document& document, const Receipt& receipt,
                                  const Seller& seller, std::optional<Currency> originalNet) {
  if (!IsTaxPaper(document, seller)) return std::nullopt;
  if (seller.address.empty()) return UserText("the seller's address");
  if (IsCreditNote(document, receipt)) return MissingOnCreditNote(document, originalNet);
  if (document.customer.empty() || HasAddress(document)) return std::nullopt;
  return UserText("the buyer's address");
}

std::string_view ShownTitle(PaperTitle title) {
  return kTitles[static_cast<std::size_t>(title)].shown;
}

std::string_view NameOf(PaperTitle title) {
  return kTitles[static_cast<std::size_t>(title)].name;
}

}  // namespace kvshare::receipts
