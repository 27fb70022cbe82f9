// A picture in memory, and the Windows bitmap files that it comes from and goes to.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/exceptions.h"

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

// What is no picture, or one that cannot be drawn.
class KVSHARE_API EInvalidGraphic : public Exception {
 public:
  using Exception::Exception;
  ~EInvalidGraphic() override;
};

// The bytes of a Windows bitmap file: 24 bits a pixel, uncompressed, bottom row first. Throws
// ERangeError for a negative size, for pixels that are not width * height, and for a picture of
// more than the 4 GB that such a file can hold.
KVSHARE_API std::string BitmapFileBytes(const TPicture& picture);

// The picture of a Windows bitmap file: headers of 12, 40, 52, 56, 64, 108 and 124 bytes; 1, 4 and
// 8 bits with a palette, 16, 24 and 32 bits, 16 and 32 also with masks of their own; uncompressed,
// RLE8 and RLE4; top or bottom row first. Colours of other depths are brought to 8 bits each, to
// the nearest; the fourth byte of 32 bits and any profile are passed over. What is decided here:
//
//   colour past the palette's end      black
//   palette longer than the depth      the rest is passed over
//   pixels beyond a compressed row,
//   or beyond the last row             left out
//   pixels that RLE passes over        the palette's first colour
//   RLE that ends without its end mark the picture, if it has been begun in its last row
//
// Throws EInvalidGraphic `Bitmap image is not valid` for everything else: another compression, no
// width or height, pixels that begin inside the headers or end behind the file, masks that overlap
// or have gaps. A number in the file never asks for more memory than 24 times the file's size; of
// RLE, whose few bytes may stand for many pixels, a picture has at most 256 pixels for each byte
// of the file, or 2048 x 2048.
KVSHARE_API TPicture ReadBitmapFile(std::string_view bytes);

}  // namespace kvshare
