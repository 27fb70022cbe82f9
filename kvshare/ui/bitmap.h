// A picture in memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kvshare/export.h"

namespace kvshare {

struct TPixel {
  std::uint8_t blue = 0, green = 0, red = 0;
  bool operator==(const TPixel&) const = default;
};

struct TPicture {
  int width = 0;
  int height = 0;
  std::vector<TPixel> pixels;  // width * height, top row first
};

// The bytes of a Windows bitmap file: 24 bits a pixel, uncompressed, bottom row first. Throws
// ERangeError for a negative size, for pixels that are not width * height, and for a picture of
// more than the 4 GB that such a file can hold.
KVSHARE_API std::string BitmapFileBytes(const TPicture& picture);

}  // namespace kvshare
