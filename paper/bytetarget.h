// Where the bytes of a job go.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/os/wholefile.h"
#include "kvshare/ui/printing.h"
#include "paper/cupsspooler.h"

namespace kvshare::paper {

// Begin, Write..., then Finish or Drop. What they throw ends the job, and Drop follows.
class ByteTarget {
 public:
  ByteTarget() = default;
  virtual ~ByteTarget() = default;
  ByteTarget(const ByteTarget&) = delete;
  ByteTarget& operator=(const ByteTarget&) = delete;

  virtual void Begin(std::string_view title) = 0;
  virtual void Write(std::string_view bytes) = 0;
  virtual void Finish() = 0;
  virtual void Drop() noexcept = 0;
};

// A file that appears whole with Finish. Throws EInOutError.
class FileTarget : public ByteTarget {
 public:
  explicit FileTarget(std::string_view fileName) : fileName_(fileName) {}

  void Begin(std::string_view /*title*/) override { file_.emplace(fileName_); }
  void Write(std::string_view bytes) override { file_->Write(bytes); }
  void Finish() override;
  void Drop() noexcept override { file_.reset(); }

 private:
  std::string fileName_;
  std::optional<os::WholeFile> file_;
};

// A PDF document for a queue, handed over as a whole. Throws EPrinter.
class QueueTarget : public ByteTarget {
 public:
  explicit QueueTarget(CupsSpooler& spooler) : spooler_(spooler) {}

  // Of the next job. `media` is a sheet's name of PWG 5101.1, "" for the printer's own.
  void Choose(std::string_view printer, std::string_view media);

  void Begin(std::string_view title) override;
  void Write(std::string_view bytes) override { bytes_ += bytes; }
  void Finish() override;
  void Drop() noexcept override { bytes_.clear(); }

 private:
  CupsSpooler& spooler_;
  std::string printer_, media_, title_;
  std::string bytes_;
};

// Bytes that a printer gets as they are, while they come. Throws EPrinter.
class RawQueueTarget : public ByteTarget {
 public:
  RawQueueTarget(CupsSpooler& spooler, std::string_view printer)
      : spooler_(spooler), printer_(printer) {}

  void Begin(std::string_view title) override;
  void Write(std::string_view bytes) override { Require(handle_->Write(bytes)); }
  void Finish() override;
  void Drop() noexcept override { handle_.reset(); }

 private:
  void Require(bool done) const;

  CupsSpooler& spooler_;
  std::string printer_;
  std::unique_ptr<TPrinterHandle> handle_;
};

}  // namespace kvshare::paper
