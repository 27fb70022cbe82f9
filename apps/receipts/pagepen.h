// Texts, lines and areas on a page, in points of its printer.
#pragma once

#include <string_view>

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

  void Left(int x, int y, std::string_view text) {
    if (!text.empty()) canvas_.TextOut(x, y, text);
  }
  void Right(int x, int y, std::string_view text) { Left(x - Width(text), y, text); }
  void Centre(int x, int y, std::string_view text) { Left(x - Width(text) / 2, y, text); }

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
