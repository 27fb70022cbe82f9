#include "paper/bytetarget.h"

#include "kvshare/ui/printer.h"

namespace kvshare::paper {

void FileTarget::Finish() {
  file_->Keep();
  file_.reset();
}

void QueueTarget::Choose(std::string_view printer, std::string_view media) {
  printer_ = printer;
  media_ = media;
}

void QueueTarget::Begin(std::string_view title) {
  title_ = title;
  bytes_.clear();
}

void QueueTarget::Finish() {
  spooler_.PrintPdf(printer_, {title_, media_}, bytes_);
  bytes_.clear();
}

void RawQueueTarget::Require(bool done) const {
  if (done) return;
  const std::string trouble = handle_->Trouble();
  throw RefusedJob(printer_, trouble.empty() ? "it refuses the bytes" : trouble);
}

void RawQueueTarget::Begin(std::string_view title) {
  spooler_.RequirePrinter(printer_);
  handle_ = spooler_.Open(printer_);
  if (!handle_) throw RefusedJob(printer_, spooler_.Trouble());
  Require(handle_->StartDoc(title) && handle_->StartPage());
}

void RawQueueTarget::Finish() {
  Require(handle_->EndPage() && handle_->EndDoc());
  handle_.reset();
}

}  // namespace kvshare::paper
