#include "kvshare/ui/recordingprinter.h"

#include <cstdlib>
#include <utility>

#include "kvshare/rtl/cp874.h"

namespace kvshare {

class TRecordingPrinter::RecordingCanvas : public TCanvas {
 public:
  explicit RecordingCanvas(TRecordingPrinter& printer) : printer_(printer) {}

  TSize TextExtent(std::string_view text) override {
    constexpr int kUsual = 100;
    const int height = Font.Height == 0 ? kUsual : std::abs(Font.Height);
    return {static_cast<int>(DisplayWidth(text)) * (height / 2), height};
  }
  void TextOut(int x, int y, std::string_view text) override {
    Record(TDrawnText{x, y, std::string(text), Font, Brush});
  }
  void StretchDraw(const TRect& target, const TPicture& picture) override {
    Record(TDrawnPicture{target, picture});
  }
  void FillRect(const TRect& target) override { Record(TDrawnRect{target, Brush}); }

 private:
  void Record(TDrawn drawn) {
    if (printer_.Printing()) printer_.jobs.back().pages.back().push_back(std::move(drawn));
  }

  TRecordingPrinter& printer_;
};

TRecordingPrinter::TRecordingPrinter() : canvas_(std::make_unique<RecordingCanvas>(*this)) {}

TRecordingPrinter::~TRecordingPrinter() = default;

TCanvas& TRecordingPrinter::Canvas() {
  return *canvas_;
}

void TRecordingPrinter::StartJob() {
  jobs.push_back({Title, {{}}});
}

void TRecordingPrinter::StartPage() {
  jobs.back().pages.emplace_back();
}

void TRecordingPrinter::FinishJob() {
  jobs.back().ended = true;
}

void TRecordingPrinter::ThrowAway() noexcept {
  if (!jobs.empty() && !jobs.back().ended) jobs.pop_back();
}

}  // namespace kvshare
