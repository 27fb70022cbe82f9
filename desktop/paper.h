// The system's printers and PDF files.
#pragma once

#include <memory>
#include <string_view>

#include "kvshare/ui/backend.h"

namespace kvshare::desktop {

// The system's print spooler. It lists nothing and refuses everything while it is down.
TSpooler& SystemSpooler();

// Pages for the default printer of the spooler.
TPrinter& SystemPrinter();

// Pages for a PDF file, named as the interface names files.
std::unique_ptr<TPrinter> MakePdfPrinter(std::string_view fileName);

// The console with a real printer.
class PaperInterface : public TConsoleInterface {
 public:
  TSpooler& Spooler() override { return SystemSpooler(); }
  TPrinter& Printer() override { return SystemPrinter(); }
  std::unique_ptr<TPrinter> PdfPrinter(std::string_view fileName) override {
    return MakePdfPrinter(fileName);
  }
};

}  // namespace kvshare::desktop
