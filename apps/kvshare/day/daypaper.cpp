#include "apps/kvshare/day/daypaper.h"

#include <utility>

#include "apps/kvshare/terminal/inputfile.h"
#include "apps/receipts/receiptpages.h"
#include "apps/receipts/receiptroll.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kTitle = "ใบเสร็จรับเงิน / Receipts"_th;

}  // namespace

DayPaper::DayPaper(const PaperPlan& plan)
    : file_(plan.IsFile() ? Cp874ToUtf8(plan.name) : ""), printer_(MakePrinter(plan)) {
  printer_->Title = kTitle;
}

// What goes wrong with a file names it; what goes wrong with a printer names the printer.
template <typename Work>
void DayPaper::Naming(Work work) const {
  file_.empty() ? work() : NamingFile(file_, work);
}

void DayPaper::NewPage() {
  Naming([this] { printer_->Printing() ? printer_->NewPage() : printer_->BeginDoc(); });
}

void DayPaper::Print(const receipts::Document& document, const receipts::Receipt& receipt,
                     const receipts::Layout& layout, const receipts::Sheet& sheet) {
  receipts::ReceiptTexts texts = TextsOf(document, receipt, layout, sheet);
  auto* const roll = dynamic_cast<TRollPrinter*>(printer_.get());
  roll != nullptr ? PrintRoll(*roll, std::move(texts)) : PrintPages(std::move(texts));
}

void DayPaper::PrintPages(receipts::ReceiptTexts texts) {
  receipts::ReceiptPages pages(printer_->Canvas(), printer_->PageSize(), printer_->PixelsPerInch(),
                               std::move(texts));
  for (std::size_t page = 0; page < pages.Count(); ++page) {
    NewPage();
    pages.Draw(page);
  }
}

void DayPaper::PrintRoll(TRollPrinter& roll, receipts::ReceiptTexts texts) {
  receipts::ReceiptRoll receipt(roll.Canvas(), roll.PageWidth(), roll.PixelsPerInch(),
                                std::move(texts));
  if (receipt.Height() > TRollPrinter::kLongest) {
    throw EPrinter("A receipt is longer than 4 metres; pages hold it");
  }
  roll.PageLength = receipt.Height();
  NewPage();
  receipt.Draw();
}

bool DayPaper::Finish() {
  if (!printer_->Printing()) return false;
  Naming([this] { printer_->EndDoc(); });
  return true;
}

}  // namespace kvshare::app
