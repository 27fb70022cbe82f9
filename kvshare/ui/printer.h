// Pages on paper. How bytes reach a printer as they are stands in printing.h.
#pragma once

#include <memory>
#include <string>

#include "kvshare/export.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/canvas.h"

namespace kvshare {

class KVSHARE_API EPrinter : public Exception {
 public:
  using Exception::Exception;
  ~EPrinter() override;
};

// A printer that pages are drawn on. A job runs from BeginDoc to EndDoc and has a page at least.
// Destroying the printer throws a job away that was not ended.
class KVSHARE_API TPrinter {
 public:
  TPrinter() = default;
  virtual ~TPrinter() = default;
  TPrinter(const TPrinter&) = delete;
  TPrinter& operator=(const TPrinter&) = delete;

  std::string Title;  // of the next job, code page 874

  // Starts a job and its first page. Throws EPrinter `Printing in progress`, `There is no default
  // printer currently selected`, or what the device says; then no job is begun.
  void BeginDoc();
  // Ends the job and hands it over. Throws EPrinter `Printer is not currently printing`, or what
  // refuses the job, which is thrown away then.
  void EndDoc();
  // The job is thrown away. Throws EPrinter `Printer is not currently printing`.
  void Abort();
  void NewPage();  // throws as Abort does
  bool Printing() const { return printing_; }
  int PageNumber() const { return page_; }  // from 1; 0 without a job

  // The printable area in device units, and how many of them are an inch. Throws EPrinter `There is
  // no default printer currently selected`.
  virtual TSize PageSize() = 0;
  virtual TSize PixelsPerInch() = 0;
  int PageWidth() { return PageSize().Width; }
  int PageHeight() { return PageSize().Height; }

  // For the page of the running job. Outside a job it measures texts and draws nothing.
  virtual TCanvas& Canvas() = 0;

 protected:
  // In this order; what they throw ends the job, and ThrowAway follows.
  virtual void StartJob() = 0;   // with its first page
  virtual void StartPage() = 0;  // the next page
  virtual void FinishJob() = 0;
  virtual void ThrowAway() noexcept = 0;

 private:
  void RequireJob() const;
  template <typename Step>
  void EndOnError(Step step);

  bool printing_ = false;
  int page_ = 0;
};

// The back end's printer: the system's default one. One without printers throws at BeginDoc.
KVSHARE_API TPrinter& Printer();

}  // namespace kvshare
