// Pages as Pango sets and Cairo draws them: texts with fonts, pictures, areas.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kvshare/ui/canvas.h"
#include "paper/handles.h"

namespace kvshare::paper {

// What a device can show of a picture.
enum class Inks : std::uint8_t { All, BlackOnly };

// Draws while it has a page; measures texts all the time. Fonts and set texts are looked up once.
class PageCanvas : public TCanvas {
 public:
  // `scale`: units of the surface a device unit.
  PageCanvas(int pixelsPerInch, double scale, Inks inks);

  // On a fresh white page of that size in device units, until DrawNothing.
  void DrawOn(cairo_t* page, TSize size);
  void DrawNothing() { page_ = nullptr; }

  TSize TextExtent(std::string_view text) override;
  std::vector<std::size_t> LineBreaks(std::string_view text) override;
  void TextOut(int x, int y, std::string_view text) override;
  void StretchDraw(const TRect& target, const TPicture& picture) override;
  void FillRect(const TRect& target) override;

 private:
  struct SetText {
    Owned<PangoLayout> layout;
    int width;
  };
  struct KnownFont {
    TFont asked;
    Owned<PangoFontDescription> font;
    double ascent;
    int cell;  // height of a line
    std::unordered_map<std::string, SetText> texts;
  };

  KnownFont& CurrentFont();
  KnownFont LookUp() const;
  const SetText& Set(std::string_view text);
  SetText Lay(std::string_view text, const PangoFontDescription* font) const;
  bool StandsOn(const TRect& area, TPixel colour) const;
  void Paint(const TRect& area, TPixel colour);

  int pixelsPerInch_;
  Inks inks_;
  Owned<PangoContext> context_;
  Owned<PangoAttrList> features_;
  Owned<PangoContext> unscaled_;  // for the heights of fonts, which a scaled one gives wrongly
  cairo_t* page_ = nullptr;
  TSize size_;
  struct Mark {
    TRect area;
    std::optional<TPixel> fill;  // none where something else than one colour stands
  };
  std::vector<Mark> marks_;     // what the page has, in its order
  std::list<KnownFont> fonts_;  // the one in use first
};

}  // namespace kvshare::paper
