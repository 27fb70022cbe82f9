// What a document may be called, by what stands on it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "apps/receipts/party.h"
#include "apps/receipts/usertexts.h"

namespace kvshare::receipts {

enum class PaperTitle : std::uint8_t {
  Receipt,
  AbbreviatedTaxInvoice,  // Revenue Code, section 86/6
  TaxInvoice,             // section 86/4
  CreditNote,             // section 86/10
};

// Whether all the document takes back what an invoice gave.
bool IsCreditNote(const Document& document, const Receipt& receipt);

// A seller with a tax number whose document has VAT issues a tax invoice: the full one where the
// customer's name and address and the seller's address are there. Without VAT or a tax number it
// is a receipt.
PaperTitle TitleOf(const Document& document, const Receipt& receipt, const Seller& seller);

// What a seller with a tax number would have to add: to a document with a customer's name for the
// full tax invoice, to a credit note for what the law asks of it, with `originalNet` the value of
// the invoice that it reduces. Nothing where nothing lacks.
std::optional<UserText> MissingOn(const Document& document, const Receipt& receipt,
                                  const Seller& seller, std::optional<Currency> originalNet);

// In both languages, with " / " between; code page 874.
std::string_view ShownTitle(PaperTitle title);

// For programs: `receipt`, `abbreviated_tax_invoice`, `tax_invoice`, `credit_note`.
std::string_view NameOf(PaperTitle title);

}  // namespace kvshare::receipts
