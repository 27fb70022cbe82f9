// Printers whose pages become a PDF document, with its fonts in it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/ui/paper.h"
#include "paper/bytetarget.h"
#include "paper/pagecanvas.h"
#include "paper/pdfdocument.h"

namespace kvshare::paper {

// Device units of all sheets, whatever the printer's own are: pages come out alike everywhere.
inline constexpr int kDotsPerInch = 600;

class PagePrinter : public TPrinter {
 public:
  PagePrinter();

  TSize PageSize() override;
  TSize PixelsPerInch() override { return {kDotsPerInch, kDotsPerInch}; }
  TCanvas& Canvas() override { return canvas_; }

 protected:
  void StartJob() override;
  void StartPage() override;
  void FinishJob() override;
  void ThrowAway() noexcept override;

  // Throws EPrinter where no job may begin.
  virtual TSheet SheetForJob() = 0;
  virtual TSheet SheetNow() = 0;  // outside a job
  virtual ByteTarget& Target() = 0;

 private:
  PageCanvas canvas_;
  TSheet sheet_;                           // of the running job
  std::unique_ptr<PdfDocument> document_;  // while a job runs
};

class PdfPrinter : public PagePrinter {
 public:
  PdfPrinter(std::string_view fileName, const TSheet& sheet) : target_(fileName), sheet_(sheet) {}

 protected:
  TSheet SheetForJob() override { return sheet_; }
  TSheet SheetNow() override { return sheet_; }
  ByteTarget& Target() override { return target_; }

 private:
  FileTarget target_;
  TSheet sheet_;
};

// A printer of the spooler: the one of that name, or for "" the default one at the moment when a
// job begins.
class SpoolerPrinter : public PagePrinter {
 public:
  explicit SpoolerPrinter(CupsSpooler& spooler, std::string_view name = {},
                          std::optional<TSheet> sheet = std::nullopt)
      : spooler_(spooler), target_(spooler), name_(name), chosen_(sheet) {}

 protected:
  TSheet SheetForJob() override;
  TSheet SheetNow() override;
  ByteTarget& Target() override { return target_; }

 private:
  using Clock = std::chrono::steady_clock;

  std::string RequireName();
  void FindOut();

  CupsSpooler& spooler_;
  QueueTarget target_;
  std::string name_;
  std::optional<TSheet> chosen_;
  std::string printer_;
  TSheet sheet_;
  Clock::time_point asked_;  // when printer_ and sheet_ were found out
};

}  // namespace kvshare::paper
