#include "desktop/pagecanvas.h"

#include <algorithm>
#include <cmath>

#include "desktop/toolkit.h"
#include "kvshare/ui/printer.h"

namespace kvshare::desktop {

namespace {

constexpr int kMostFonts = 64;

QColor ColourOf(TPixel pixel) {
  return {pixel.red, pixel.green, pixel.blue};
}

QRectF Area(const TRect& rect) {
  return {QPointF(rect.Left, rect.Top), QPointF(rect.Right, rect.Bottom)};
}

bool HasThaiLetter(std::string_view text) {
  return std::ranges::any_of(text, [](char c) { return static_cast<unsigned char>(c) > 0xA0; });
}

void RequireFontFor(std::string_view text) {
  static const bool thai = HasThaiFont();
  if (!thai && HasThaiLetter(text)) throw EPrinter("No installed font has Thai letters");
}

QFont FontOf(const TFont& asked, int pixels) {
  QFont font(Shown(asked.Name));
  font.setPixelSize(std::max(pixels, 1));
  font.setBold(asked.Bold);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(QFont::ForceOutline);
  return font;
}

// The height of a line of letters that are `pixels` high.
double CellOf(const TFont& asked, int pixels) {
  const QFontMetricsF metrics(FontOf(asked, pixels));
  return metrics.ascent() + metrics.descent();
}

// The letters' height for a line of that height: heights grow with sizes, all but evenly.
int PixelsForCell(const TFont& asked, int cell) {
  constexpr int kSample = 1000;
  const int near = static_cast<int>(cell * kSample / CellOf(asked, kSample));
  const auto distance = [&asked, cell](int pixels) {
    return std::abs(CellOf(asked, pixels) - cell);
  };
  int best = std::max(near - 1, 1);
  for (int pixels = best + 1; pixels <= near + 2; ++pixels) {
    if (distance(pixels) < distance(best)) best = pixels;
  }
  return best;
}

}  // namespace

PageCanvas::KnownFont PageCanvas::LookUp() const {
  constexpr int kUsualPoints = 10;
  constexpr int kPointsAnInch = 72;
  constexpr int kHighest = 1 << 20;  // higher ones are no letters on any paper
  const int height = std::clamp(Font.Height, -kHighest, kHighest);
  const int pixels = height > 0   ? PixelsForCell(Font, height)
                     : height < 0 ? -height
                                  : kUsualPoints * pixelsPerInch_ / kPointsAnInch;
  const QFont font = FontOf(Font, pixels);
  const QFontMetricsF metrics(font);
  const int cell =
      height > 0 ? height : static_cast<int>(std::lround(metrics.ascent() + metrics.descent()));
  return {Font, font, metrics, cell};
}

const PageCanvas::KnownFont& PageCanvas::CurrentFont() {
  const auto known =
      std::ranges::find_if(fonts_, [this](const KnownFont& font) { return font.asked == Font; });
  if (known != fonts_.end()) {
    fonts_.splice(fonts_.begin(), fonts_, known);
  } else {
    fonts_.push_front(LookUp());
    if (fonts_.size() > kMostFonts) fonts_.pop_back();
  }
  return fonts_.front();
}

int PageCanvas::WidthOf(const QString& text) {
  return static_cast<int>(std::lround(CurrentFont().metrics.horizontalAdvance(text)));
}

TSize PageCanvas::TextExtent(std::string_view text) {
  return {WidthOf(Shown(text)), CurrentFont().cell};
}

void PageCanvas::TextOut(int x, int y, std::string_view text) {
  RequireFontFor(text);
  if (painter_ == nullptr || text.empty()) return;
  const KnownFont& font = CurrentFont();
  const QString shown = Shown(text);
  painter_->fillRect(QRectF(x, y, WidthOf(shown), font.cell), ColourOf(Brush));
  painter_->setFont(font.font);
  painter_->setPen(Qt::black);
  painter_->drawText(QPointF(x, y + font.metrics.ascent()), shown);
}

void PageCanvas::StretchDraw(const TRect& target, const TPicture& picture) {
  if (painter_ == nullptr || Area(target).isEmpty() || picture.pixels.empty()) return;
  const QImage image(reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width,
                     picture.height, static_cast<qsizetype>(sizeof(TPixel)) * picture.width,
                     QImage::Format_BGR888);
  if (image.isNull()) throw EPrinter("The picture is too large to be printed");
  painter_->drawImage(Area(target), image);
}

void PageCanvas::FillRect(const TRect& target) {
  if (painter_ != nullptr) painter_->fillRect(Area(target), ColourOf(Brush));
}

}  // namespace kvshare::desktop
