// The system's print spooler, CUPS.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/ui/paper.h"
#include "kvshare/ui/printer.h"

namespace kvshare::paper {

// What a job says of itself.
struct JobTicket {
  std::string title;  // code page 874
  std::string media;  // a sheet's name, or "" for the printer's own
};

// Why a printer takes no job.
EPrinter RefusedJob(std::string_view printer, std::string_view reason);

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
  TSheet SheetOf(std::string_view printer);

  // Throws EPrinter with the reason where a job for the printer would be refused: it is not there,
  // takes no jobs, or the spooler is down.
  void RequirePrinter(std::string_view printer);

  // A sheet's name of PWG 5101.1, as jobs ask for it; "" for one that has none.
  static std::string MediaOf(const TSheet& sheet);

  // A whole PDF document as a job, which the spooler makes ready for the printer. Throws EPrinter
  // with the reason; then there is no job.
  void PrintPdf(std::string_view printer, const JobTicket& ticket, std::string_view bytes);

 private:
  // What kept the paper from being known a moment ago, "" without: a spooler that was silent is not
  // waited for again.
  std::string FreshPaperTrouble() const;

  std::string trouble_;
  std::string paperTrouble_;
  std::chrono::steady_clock::time_point paperAsked_;
};

}  // namespace kvshare::paper
