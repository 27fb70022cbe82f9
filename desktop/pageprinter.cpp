#include "desktop/pageprinter.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <cmath>

#include "desktop/toolkit.h"
#include "kvshare/rtl/filebytes.h"

namespace kvshare::desktop {

namespace {

double Millimetres(int hundredths) {
  return hundredths / 100.0;
}

int Dots(int hundredths) {
  constexpr double kMillimetresAnInch = 25.4;
  return static_cast<int>(std::lround(Millimetres(hundredths) * kDotsPerInch / kMillimetresAnInch));
}

TSize PrintableArea(const Paper& paper) {
  return {Dots(paper.width - paper.left - paper.right),
          Dots(paper.height - paper.top - paper.bottom)};
}

QPageLayout LayoutOf(const Paper& paper) {
  const QSizeF size(Millimetres(paper.width), Millimetres(paper.height));
  const QMarginsF margins(Millimetres(paper.left), Millimetres(paper.top), Millimetres(paper.right),
                          Millimetres(paper.bottom));
  return {QPageSize(size, QPageSize::Millimeter), QPageLayout::Portrait, margins,
          QPageLayout::Millimeter};
}

}  // namespace

class PagePrinter::Document {
 public:
  Document(const Paper& paper, const std::string& title)
      : size_(PrintableArea(paper)), writer_(&bytes_) {
    bytes_.open(QIODevice::WriteOnly);
    writer_.setResolution(kDotsPerInch);
    writer_.setPageLayout(LayoutOf(paper));
    writer_.setTitle(Shown(title));
    writer_.setCreator("KvShare");
    if (!painter_.begin(&writer_)) throw EPrinter("No page can be begun");
    // Pictures as they are, without the marks of a lossy compression.
    painter_.setRenderHint(QPainter::LosslessImageRendering);
  }

  TSize Size() const { return size_; }
  QPainter* Painter() { return &painter_; }
  void NewPage() {
    if (!writer_.newPage()) throw EPrinter("No further page can be begun");
  }
  std::string_view Finish() {
    if (!painter_.end()) throw EPrinter("The pages cannot be ended");
    return {bytes_.data().constData(), static_cast<std::size_t>(bytes_.data().size())};
  }

 private:
  TSize size_;
  QBuffer bytes_;
  QPdfWriter writer_;
  QPainter painter_;
};

PagePrinter::PagePrinter() = default;
PagePrinter::~PagePrinter() = default;

TSize PagePrinter::PageSize() {
  return document_ ? document_->Size() : PrintableArea(PaperNow());
}

void PagePrinter::StartJob() {
  document_ = std::make_unique<Document>(PaperForJob(), Title);
  canvas_.SetPainter(document_->Painter());
}

void PagePrinter::StartPage() {
  document_->NewPage();
}

void PagePrinter::FinishJob() {
  canvas_.SetPainter(nullptr);
  Deliver(document_->Finish());
  document_.reset();
}

void PagePrinter::ThrowAway() noexcept {
  canvas_.SetPainter(nullptr);
  document_.reset();
}

void PdfPrinter::Deliver(std::string_view pdf) {
  WriteFileBytes(fileName_, pdf);
}

std::string SpoolerPrinter::RequireDefault() {
  std::string printer = spooler_.DefaultPrinter();
  if (const std::string trouble = spooler_.Trouble(); !trouble.empty()) throw EPrinter(trouble);
  if (printer.empty()) throw EPrinter("There is no default printer currently selected");
  return printer;
}

Paper SpoolerPrinter::PaperForJob() {
  printer_ = RequireDefault();
  spooler_.RequirePrinter(printer_);
  paper_ = spooler_.PaperOf(printer_);
  asked_ = Clock::now();
  return paper_;
}

// Programs ask for the size again and again while they lay out a page.
Paper SpoolerPrinter::PaperNow() {
  constexpr std::chrono::seconds kFresh{2};
  if (printer_.empty() || Clock::now() - asked_ > kFresh) {
    printer_ = RequireDefault();
    paper_ = spooler_.PaperOf(printer_);
    asked_ = Clock::now();
  }
  return paper_;
}

void SpoolerPrinter::Deliver(std::string_view pdf) {
  spooler_.PrintPdf(printer_, Title, pdf);
}

}  // namespace kvshare::desktop
