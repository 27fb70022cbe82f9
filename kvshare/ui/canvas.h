// What a page is drawn on, in the device's own units.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/ui/bitmap.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

// Right and Bottom lie behind it.
struct TRect {
  int Left = 0;
  int Top = 0;
  int Right = 0;
  int Bottom = 0;
  bool operator==(const TRect&) const = default;
};

struct TFont {
  std::string Name = "Arial";  // code page 874; a device without it takes one like it
  int Height = 0;  // > 0 the cell's, leading included; < 0 the characters'; 0 the device's usual
  bool Bold = false;
  bool operator==(const TFont&) const = default;
};

inline constexpr TPixel clBlack{};
inline constexpr TPixel clWhite{255, 255, 255};

// Texts are code page 874; they and pictures may run past the page's edges, and what lies there is
// not seen. Coordinates count from the printable area's top left, to the right and down.
class KVSHARE_API TCanvas {
 public:
  TCanvas() = default;
  virtual ~TCanvas() = default;
  TCanvas(const TCanvas&) = delete;
  TCanvas& operator=(const TCanvas&) = delete;

  TFont Font;
  TPixel Brush = clWhite;  // behind texts, and what FillRect paints

  // How wide the text is, as the sum of its letters' advances, and how high a line of the font is.
  virtual TSize TextExtent(std::string_view text) = 0;
  int TextWidth(std::string_view text) { return TextExtent(text).Width; }
  int TextHeight(std::string_view text) { return TextExtent(text).Height; }

  // Where a line of the text may be broken: the places of the letters that may begin a line, in
  // their order, the first letter left out. Behind blanks; a device that knows Thai adds the places
  // between its words.
  virtual std::vector<std::size_t> LineBreaks(std::string_view text);

  // One line in black, the cell's top left at x, y; the cell is filled with the brush before.
  // Throws EPrinter where no font has its letters.
  virtual void TextOut(int x, int y, std::string_view text) = 0;

  // The whole picture stretched into the rectangle; one of no size draws nothing.
  virtual void StretchDraw(const TRect& target, const TPicture& picture) = 0;

  virtual void FillRect(const TRect& target) = 0;
};

}  // namespace kvshare
