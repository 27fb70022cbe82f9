// The print spooler as the library needs it: printers by name, and jobs of raw bytes.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/export.h"

namespace kvshare {

// A printer that was opened. The calls follow the spooler's own order: StartDoc, StartPage,
// Write..., EndPage, EndDoc; each is false when the spooler refuses it or it comes out of order.
// EndDoc ends an open page too. After a refused Write the document lacks a piece: EndDoc is refused
// and throws it away. Destroying the handle closes the printer; a document that was not ended is
// thrown away.
class KVSHARE_API TPrinterHandle {
 public:
  TPrinterHandle() = default;
  virtual ~TPrinterHandle() = default;
  TPrinterHandle(const TPrinterHandle&) = delete;
  TPrinterHandle& operator=(const TPrinterHandle&) = delete;

  virtual bool StartDoc(std::string_view title) = 0;
  virtual bool StartPage() = 0;
  virtual bool Write(std::string_view bytes) = 0;
  virtual bool EndPage() = 0;
  virtual bool EndDoc() = 0;

  // Why the last call was refused, in code page 874; "" where the printer does not tell.
  virtual std::string Trouble() const { return {}; }
};

// A printer that refuses what comes out of order, whatever its jobs become.
class TOrderedPrinterHandle : public TPrinterHandle {
 public:
  bool StartDoc(std::string_view title) final {
    if (inJob_) return false;
    inJob_ = BeginJob(title);
    return inJob_;
  }
  bool StartPage() final { return inJob_ && !std::exchange(inPage_, true); }
  bool Write(std::string_view bytes) final { return inPage_ && WriteJob(bytes); }
  bool EndPage() final { return std::exchange(inPage_, false); }
  bool EndDoc() final {
    inPage_ = false;
    return std::exchange(inJob_, false) && FinishJob();
  }

 private:
  // False where there is no job then.
  virtual bool BeginJob(std::string_view title) = 0;
  virtual bool WriteJob(std::string_view bytes) = 0;
  // The job is over, also where it is refused.
  virtual bool FinishJob() = 0;

  bool inJob_ = false;
  bool inPage_ = false;  // only while in a job
};

class KVSHARE_API TSpooler {
 public:
  TSpooler() = default;
  virtual ~TSpooler() = default;
  TSpooler(const TSpooler&) = delete;
  TSpooler& operator=(const TSpooler&) = delete;

  virtual std::vector<std::string> Printers() = 0;  // code page 874
  virtual std::string DefaultPrinter() = 0;         // "" when there is none
  virtual std::unique_ptr<TPrinterHandle> Open(std::string_view printer) = 0;  // nullptr: refused

  // Why the spooler could not answer the last call, in code page 874; "" where it answered, even
  // that there is no such printer.
  virtual std::string Trouble() const { return {}; }
};

// A spooler that keeps its jobs in a folder, for servers and for machines without a printer. Every
// folder in `spool` of os::HomeFolder() is a printer, unless its name begins with `.` or code page
// 874 cannot hold it. A job becomes a file in it, NNNNNN-TITLE.prn, numbered upwards across all
// processes, and appears there whole, on the disk, when the document ends; what a file name cannot
// hold is `_` in TITLE. The environment variable KVSHARE_PRINTER names the default printer, whether
// it exists or not; without it the first by name is the default. Open ignores the case of a..z.
KVSHARE_API std::unique_ptr<TSpooler> MakeFolderSpooler();

}  // namespace kvshare
