#include "apps/kvshare/day/daypaper.h"

#include "apps/kvshare/terminal/inputfile.h"
#include "apps/kvshare/terminal/usage.h"
#include "apps/receipts/receiptpages.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/desktop.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kTitle = "ใบเสร็จรับเงิน / Receipts"_th;

}  // namespace

DayPaper::DayPaper(std::string_view fileName)
    : file_(fileName),
      printer_(Desktop(TDesktopUse::PaperOnly).PdfPrinter(UsageText("--pdf", fileName))) {
  printer_->Title = kTitle;
}

void DayPaper::Print(const receipts::Document& document, const receipts::Receipt& receipt,
                     const receipts::Layout& layout, const receipts::Sheet& sheet) {
  receipts::ReceiptPages pages(printer_->Canvas(), printer_->PageSize(), printer_->PixelsPerInch(),
                               TextsOf(document, receipt, layout, sheet));
  for (std::size_t page = 0; page < pages.Count(); ++page) {
    NamingFile(file_,
               [this] { printer_->Printing() ? printer_->NewPage() : printer_->BeginDoc(); });
    pages.Draw(page);
  }
}

bool DayPaper::Finish() {
  if (!printer_->Printing()) return false;
  NamingFile(file_, [this] { printer_->EndDoc(); });
  return true;
}

}  // namespace kvshare::app
