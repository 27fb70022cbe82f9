#include "paper/pageprinter.h"

#include <cmath>

namespace kvshare::paper {

namespace {

constexpr double kPointsAnInch = 72;
constexpr double kHundredthsAnInch = 2540;

int Dots(int hundredths) {
  return static_cast<int>(std::lround(hundredths * kDotsPerInch / kHundredthsAnInch));
}

double Points(int hundredths) {
  return hundredths * kPointsAnInch / kHundredthsAnInch;
}

TSize PrintableArea(const TSheet& sheet) {
  return {Dots(sheet.width - sheet.left - sheet.right),
          Dots(sheet.height - sheet.top - sheet.bottom)};
}

PageShape ShapeOf(const TSheet& sheet) {
  return {Points(sheet.width), Points(sheet.height), Points(sheet.left), Points(sheet.top),
          kPointsAnInch / kDotsPerInch};
}

}  // namespace

PagePrinter::PagePrinter() : canvas_(kDotsPerInch, kPointsAnInch / kDotsPerInch, Inks::All) {}

TSize PagePrinter::PageSize() {
  return PrintableArea(document_ ? sheet_ : SheetNow());
}

void PagePrinter::StartJob() {
  sheet_ = SheetForJob();
  Target().Begin(Title);
  document_ = std::make_unique<PdfDocument>(
      Title, [this](std::string_view bytes) { Target().Write(bytes); });
  StartPage();
}

void PagePrinter::StartPage() {
  canvas_.DrawOn(document_->BeginPage(ShapeOf(sheet_)), PrintableArea(sheet_));
}

void PagePrinter::FinishJob() {
  canvas_.DrawNothing();
  document_->Finish();
  document_.reset();
  Target().Finish();
}

void PagePrinter::ThrowAway() noexcept {
  canvas_.DrawNothing();
  document_.reset();
  Target().Drop();
}

std::string SpoolerPrinter::RequireName() {
  if (!name_.empty()) return name_;
  std::string printer = spooler_.DefaultPrinter();
  if (const std::string trouble = spooler_.Trouble(); !trouble.empty()) throw EPrinter(trouble);
  if (printer.empty()) throw EPrinter("There is no default printer currently selected");
  return printer;
}

void SpoolerPrinter::FindOut() {
  printer_ = RequireName();
  sheet_ = chosen_ ? *chosen_ : spooler_.SheetOf(printer_);
  asked_ = Clock::now();
}

TSheet SpoolerPrinter::SheetForJob() {
  const std::string printer = RequireName();
  spooler_.RequirePrinter(printer);
  FindOut();
  target_.Choose(printer_, chosen_ ? CupsSpooler::MediaOf(*chosen_) : "");
  return sheet_;
}

// Programs ask for the size again and again while they lay out a page.
TSheet SpoolerPrinter::SheetNow() {
  constexpr std::chrono::seconds kFresh{2};
  if (printer_.empty() || Clock::now() - asked_ > kFresh) FindOut();
  return sheet_;
}

}  // namespace kvshare::paper
