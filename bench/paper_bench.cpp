// Pages: a receipt into PDF, and a picture on the recorder. They need the library kvshare-paper.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include "apps/receipts/receiptpages.h"
#include "apps/receipts/receiptroll.h"
#include "kvshare/platform/printbmp.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/paper.h"

namespace kvshare {
namespace {

using receipts::Document;

const std::string& File() {
  static const std::string file =
      (std::filesystem::temp_directory_path() / "kvshare-paper-bench.pdf").string();
  return file;
}

Document Invoice() {
  constexpr std::string_view kCustomer = "ร้านบ้านสวนวัสดุ"_th;
  Document document{"IV6911-0002", EncodeDate(2026, 11, 24), std::string(kCustomer), {}};
  constexpr std::string_view kItem = "ปากกาลูกลื่น สีน้ำเงิน 0.5 มม. (โหล)"_th;
  for (int i = 1; i <= 8; ++i) {
    document.lines.push_back({std::string(kItem), Currency::FromInt(i), 159.75_baht, {}, 7_baht});
  }
  return document;
}

void DrawReceipt(TPrinter& printer) {
  const Document document = Invoice();
  receipts::ReceiptPages pages(printer.Canvas(), printer.PageSize(), printer.PixelsPerInch(),
                               TextsOf(document, Calculate(document, {}), {}));
  printer.Printing() ? printer.NewPage() : printer.BeginDoc();
  pages.Draw(0);
}

// Goal: below 2 ms a page.
void ReceiptPage(benchmark::State& state) {
  const auto printer = Paper().PdfPrinter(File(), kSheetA4);
  DrawReceipt(*printer);
  for ([[maybe_unused]] auto step : state) DrawReceipt(*printer);
  printer->Abort();
}
BENCHMARK(ReceiptPage)->Unit(benchmark::kMillisecond);

// With the fonts and the file, which is flushed to the disk. Goal: below 20 ms.
void ReceiptFile(benchmark::State& state) {
  const auto printer = Paper().PdfPrinter(File(), kSheetA4);
  for ([[maybe_unused]] auto step : state) {
    DrawReceipt(*printer);
    printer->EndDoc();
  }
  std::filesystem::remove(File());
}
BENCHMARK(ReceiptFile)->Unit(benchmark::kMillisecond);

// The same document for a receipt printer: laid out, drawn in dots, as bytes. Goal: below 5 ms.
void ReceiptRollBytes(benchmark::State& state) {
  const auto printer = Paper().RollFilePrinter(File(), TRoll::Roll80, {});
  const Document document = Invoice();
  for ([[maybe_unused]] auto step : state) {
    receipts::ReceiptRoll roll(printer->Canvas(), 576, printer->PixelsPerInch(),
                               TextsOf(document, Calculate(document, {}), {}));
    printer->PageLength = roll.Height();
    printer->Printing() ? printer->NewPage() : printer->BeginDoc();
    roll.Draw();
  }
  printer->Abort();
}
BENCHMARK(ReceiptRollBytes)->Unit(benchmark::kMillisecond);

// A snapshot of the screen read and laid out; the page itself is the device's.
void PrintBmpFileRecorded(benchmark::State& state) {
  const std::string file = File() + ".bmp";
  const TPicture screen{1920, 1080, std::vector<TPixel>(std::size_t{1920} * 1080, {1, 2, 3})};
  std::ofstream(file, std::ios::binary) << BitmapFileBytes(screen);
  THeadlessInterface ui;
  const TUseInterface use(ui);
  for ([[maybe_unused]] auto step : state) {
    TPrintBitmap::PrintBmpFile(file, "Sales");
    ui.paper.jobs.clear();
  }
  std::filesystem::remove(file);
}
BENCHMARK(PrintBmpFileRecorded)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kvshare
