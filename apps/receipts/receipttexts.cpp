#include "apps/receipts/receipttexts.h"

#include <algorithm>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatfloat.h"

namespace kvshare::receipts {

namespace {

constexpr int kSatang = 100;  // ten-thousandths
constexpr int kBaht = 100 * kSatang;

constexpr std::string_view kReceipt = "ใบเสร็จรับเงิน / Receipt"_th;
constexpr std::string_view kCreditNote = "ใบลดหนี้ / Credit note"_th;
constexpr std::string_view kItem = "รายการ"_th;
constexpr std::string_view kQuantity = "จำนวน"_th;
constexpr std::string_view kPrice = "ราคา"_th;
constexpr std::string_view kDiscount = "ส่วนลด"_th;
constexpr std::string_view kTax = "ภาษี"_th;
constexpr std::string_view kAmount = "จำนวนเงิน"_th;
constexpr std::string_view kVat = "ภาษีมูลค่าเพิ่ม / VAT"_th;

std::string Plain(Currency number) {
  return FormatFloat("#,##0.####", number);
}

// The decimals that a value has: 0 .. 4.
Word DecimalsOf(Currency value) {
  Word decimals = value.Raw() == 0 ? 0 : 4;
  for (std::int64_t raw = value.Raw(); decimals > 0 && raw % 10 == 0; raw /= 10) --decimals;
  return decimals;
}

// Numbers of one column, or of several that are added up together, with as many decimals.
class Decimals {
 public:
  explicit Decimals(Word least) : decimals_(std::min(least, kMost)) {}

  void MakeRoom(Word decimals) { decimals_ = std::max(decimals_, decimals); }
  std::string Text(Currency value) const { return Format("%.*n", {decimals_, value}); }

 private:
  static constexpr Word kMost = 15;  // what a pattern's precision gives
  Word decimals_;
};

// Baht, baht and satang, or all four decimals of what is finer.
Word AmountDecimals(Currency amount) {
  if (amount.Raw() % kSatang != 0) return 4;
  return amount.Raw() % kBaht != 0 ? 2 : 0;
}

// Amounts of money of one document.
class Amounts : public Decimals {
 public:
  Amounts(const Receipt& receipt, Word least) : Decimals(least) {
    for (const LineAmounts& line : receipt.lines) {
      for (const Currency amount : {line.gross, line.amount, line.vat}) Add(amount);
    }
    for (const Currency amount : {receipt.net, receipt.vat, receipt.rounding}) Add(amount);
  }

 private:
  void Add(Currency amount) { MakeRoom(AmountDecimals(amount)); }
};

std::vector<std::string> TableHead(const Layout& layout) {
  std::vector<std::string> cells = {std::string(kItem), std::string(kQuantity),
                                    std::string(kPrice)};
  if (layout.discountPerLine) cells.emplace_back(kDiscount);
  if (layout.vatPerLine) cells.emplace_back(kTax);
  cells.emplace_back(kAmount);
  return cells;
}

std::vector<std::vector<std::string>> TableRows(const Document& document, const Receipt& receipt,
                                                const Layout& layout, const Amounts& amounts) {
  Decimals quantities(layout.quantityDigits);
  Decimals prices(layout.priceDigits);
  for (const Line& line : document.lines) {
    quantities.MakeRoom(DecimalsOf(line.quantity));
    prices.MakeRoom(AmountDecimals(line.price));
  }
  std::vector<std::vector<std::string>> rows;
  rows.reserve(document.lines.size());
  for (std::size_t i = 0; i < document.lines.size(); ++i) {
    const Line& line = document.lines[i];
    const LineAmounts& sums = receipt.lines[i];
    std::vector<std::string> cells = {line.item, quantities.Text(line.quantity),
                                      prices.Text(line.price)};
    if (layout.discountPerLine) {
      cells.push_back(line.discount == 0_baht ? "" : amounts.Text(line.discount));
    }
    if (layout.vatPerLine) cells.push_back(amounts.Text(sums.vat));
    cells.push_back(amounts.Text(layout.discountPerLine ? sums.amount : sums.gross));
    rows.push_back(std::move(cells));
  }
  return rows;
}

std::vector<Sum> SumsOf(const Receipt& receipt, const Layout& layout, const Amounts& amounts) {
  std::vector<Sum> sums;
  const auto add = [&](std::string_view label, Currency amount) {
    sums.emplace_back(label, amounts.Text(amount));
  };
  if (!layout.discountPerLine && receipt.discount != 0_baht) {
    add("รวม / Subtotal"_th, receipt.gross);
    add("ส่วนลด / Discount"_th, -receipt.discount);
  }
  if (layout.priceIncludesVat) add("รวมภาษี / Sum with VAT"_th, receipt.net + receipt.vat);
  add("มูลค่าก่อนภาษี / Net"_th, receipt.net);
  for (const RateAmounts& rate : receipt.rates) {
    const std::string of =
        receipt.rates.size() > 1 ? std::string(" of ") + amounts.Text(rate.net) : "";
    add(std::string(kVat) + " " + Plain(rate.rate) + "%" + of, rate.vat);
  }
  if (layout.cashStep || receipt.rounding != 0_baht) {
    add("ปัดเศษ / Rounding"_th, receipt.rounding);
  }
  add("รวมทั้งสิ้น / Total"_th, receipt.total);
  return sums;
}

std::vector<std::string> WordsOf(Currency total) {
  std::vector<std::string> words;
  if (TKovraMoney::ThaiNoteIsSafe(total)) words.push_back(TKovraMoney::ThaiNote(total));
  if (TKovraMoney::EngNoteIsSafe(total)) words.push_back(TKovraMoney::EngNote(total));
  return words;
}

}  // namespace

bool IsCreditNote(const Document& document, const Receipt& receipt) {
  if (receipt.total != 0_baht) return receipt.total < 0_baht;
  const auto negative = [](const Line& line) { return line.quantity < 0_baht; };
  const auto notPositive = [](const Line& line) { return line.quantity <= 0_baht; };
  return std::ranges::any_of(document.lines, negative) &&
         std::ranges::all_of(document.lines, notPositive);
}

ReceiptTexts TextsOf(const Document& document, const Receipt& receipt, const Layout& layout) {
  const Amounts amounts(receipt, layout.amountDigits);
  return {std::string(IsCreditNote(document, receipt) ? kCreditNote : kReceipt),
          document.number,
          TKovraDate::ShowDate(document.date, layout.yearOffset),
          document.customer,
          TableHead(layout),
          TableRows(document, receipt, layout, amounts),
          SumsOf(receipt, layout, amounts),
          WordsOf(receipt.total)};
}

std::vector<Sum> DayTexts(const DayTotal& day, std::uint64_t left, const Layout& layout) {
  Receipt sums;
  sums.net = day.net;
  sums.vat = day.vat;
  sums.rounding = day.rounding;
  const Amounts amounts(sums, layout.amountDigits);
  std::vector<Sum> texts;
  const auto add = [&texts](std::string_view label, std::string amount) {
    texts.emplace_back(label, std::move(amount));
  };
  add("เอกสาร / Documents"_th, std::to_string(day.documents));
  add("มูลค่าก่อนภาษี / Net"_th, amounts.Text(day.net));
  add(kVat, amounts.Text(day.vat));
  add("ปัดเศษ / Rounding"_th, amounts.Text(day.rounding));
  add("รวมทั้งสิ้น / Total"_th, amounts.Text(day.total));
  if (left != 0) add("ไม่รวมเอกสารที่ผิดพลาด / Documents left out"_th, std::to_string(left));
  return texts;
}

}  // namespace kvshare::receipts
