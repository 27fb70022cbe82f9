#include "apps/kvshare/day/dayoutput.h"

#include <utility>

#include "apps/receipts/json.h"

namespace kvshare::app {

void DayOutput::Report(const receipts::Problem& problem) {
  failed_ = failed_ || !problem.warning;
  progress_.Erase();
  err_.Buffer() += problem.Message();
  err_.EndLine();
}

void DayOutput::ReportDocument(const receipts::Document& document, std::string text, bool warning) {
  Report({document.row, 0, "", std::move(text), warning});
}

void DayOutput::Print(const receipts::Document& document, const receipts::Receipt& receipt,
                      const receipts::Layout& layout, const receipts::Sheet& sheet) {
  if (json_) {
    AppendJson(out_.Buffer(), document, receipt, layout.seller);
    out_.EndLine();
  } else {
    AppendReceipt(out_.Buffer(), document, receipt, layout, sheet);
    out_.EndBlock();
  }
}

void DayOutput::Finish() {
  progress_.Erase();
  out_.Flush();
  err_.Flush();
}

}  // namespace kvshare::app
