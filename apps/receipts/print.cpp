#include "apps/receipts/print.h"

#include <algorithm>

#include "apps/receipts/layout.h"
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
constexpr std::string_view kNumber = "เลขที่ "_th;
constexpr std::string_view kDate = "วันที่ "_th;
constexpr std::string_view kCustomer = "ลูกค้า "_th;
constexpr std::string_view kItem = "รายการ"_th;
constexpr std::string_view kQuantity = "จำนวน"_th;
constexpr std::string_view kPrice = "ราคา"_th;
constexpr std::string_view kDiscount = "ส่วนลด"_th;
constexpr std::string_view kTax = "ภาษี"_th;
constexpr std::string_view kAmount = "จำนวนเงิน"_th;
constexpr std::string_view kVat = "ภาษีมูลค่าเพิ่ม / VAT"_th;

std::string Rule(char c, std::size_t width) {
  return std::string(width, c) + "\n";
}

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

void AppendWrapped(std::string& out, std::string_view text, std::size_t width) {
  for (const std::string& piece : Wrap(text, width)) out.append(piece).push_back('\n');
}

void AppendHead(std::string& out, const Document& document, const Receipt& receipt,
                const Layout& layout) {
  const std::string_view title = IsCreditNote(document, receipt) ? kCreditNote : kReceipt;
  const std::string number = std::string(kNumber) + document.number;
  out += Rule('=', layout.width);
  if (DisplayWidth(title) + 2 + DisplayWidth(number) <= layout.width) {
    out += std::string(title) + PadLeft(number, layout.width - DisplayWidth(title)) + "\n";
  } else {
    out.append(title).push_back('\n');
    AppendWrapped(out, number, layout.width);
  }
  out.append(kDate).append(TKovraDate::ShowDate(document.date, layout.yearOffset)).push_back('\n');
  if (!document.customer.empty()) {
    AppendWrapped(out, std::string(kCustomer) + document.customer, layout.width);
  }
  out += Rule('-', layout.width);
}

std::vector<std::string> TableHead(const Layout& layout) {
  std::vector<std::string> cells = {std::string(kItem), std::string(kQuantity),
                                    std::string(kPrice)};
  if (layout.discountPerLine) cells.emplace_back(kDiscount);
  if (layout.vatPerLine) cells.emplace_back(kTax);
  cells.emplace_back(kAmount);
  return cells;
}

void AppendLines(std::string& out, const Document& document, const Receipt& receipt,
                 const Layout& layout, const Amounts& amounts) {
  Decimals quantities(layout.quantityDigits);
  Decimals prices(layout.priceDigits);
  for (const Line& line : document.lines) {
    quantities.MakeRoom(DecimalsOf(line.quantity));
    prices.MakeRoom(AmountDecimals(line.price));
  }
  Table table(layout.width);
  table.Add(TableHead(layout));
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
    table.Add(std::move(cells));
  }
  table.AppendTo(out);
  out += Rule('-', layout.width);
}

// Label and amount at the right edge.
class Summary {
 public:
  explicit Summary(const Layout& layout) : width_(layout.width) {}

  void Add(std::string_view label, std::string amount) {
    rows_.emplace_back(label, std::move(amount));
  }

  void AppendTo(std::string& out) const {
    std::size_t widest = 0;
    for (const auto& row : rows_) widest = std::max(widest, row.second.size());
    const std::size_t left = width_ > widest + 2 ? width_ - widest - 2 : 0;
    for (const auto& [label, amount] : rows_) {
      out += PadLeft(label, left) + "  " + PadLeft(amount, widest) + "\n";
    }
  }

 private:
  std::size_t width_;
  std::vector<std::pair<std::string, std::string>> rows_;
};

void AppendSums(std::string& out, const Receipt& receipt, const Layout& layout,
                const Amounts& amounts) {
  Summary sums(layout);
  const bool discounted = !layout.discountPerLine && receipt.discount != 0_baht;
  if (discounted) {
    sums.Add("รวม / Subtotal"_th, amounts.Text(receipt.gross));
    sums.Add("ส่วนลด / Discount"_th, amounts.Text(-receipt.discount));
  }
  if (layout.priceIncludesVat) {
    sums.Add("รวมภาษี / Sum with VAT"_th, amounts.Text(receipt.net + receipt.vat));
  }
  sums.Add("มูลค่าก่อนภาษี / Net"_th, amounts.Text(receipt.net));
  for (const RateAmounts& rate : receipt.rates) {
    const std::string of =
        receipt.rates.size() > 1 ? std::string(" of ") + amounts.Text(rate.net) : "";
    sums.Add(std::string(kVat) + " " + Plain(rate.rate) + "%" + of, amounts.Text(rate.vat));
  }
  if (layout.cashStep || receipt.rounding != 0_baht) {
    sums.Add("ปัดเศษ / Rounding"_th, amounts.Text(receipt.rounding));
  }
  sums.Add("รวมทั้งสิ้น / Total"_th, amounts.Text(receipt.total));
  sums.AppendTo(out);
}

void AppendWords(std::string& out, Currency total, const Layout& layout) {
  if (TKovraMoney::ThaiNoteIsSafe(total)) {
    AppendWrapped(out, TKovraMoney::ThaiNote(total), layout.width);
  }
  if (TKovraMoney::EngNoteIsSafe(total)) {
    AppendWrapped(out, TKovraMoney::EngNote(total), layout.width);
  }
}

}  // namespace

bool IsCreditNote(const Document& document, const Receipt& receipt) {
  if (receipt.total != 0_baht) return receipt.total < 0_baht;
  const auto negative = [](const Line& line) { return line.quantity < 0_baht; };
  const auto notPositive = [](const Line& line) { return line.quantity <= 0_baht; };
  return std::ranges::any_of(document.lines, negative) &&
         std::ranges::all_of(document.lines, notPositive);
}

void AppendReceipt(std::string& out, const Document& document, const Receipt& receipt,
                   const Layout& layout) {
  const Amounts amounts(receipt, layout.amountDigits);
  std::string text;
  AppendHead(text, document, receipt, layout);
  AppendLines(text, document, receipt, layout, amounts);
  AppendSums(text, receipt, layout, amounts);
  AppendWords(text, receipt.total, layout);
  text.push_back('\n');
  AppendUtf8(out, text);
}

void AppendDayTotal(std::string& out, const DayTotal& day, std::uint64_t left,
                    const Layout& layout) {
  Receipt sums;
  sums.net = day.net;
  sums.vat = day.vat;
  sums.rounding = day.rounding;
  const Amounts amounts(sums, layout.amountDigits);
  std::string text = Rule('=', layout.width);
  text.append("ยอดรวมทั้งวัน / Day's total\n"_th);
  Summary summary(layout);
  summary.Add("เอกสาร / Documents"_th, std::to_string(day.documents));
  summary.Add("มูลค่าก่อนภาษี / Net"_th, amounts.Text(day.net));
  summary.Add(kVat, amounts.Text(day.vat));
  summary.Add("ปัดเศษ / Rounding"_th, amounts.Text(day.rounding));
  summary.Add("รวมทั้งสิ้น / Total"_th, amounts.Text(day.total));
  if (left != 0) summary.Add("ไม่รวมเอกสารที่ผิดพลาด / Documents left out"_th, std::to_string(left));
  summary.AppendTo(text);
  AppendUtf8(out, text);
}

}  // namespace kvshare::receipts
