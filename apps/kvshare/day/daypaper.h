// A day's documents on paper, or in files of pages.
#pragma once

#include <memory>
#include <string>

#include "apps/kvshare/day/paperoptions.h"
#include "apps/receipts/receipttexts.h"
#include "kvshare/ui/printer.h"

namespace kvshare::app {

// Each document begins on a page of its own. A file, and a job of pages, appears whole with Finish,
// or not at all; a receipt printer gets its receipts one by one.
class DayPaper {
 public:
  // Throws EOSError where the library that draws pages is missing.
  explicit DayPaper(const PaperPlan& plan);

  // Throws EPrinter where no font has the letters, and where the printer refuses the job; for a
  // file that cannot be written std::runtime_error with its name.
  void Print(const receipts::Document& document, const receipts::Receipt& receipt,
             const receipts::Layout& layout, const receipts::Sheet& sheet);

  // False where there was no document: then there is no file and no job either. Throws as Print.
  bool Finish();

 private:
  void NewPage();
  void PrintPages(receipts::ReceiptTexts texts);
  void PrintRoll(TRollPrinter& roll, receipts::ReceiptTexts texts);
  template <typename Work>
  void Naming(Work work) const;

  std::string file_;  // UTF-8; "" for a printer
  std::unique_ptr<TPrinter> printer_;
};

}  // namespace kvshare::app
