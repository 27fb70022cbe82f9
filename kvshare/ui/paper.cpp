#include "kvshare/ui/paper.h"

#include "kvshare/ui/ondemand.h"

namespace kvshare {

TPaper& Paper() {
  static auto* const entry =
      LoadEntry<TPaperEntry>({"kvshare-paper", "kvshare_paper", "No printing here: "});
  return *entry(kPaperContract);
}

TSpooler& TPaperInterface::Spooler() {
  return Paper().Spooler();
}

TPrinter& TPaperInterface::Printer() {
  return Paper().DefaultPrinter();
}

std::unique_ptr<TPrinter> TPaperInterface::PdfPrinter(std::string_view fileName) {
  return Paper().PdfPrinter(fileName, kSheetA4);
}

}  // namespace kvshare
