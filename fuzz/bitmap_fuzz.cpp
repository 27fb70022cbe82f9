// Bitmap files of any bytes: what is read is a picture of its size, and reads back the same from
// the file that it is written to.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "kvshare/ui/bitmap.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kvshare;
  try {
    const TPicture picture = ReadBitmapFile({reinterpret_cast<const char*>(data), size});
    const auto pixels =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    if (picture.pixels.size() != pixels || pixels == 0) std::abort();
    if (ReadBitmapFile(BitmapFileBytes(picture)).pixels != picture.pixels) std::abort();
  } catch (const EInvalidGraphic&) {
    return 0;
  }
  return 0;
}
