// A printer without paper: what a page would show, as data, for tests and servers.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/ui/printer.h"

namespace kvshare {

// What was drawn, in the order of the calls, in device units from the top left of the printable
// area. A text has its font and the colour behind it as they were at the call.
struct TDrawnText {
  int x = 0;
  int y = 0;
  std::string text;
  TFont font;
  TPixel brush;
};
struct TDrawnPicture {
  TRect target;
  TPicture picture;
};
struct TDrawnRect {
  TRect target;
  TPixel brush;
};
using TDrawn = std::variant<TDrawnText, TDrawnPicture, TDrawnRect>;

struct TRecordedJob {
  std::string title;
  std::vector<std::vector<TDrawn>> pages;
  bool ended = false;  // false while it runs; a job that was thrown away is not kept
};

// Every letter of a font is half as wide as its cell is high; Thai marks above and below take no
// width.
class KVSHARE_API TRecordingPrinter : public TPrinter {
 public:
  TRecordingPrinter();
  ~TRecordingPrinter() override;

  // May be set before a job; what was recorded stays until it is taken away.
  TSize pageSize{4800, 6600};  // 8 by 11 inches
  TSize pixelsPerInch{600, 600};
  std::vector<TRecordedJob> jobs;

  TSize PageSize() override { return pageSize; }
  TSize PixelsPerInch() override { return pixelsPerInch; }
  TCanvas& Canvas() override;

 protected:
  void StartJob() override;
  void StartPage() override;
  void FinishJob() override;
  void ThrowAway() noexcept override;

 private:
  class RecordingCanvas;
  std::unique_ptr<RecordingCanvas> canvas_;
};

}  // namespace kvshare
