// The printers of CUPS, and files of pages.
#pragma once

#include "kvshare/ui/paper.h"
#include "paper/cupsspooler.h"
#include "paper/pageprinter.h"

namespace kvshare::paper {

class SystemPaper : public TPaper {
 public:
  TSpooler& Spooler() override { return spooler_; }
  TPrinter& DefaultPrinter() override { return default_; }
  std::unique_ptr<TPrinter> QueuePrinter(std::string_view printer,
                                         std::optional<TSheet> sheet) override;
  std::unique_ptr<TPrinter> PdfPrinter(std::string_view fileName, const TSheet& sheet) override;
  std::unique_ptr<TRollPrinter> RollPdfPrinter(std::string_view fileName, TRoll roll) override;
  std::unique_ptr<TRollPrinter> RollPngPrinter(std::string_view fileName, TRoll roll) override;
  std::unique_ptr<TRollPrinter> RollFilePrinter(std::string_view fileName, TRoll roll,
                                                TRollWork work) override;
  std::unique_ptr<TRollPrinter> RollQueuePrinter(std::string_view printer, TRoll roll,
                                                 TRollWork work) override;
  TPicture ReadPng(std::string_view bytes) override;

 private:
  CupsSpooler spooler_;
  SpoolerPrinter default_{spooler_};
};

}  // namespace kvshare::paper
