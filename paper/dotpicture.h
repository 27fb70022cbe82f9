// Pictures of black dots, as receipt printers burn them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/ui/bitmap.h"
#include "paper/handles.h"

namespace kvshare::paper {

// Rows from the top, each padded to whole bytes; the highest bit is the leftmost dot, 1 is black.
struct DotPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bits;

  std::size_t BytesARow() const { return (static_cast<std::size_t>(width) + 7) / 8; }
  std::span<const std::uint8_t> Rows(int first, int count) const {
    return std::span(bits).subspan(static_cast<std::size_t>(first) * BytesARow(),
                                   static_cast<std::size_t>(count) * BytesARow());
  }
};

// What of an image is darker than half.
DotPicture DotsOf(cairo_surface_t* image);

// The bytes of a PNG file, grey. Throws EPrinter.
std::string PngOf(const DotPicture& picture);

// The picture of a PNG file, on white. Throws EInvalidGraphic for what is none, and for more than
// `mostSide` pixels to a side.
TPicture PictureOfPng(std::string_view bytes, int mostSide);

}  // namespace kvshare::paper
