#include "paper/rollprinter.h"

#include <algorithm>

#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "paper/rasterbytes.h"

namespace kvshare::paper {

namespace {

constexpr double kPointsAMillimetre = 72 / 25.4;
constexpr double kDotsAMillimetre = 8;
constexpr double kPointsADot = kPointsAMillimetre / kDotsAMillimetre;

struct RollRow {
  int dots;
  double millimetres;
};
constexpr RollRow kRolls[] = {{576, 80}, {384, 58}};

const RollRow& RowOf(TRoll roll) {
  return kRolls[static_cast<std::size_t>(roll)];
}

PageShape ShapeOf(TRoll roll, TSize size) {
  const double width = RowOf(roll).millimetres * kPointsAMillimetre;
  const double drawn = size.Width * kPointsADot;
  return {width, size.Height * kPointsADot, (width - drawn) / 2, 0, kPointsADot};
}

}  // namespace

RollPages::RollPages(TRoll roll, double scale, Inks inks)
    : roll_(roll), canvas_(kRollDotsPerInch, scale, inks) {}

TSize RollPages::NextSize() const {
  return {RowOf(roll_).dots, std::clamp(PageLength, 1, kLongest)};
}

TSize RollPages::PageSize() {
  return Printing() ? size_ : NextSize();
}

void RollPages::StartPage() {
  canvas_.DrawNothing();
  size_ = NextSize();
  canvas_.DrawOn(NewPage(size_), size_);
}

void RollPages::ThrowAway() noexcept {
  canvas_.DrawNothing();
  Drop();
}

RollPdf::RollPdf(std::string_view fileName, TRoll roll)
    : RollPages(roll, kPointsADot, Inks::All), target_(fileName) {}

void RollPdf::StartJob() {
  target_.Begin(Title);
  document_ = std::make_unique<PdfDocument>(
      Title, [this](std::string_view bytes) { target_.Write(bytes); });
  StartPage();
}

cairo_t* RollPdf::NewPage(TSize size) {
  return document_->BeginPage(ShapeOf(Roll(), size));
}

void RollPdf::FinishJob() {
  DrawNothing();
  document_->Finish();
  document_.reset();
  target_.Finish();
}

void RollPdf::Drop() noexcept {
  document_.reset();
  target_.Drop();
}

void PngFiles::Page(const DotPicture& page) {
  std::string name = fileName_;
  if (++pages_ > 1) {
    const std::string extension(ExtractFileExt(name));
    name.resize(name.size() - extension.size());
    name.append("-").append(std::to_string(pages_)).append(extension);
  }
  WriteFileBytes(name, PngOf(page));
}

void RasterBytes::Begin(std::string_view title) {
  target_->Begin(title);
  std::string bytes;
  AppendRollBegin(bytes, work_);
  target_->Write(bytes);
}

void RasterBytes::Page(const DotPicture& page) {
  std::string bytes;
  AppendRollPage(bytes, page, work_);
  target_->Write(bytes);
}

RollPictures::RollPictures(TRoll roll, std::unique_ptr<DotTarget> target)
    : RollPages(roll, 1, Inks::BlackOnly), target_(std::move(target)) {}

void RollPictures::StartJob() {
  target_->Begin(Title);
  StartPage();
}

cairo_t* RollPictures::NewPage(TSize size) {
  EndPage();
  image_.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.Width, size.Height));
  page_.reset(cairo_create(image_.get()));
  if (cairo_status(page_.get()) != CAIRO_STATUS_SUCCESS) {
    throw EPrinter("There is no memory for the page");
  }
  cairo_set_source_rgb(page_.get(), 1, 1, 1);
  cairo_paint(page_.get());
  return page_.get();
}

void RollPictures::EndPage() {
  if (!page_) return;
  page_.reset();
  target_->Page(DotsOf(image_.get()));
  image_.reset();
}

void RollPictures::FinishJob() {
  DrawNothing();
  EndPage();
  target_->Finish();
}

void RollPictures::Drop() noexcept {
  page_.reset();
  image_.reset();
  target_->Drop();
}

}  // namespace kvshare::paper
