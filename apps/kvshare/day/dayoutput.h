// What a run over a day's documents writes.
#pragma once

#include "apps/kvshare/terminal/progress.h"
#include "apps/kvshare/terminal/stream.h"
#include "apps/receipts/calc.h"
#include "apps/receipts/dayreader.h"
#include "apps/receipts/plainreceipt.h"

namespace kvshare::app {

// Receipts on standard output, problems on standard error, and how far the run has come.
class DayOutput {
 public:
  // `receipts`: whether they stand on standard output, as the documents are taken.
  DayOutput(const Stdio& stdio, bool json, bool receipts)
      : out_(stdio.out, "standard output"),
        err_(stdio.err, "standard error"),
        progress_(stdio, "documents", receipts ? Progress::Lines::Shown : Progress::Lines::None),
        json_(json) {}

  void Report(const receipts::Problem& problem);
  // About a document as a whole; `text` (UTF-8) names it.
  void ReportDocument(const receipts::Document& document, std::string text, bool warning = false);

  void Print(const receipts::Document& document, const receipts::Receipt& receipt,
             const receipts::Layout& layout, const receipts::Sheet& sheet = {});

  void ShowProgress(std::uint64_t done) { progress_.Show(done); }

  // Writes all that stands behind the last document.
  void Finish();

  bool Json() const { return json_; }
  BlockWriter& Out() { return out_; }
  // Whether something more than a warning was reported.
  bool Failed() const { return failed_; }

 private:
  BlockWriter out_;
  BlockWriter err_;
  Progress progress_;
  bool json_;
  bool failed_ = false;
};

}  // namespace kvshare::app
