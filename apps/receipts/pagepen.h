// Texts, lines and areas on a page, in points of its printer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "apps/receipts/textlayout.h"
#include "kvshare/ui/canvas.h"

namespace kvshare::receipts {

class PagePen {
 public:
  PagePen(TCanvas& canvas, TSize pixelsPerInch) : canvas_(canvas), pixelsPerInch_(pixelsPerInch) {}

  // Device units of so many tenths of a point, across and down.
  int Across(int tenths) const { return tenths * pixelsPerInch_.Width / 720; }
  int Down(int tenths) const { return tenths * pixelsPerInch_.Height / 720; }

  // The letters' height in tenths of a point.
  void Use(int tenths, bool bold = false) { canvas_.Font = {"Loma", -Down(tenths), bold}; }
  void On(TPixel brush) { canvas_.Brush = brush; }

  int Width(std::string_view text) { return text.empty() ? 0 : canvas_.TextWidth(text); }
  int LineHeight() { return canvas_.TextHeight("X"); }

  // In lines of at most that width, broken between words.
  std::vector<std::string> Wrap(std::string_view text, int width) {
    return receipts::Wrap(text, width,
                          {[this](std::string_view part) { return Width(part); },
                           [this](std::string_view part) { return canvas_.LineBreaks(part); }});
  }

  void Left(int x, int y, std::string_view text) {
    if (!text.empty()) canvas_.TextOut(x, y, text);
  }
  void Right(int x, int y, std::string_view text) { Left(x - Width(text), y, text); }
  void Centre(int x, int y, std::string_view text) { Left(x - Width(text) / 2, y, text); }

  // The picture's size in device units, as large as both allow, in its own proportions.
  static TSize Fitted(const TPicture& picture, int width, int height) {
    const auto wide = static_cast<std::int64_t>(picture.width) * height;
    const auto high = static_cast<std::int64_t>(picture.height) * width;
    if (wide > high) height = static_cast<int>(high / picture.width);
    if (wide < high) width = static_cast<int>(wide / picture.height);
    return {width, height};
  }
  void Picture(int x, int y, TSize size, const TPicture& picture) {
    canvas_.StretchDraw({x, y, x + size.Width, y + size.Height}, picture);
  }

  void Fill(const TRect& area, TPixel colour) {
    canvas_.Brush = colour;
    canvas_.FillRect(area);
  }
  void Rule(int left, int right, int y, int tenths, TPixel colour = clBlack) {
    Fill({left, y, right, y + (Down(tenths) > 0 ? Down(tenths) : 1)}, colour);
    canvas_.Brush = clWhite;
  }

 private:
  TCanvas& canvas_;
  TSize pixelsPerInch_;
};

}  // namespace kvshare::receipts
