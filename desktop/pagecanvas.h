// Pages as the toolkit paints them: texts with fonts, pictures, areas.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <list>

#include "kvshare/ui/canvas.h"

namespace kvshare::desktop {

// Draws by the painter while it has one; measures texts all the time. Fonts are looked up once.
class PageCanvas : public TCanvas {
 public:
  explicit PageCanvas(int pixelsPerInch) : pixelsPerInch_(pixelsPerInch) {}

  void SetPainter(QPainter* painter) { painter_ = painter; }

  TSize TextExtent(std::string_view text) override;
  void TextOut(int x, int y, std::string_view text) override;
  void StretchDraw(const TRect& target, const TPicture& picture) override;
  void FillRect(const TRect& target) override;

 private:
  struct KnownFont {
    TFont asked;
    QFont font;
    QFontMetricsF metrics;
    int cell;  // height of a line
  };

  const KnownFont& CurrentFont();
  KnownFont LookUp() const;
  int WidthOf(const QString& text);

  int pixelsPerInch_;
  QPainter* painter_ = nullptr;
  std::list<KnownFont> fonts_;  // the one in use first
};

}  // namespace kvshare::desktop
