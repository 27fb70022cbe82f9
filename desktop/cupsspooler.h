// The system's print spooler, CUPS.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/ui/printing.h"

namespace kvshare::desktop {

// A sheet and the margins that its printer leaves white, in hundredths of a millimetre.
struct Paper {
  int width = 21000;
  int height = 29700;
  int left = 635;
  int top = 1270;
  int right = 635;
  int bottom = 1270;
};

// The queues of the spooler that CUPS_SERVER names, else of this machine's. Nothing here waits for
// more than ten seconds, and nobody is asked for a password.
class CupsSpooler : public TSpooler {
 public:
  std::vector<std::string> Printers() override;  // none while the spooler is down
  // That of KVSHARE_PRINTER, whether it exists or not; the user's or the spooler's default; the
  // only one.
  std::string DefaultPrinter() override;
  // Ignores the case of a..z. The document goes to the printer byte for byte.
  std::unique_ptr<TPrinterHandle> Open(std::string_view printer) override;
  std::string Trouble() const override { return trouble_; }

  // The printer's default sheet; A4 where it names none.
  Paper PaperOf(std::string_view printer);

  // Throws EPrinter with the reason where a job for the printer would be refused: it is not there,
  // takes no jobs, or the spooler is down.
  void RequirePrinter(std::string_view printer);

  // A whole PDF document as a job, which the spooler makes ready for the printer. Throws EPrinter
  // with the reason; then there is no job.
  void PrintPdf(std::string_view printer, std::string_view title, std::string_view bytes);

 private:
  // What kept the paper from being known a moment ago, "" without: a spooler that was silent is not
  // waited for again.
  std::string FreshPaperTrouble() const;

  std::string trouble_;
  std::string paperTrouble_;
  std::chrono::steady_clock::time_point paperAsked_;
};

}  // namespace kvshare::desktop
