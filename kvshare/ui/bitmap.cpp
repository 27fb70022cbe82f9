#include "kvshare/ui/bitmap.h"

#include <cstddef>
#include <string_view>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/bitmapformat.h"

namespace kvshare {

namespace {

constexpr std::uint32_t kBitsPerPixel = 24;
static_assert(sizeof(TPixel) == kBitsPerPixel / 8, "a row of pixels is a row of the file");

void AppendLittleEndian(std::string& out, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
}

// A row's bytes, filled up to a multiple of 4. Fits: a width has 31 bits.
std::uint64_t RowSize(const TPicture& picture) {
  return (static_cast<std::uint64_t>(picture.width) * sizeof(TPixel) + 3) / 4 * 4;
}

void AppendHeaders(std::string& out, const TPicture& picture, std::uint32_t size) {
  constexpr std::uint32_t kBegin = kBitmapFileHeader + kBitmapInfoHeader;
  out += "BM";
  AppendLittleEndian(out, size, 4);
  AppendLittleEndian(out, 0, 4);
  AppendLittleEndian(out, kBegin, 4);

  AppendLittleEndian(out, kBitmapInfoHeader, 4);
  AppendLittleEndian(out, static_cast<std::uint32_t>(picture.width), 4);
  AppendLittleEndian(out, static_cast<std::uint32_t>(picture.height), 4);  // positive: bottom first
  AppendLittleEndian(out, 1, 2);
  AppendLittleEndian(out, kBitsPerPixel, 2);
  AppendLittleEndian(out, 0, 4);  // not compressed
  AppendLittleEndian(out, size - kBegin, 4);
  out.append(16, '\0');  // no resolution, no palette
}

}  // namespace

std::string BitmapFileBytes(const TPicture& picture) {
  if (picture.width < 0 || picture.height < 0) throw ERangeError();
  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  const std::uint64_t size = kBitmapFileHeader + kBitmapInfoHeader + RowSize(picture) * height;
  if (picture.pixels.size() != width * height || size > UINT32_MAX) throw ERangeError();

  std::string bytes;
  bytes.reserve(size);
  AppendHeaders(bytes, picture, static_cast<std::uint32_t>(size));
  const std::string_view rows(reinterpret_cast<const char*>(picture.pixels.data()),
                              picture.pixels.size() * sizeof(TPixel));
  const std::size_t row = width * sizeof(TPixel);
  for (std::size_t y = height; y-- > 0;) {
    bytes.append(rows.substr(y * row, row)).append(RowSize(picture) - row, '\0');
  }
  return bytes;
}

}  // namespace kvshare
