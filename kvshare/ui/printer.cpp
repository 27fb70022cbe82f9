#include "kvshare/ui/printer.h"

#include "kvshare/ui/backend.h"

namespace kvshare {

EPrinter::~EPrinter() = default;

void TPrinter::RequireJob() const {
  if (!printing_) throw EPrinter("Printer is not currently printing");
}

template <typename Step>
void TPrinter::EndOnError(Step step) {
  try {
    step();
  } catch (...) {
    printing_ = false;
    page_ = 0;
    ThrowAway();
    throw;
  }
}

void TPrinter::BeginDoc() {
  if (printing_) throw EPrinter("Printing in progress");
  EndOnError([this] { StartJob(); });
  printing_ = true;
  page_ = 1;
}

void TPrinter::NewPage() {
  RequireJob();
  EndOnError([this] { StartPage(); });
  ++page_;
}

void TPrinter::EndDoc() {
  RequireJob();
  EndOnError([this] { FinishJob(); });
  printing_ = false;
  page_ = 0;
}

void TPrinter::Abort() {
  RequireJob();
  printing_ = false;
  page_ = 0;
  ThrowAway();
}

TPrinter& Printer() {
  return UserInterface().Printer();
}

}  // namespace kvshare
