#include "desktop/paper.h"

#include "desktop/cupsspooler.h"
#include "desktop/pageprinter.h"

namespace kvshare::desktop {

namespace {

CupsSpooler& Cups() {
  static CupsSpooler spooler;
  return spooler;
}

}  // namespace

TSpooler& SystemSpooler() {
  return Cups();
}

TPrinter& SystemPrinter() {
  static SpoolerPrinter printer(Cups());
  return printer;
}

std::unique_ptr<TPrinter> MakePdfPrinter(std::string_view fileName) {
  return std::make_unique<PdfPrinter>(fileName);
}

}  // namespace kvshare::desktop
