#include "paper/pdfdocument.h"

#include <cairo-pdf.h>

#include <utility>

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/printer.h"

namespace kvshare::paper {

PdfDocument::PdfDocument(std::string_view title, Sink sink)
    : sink_(std::move(sink)),
      surface_(cairo_pdf_surface_create_for_stream(&PdfDocument::Take, this, 1, 1)) {
  cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_TITLE,
                                 Cp874ToUtf8Lossy(title).c_str());
  cairo_pdf_surface_set_metadata(surface_.get(), CAIRO_PDF_METADATA_CREATOR, "KvShare");
}

// The library writes the rest of what is thrown away, too.
PdfDocument::~PdfDocument() {
  dropped_ = true;
}

cairo_t* PdfDocument::BeginPage(const PageShape& shape) {
  if (page_) EndPage();
  cairo_pdf_surface_set_size(surface_.get(), shape.width, shape.height);
  page_.reset(cairo_create(surface_.get()));
  cairo_translate(page_.get(), shape.left, shape.top);
  cairo_scale(page_.get(), shape.scale, shape.scale);
  Check(cairo_status(page_.get()));
  return page_.get();
}

// Also a page that nothing stands on.
void PdfDocument::EndPage() {
  cairo_show_page(page_.get());
  Check(cairo_status(page_.get()));
  page_.reset();
}

void PdfDocument::Finish() {
  EndPage();
  cairo_surface_finish(surface_.get());
  Check(cairo_surface_status(surface_.get()));
}

// NOLINTNEXTLINE(bugprone-exception-escape): what the sink throws is kept
cairo_status_t PdfDocument::Take(void* document, const unsigned char* bytes,
                                 unsigned int size) noexcept {
  auto& self = *static_cast<PdfDocument*>(document);
  if (self.dropped_) return CAIRO_STATUS_SUCCESS;
  try {
    self.sink_({reinterpret_cast<const char*>(bytes), size});
    return CAIRO_STATUS_SUCCESS;
  } catch (...) {
    self.failure_ = std::current_exception();
    return CAIRO_STATUS_WRITE_ERROR;
  }
}

void PdfDocument::Check(cairo_status_t status) const {
  if (failure_) std::rethrow_exception(failure_);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw EPrinter(std::string("The page cannot be drawn: ") + cairo_status_to_string(status));
  }
}

}  // namespace kvshare::paper
