#include "apps/receipts/json.h"

#include <nlohmann/json.hpp>

#include "apps/receipts/amounts.h"
#include "apps/receipts/papertitle.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatfloat.h"

namespace kvshare::receipts {

namespace {

using Json = nlohmann::ordered_json;

std::string Decimals(Currency amount) {
  std::string text;
  AppendDecimals(text, amount);
  return text;
}

std::string Plain(Currency number) {
  return FormatFloat("0.####", number);
}

Json LineObject(const Line& line, const LineAmounts& amounts) {
  return {{"item", Cp874ToUtf8(line.item)},      {"quantity", Plain(line.quantity)},
          {"price", Decimals(line.price)},       {"gross", Decimals(amounts.gross)},
          {"discount", Decimals(line.discount)}, {"vat_rate", Plain(line.vatRate)},
          {"net", Decimals(amounts.net)},        {"vat", Decimals(amounts.vat)}};
}

Json RateObject(const RateAmounts& rate) {
  return {{"rate", Plain(rate.rate)}, {"net", Decimals(rate.net)}, {"vat", Decimals(rate.vat)}};
}

void AddParticulars(Json& object, const Particulars& particulars) {
  const auto add = [&object](const char* name, const std::string& text) {
    if (!text.empty()) object[name] = Cp874ToUtf8(text);
  };
  add("customer_address", particulars.address);
  add("customer_tax_id", particulars.taxId);
  add("customer_branch", particulars.branch);
  add("reference", particulars.reference);
  if (particulars.referenceDate) {
    object["reference_date"] = FormatDateTime("yyyy-mm-dd", *particulars.referenceDate);
  }
  add("reason", particulars.reason);
}

}  // namespace

void AppendJson(std::string& out, const Document& document, const Receipt& receipt,
                const Seller& seller) {
  Json object = {{"document", Cp874ToUtf8(document.number)},
                 {"date", FormatDateTime("yyyy-mm-dd", document.date)},
                 {"customer", Cp874ToUtf8(document.customer)},
                 {"lines", Json::array()},
                 {"gross", Decimals(receipt.gross)},
                 {"discount", Decimals(receipt.discount)},
                 {"net", Decimals(receipt.net)},
                 {"vat", Decimals(receipt.vat)},
                 {"vat_rates", Json::array()},
                 {"rounding", Decimals(receipt.rounding)},
                 {"total", Decimals(receipt.total)},
                 {"words_thai", nullptr},
                 {"words_english", nullptr}};
  for (std::size_t i = 0; i < document.lines.size(); ++i) {
    object["lines"].push_back(LineObject(document.lines[i], receipt.lines[i]));
  }
  for (const RateAmounts& rate : receipt.rates) object["vat_rates"].push_back(RateObject(rate));
  if (TKovraMoney::ThaiNoteIsSafe(receipt.total)) {
    object["words_thai"] = Cp874ToUtf8(TKovraMoney::ThaiNote(receipt.total));
  }
  if (TKovraMoney::EngNoteIsSafe(receipt.total)) {
    object["words_english"] = TKovraMoney::EngNote(receipt.total);
  }
  object["kind"] = NameOf(TitleOf(document, receipt, seller));
  if (document.particulars != nullptr) AddParticulars(object, *document.particulars);
  out += object.dump();
}

}  // namespace kvshare::receipts
