// A PDF document under way, with its fonts in it.
#pragma once

#include <exception>
#include <functional>
#include <string>
#include <string_view>

#include "paper/handles.h"

namespace kvshare::paper {

// In points.
struct PageShape {
  double width, height;  // of the paper
  double left, top;      // of what is drawn
  double scale;          // points a device unit
};

class PdfDocument {
 public:
  // Takes the bytes as they come; what it throws comes out of BeginPage or Finish.
  using Sink = std::function<void(std::string_view)>;

  // `title` is code page 874.
  PdfDocument(std::string_view title, Sink sink);
  ~PdfDocument();
  PdfDocument(const PdfDocument&) = delete;
  PdfDocument& operator=(const PdfDocument&) = delete;

  // Where the next page is drawn, in device units, until the one behind it begins.
  cairo_t* BeginPage(const PageShape& shape);
  void Finish();

 private:
  static cairo_status_t Take(void* document, const unsigned char* bytes,
                             unsigned int size) noexcept;
  void EndPage();
  void Check(cairo_status_t status) const;

  Sink sink_;
  std::exception_ptr failure_;
  bool dropped_ = false;
  Surface surface_;
  Context page_;
};

}  // namespace kvshare::paper
