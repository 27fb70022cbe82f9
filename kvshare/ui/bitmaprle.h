// The runs of a compressed Windows bitmap.
// Internal header.
#pragma once

#include <array>
#include <string_view>

#include "kvshare/ui/bitmap.h"

namespace kvshare {

using BitmapPalette = std::array<TPixel, 256>;

// Draws the runs, of 8 or 4 bits a pixel, on a picture that has its pixels; those that lie outside
// are left out. False where the runs end within a code, or below the top row without the end mark.
bool DecodeRle(std::string_view runs, unsigned bits, const BitmapPalette& palette,
               TPicture& picture);

}  // namespace kvshare
