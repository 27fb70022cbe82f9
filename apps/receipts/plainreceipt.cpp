#include "apps/receipts/plainreceipt.h"

#include <algorithm>

#include "apps/receipts/textlayout.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::receipts {

namespace {

constexpr std::string_view kNumber = "เลขที่ "_th;
constexpr std::string_view kDate = "วันที่ "_th;
constexpr std::string_view kCustomer = "ลูกค้า "_th;

std::string Rule(char c, std::size_t width) {
  return std::string(width, c) + "\n";
}

void AppendWrapped(std::string& out, std::string_view text, std::size_t width) {
  for (const std::string& piece : Wrap(text, width)) out.append(piece).push_back('\n');
}

void AppendHead(std::string& out, const ReceiptTexts& texts, std::size_t width) {
  const std::string number = std::string(kNumber) + texts.number;
  out += Rule('=', width);
  for (const std::string& line : texts.seller) AppendWrapped(out, line, width);
  if (!texts.seller.empty()) out.push_back('\n');
  if (DisplayWidth(texts.title) + 2 + DisplayWidth(number) <= width) {
    out += texts.title + PadLeft(number, width - DisplayWidth(texts.title)) + "\n";
  } else {
    out.append(texts.title).push_back('\n');
    AppendWrapped(out, number, width);
  }
  if (!texts.copy.empty()) out.append(texts.copy).push_back('\n');
  out.append(kDate).append(texts.date).push_back('\n');
  if (!texts.customer.empty()) {
    AppendWrapped(out, std::string(kCustomer) + texts.customer, width);
  }
  for (const auto& [label, text] : texts.particulars) {
    AppendWrapped(out, std::string(label).append(" ").append(text), width);
  }
  out += Rule('-', width);
}

// Label and amount at the right edge.
void AppendSums(std::string& out, const std::vector<Sum>& sums, std::size_t width) {
  std::size_t widest = 0;
  for (const Sum& sum : sums) widest = std::max(widest, sum.second.size());
  const std::size_t left = width > widest + 2 ? width - widest - 2 : 0;
  for (const auto& [label, amount] : sums) {
    out += PadLeft(label, left) + "  " + PadLeft(amount, widest) + "\n";
  }
}

}  // namespace

void AppendReceipt(std::string& out, const Document& document, const Receipt& receipt,
                   const Layout& layout, const Sheet& sheet) {
  ReceiptTexts texts = TextsOf(document, receipt, layout, sheet);
  std::string text;
  AppendHead(text, texts, layout.width);
  Table table(layout.width);
  table.Add(std::move(texts.head));
  for (std::vector<std::string>& row : texts.rows) table.Add(std::move(row));
  table.AppendTo(text);
  text += Rule('-', layout.width);
  AppendSums(text, texts.sums, layout.width);
  if (!texts.note.empty()) AppendWrapped(text, texts.note, layout.width);
  for (const std::string& words : texts.words) AppendWrapped(text, words, layout.width);
  text.push_back('\n');
  AppendUtf8(out, text);
}

void AppendDayTotal(std::string& out, const DayTotal& day, std::uint64_t left,
                    const Layout& layout) {
  std::string text = Rule('=', layout.width);
  text.append("ยอดรวมทั้งวัน / Day's total\n"_th);
  AppendSums(text, DayTexts(day, left, layout), layout.width);
  AppendUtf8(out, text);
}

}  // namespace kvshare::receipts
