// Printers whose pages become a PDF document in memory, with its fonts in it.
#pragma once

#include <QByteArray>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/cupsspooler.h"
#include "desktop/pagecanvas.h"
#include "kvshare/ui/printer.h"

namespace kvshare::desktop {

// Device units of all pages, whatever the printer's own are: pages come out alike everywhere.
inline constexpr int kDotsPerInch = 600;

class PagePrinter : public TPrinter {
 public:
  PagePrinter();
  ~PagePrinter() override;

  TSize PageSize() override;
  TSize PixelsPerInch() override { return {kDotsPerInch, kDotsPerInch}; }
  TCanvas& Canvas() override { return canvas_; }

 protected:
  void StartJob() override;
  void StartPage() override;
  void FinishJob() override;
  void ThrowAway() noexcept override;

  // Throws EPrinter where no job may begin.
  virtual Paper PaperForJob() = 0;
  virtual Paper PaperNow() = 0;  // outside a job
  virtual void Deliver(std::string_view pdf) = 0;

 private:
  class Document;

  PageCanvas canvas_{kDotsPerInch};
  std::unique_ptr<Document> document_;  // while a job runs
};

class PdfPrinter : public PagePrinter {
 public:
  explicit PdfPrinter(std::string_view fileName) : fileName_(fileName) {}

 protected:
  Paper PaperForJob() override { return {}; }
  Paper PaperNow() override { return {}; }
  void Deliver(std::string_view pdf) override;

 private:
  std::string fileName_;
};

// The default printer of the spooler at the moment a job begins.
class SpoolerPrinter : public PagePrinter {
 public:
  explicit SpoolerPrinter(CupsSpooler& spooler) : spooler_(spooler) {}

 protected:
  Paper PaperForJob() override;
  Paper PaperNow() override;
  void Deliver(std::string_view pdf) override;

 private:
  using Clock = std::chrono::steady_clock;

  std::string RequireDefault();

  CupsSpooler& spooler_;
  std::string printer_;
  Paper paper_;
  Clock::time_point asked_;  // when printer_ and paper_ were found out
};

}  // namespace kvshare::desktop
