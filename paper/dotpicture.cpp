#include "paper/dotpicture.h"

#include <png.h>

#include "kvshare/rtl/format.h"
#include "kvshare/ui/printer.h"

namespace kvshare::paper {

namespace {

// A picture that libpng reads or writes.
class PngImage {
 public:
  PngImage() { image_.version = PNG_IMAGE_VERSION; }
  ~PngImage() { png_image_free(&image_); }
  PngImage(const PngImage&) = delete;
  PngImage& operator=(const PngImage&) = delete;

  png_image* operator->() { return &image_; }
  png_image* Get() { return &image_; }

 private:
  png_image image_{};
};

std::vector<std::uint8_t> GreysOf(const DotPicture& picture) {
  std::vector<std::uint8_t> greys;
  greys.reserve(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
  for (int y = 0; y < picture.height; ++y) {
    const auto row = picture.Rows(y, 1);
    for (int x = 0; x < picture.width; ++x) {
      const unsigned bit = row[static_cast<std::size_t>(x) / 8] >> (7 - x % 8) & 1u;
      greys.push_back(bit != 0 ? 0 : 255);
    }
  }
  return greys;
}

}  // namespace

DotPicture DotsOf(cairo_surface_t* image) {
  constexpr std::uint32_t kHalf = 128;
  cairo_surface_flush(image);
  DotPicture dots{cairo_image_surface_get_width(image), cairo_image_surface_get_height(image), {}};
  dots.bits.resize(dots.BytesARow() * static_cast<std::size_t>(dots.height));
  const unsigned char* bytes = cairo_image_surface_get_data(image);
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(image);
  for (int y = 0; y < dots.height; ++y, bytes += stride) {
    const auto* pixels = reinterpret_cast<const std::uint32_t*>(bytes);
    std::uint8_t* const row = &dots.bits[static_cast<std::size_t>(y) * dots.BytesARow()];
    for (int x = 0; x < dots.width; ++x) {
      // Green stands for the brightness: what is drawn here is grey.
      const bool black = (pixels[x] >> 8 & 0xFF) < kHalf;
      if (black) row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | 0x80u >> (x % 8));
    }
  }
  return dots;
}

std::string PngOf(const DotPicture& picture) {
  const std::vector<std::uint8_t> greys = GreysOf(picture);
  PngImage image;
  image->width = static_cast<png_uint_32>(picture.width);
  image->height = static_cast<png_uint_32>(picture.height);
  image->format = PNG_FORMAT_GRAY;
  constexpr int kAsTheyAre = 0;  // no conversion of 16 bits
  std::string bytes(PNG_IMAGE_PNG_SIZE_MAX(*image.Get()), '\0');
  png_alloc_size_t size = bytes.size();
  if (png_image_write_to_memory(image.Get(), bytes.data(), &size, kAsTheyAre, greys.data(), 0,
                                nullptr) == 0) {
    throw EPrinter(std::string("The picture cannot be written: ") + image->message);
  }
  bytes.resize(size);
  return bytes;
}

TPicture PictureOfPng(std::string_view bytes, int mostSide) {
  PngImage image;
  if (png_image_begin_read_from_memory(image.Get(), bytes.data(), bytes.size()) == 0) {
    throw EInvalidGraphic("It is no PNG picture");
  }
  const auto most = static_cast<png_uint_32>(mostSide);
  if (image->width > most || image->height > most) {
    throw EInvalidGraphic(Format("The picture has %d x %d pixels, and at most %d to a side fit",
                                 {static_cast<std::int64_t>(image->width),
                                  static_cast<std::int64_t>(image->height), mostSide}));
  }
  image->format = PNG_FORMAT_BGR;
  TPicture picture{static_cast<int>(image->width), static_cast<int>(image->height), {}};
  picture.pixels.resize(std::size_t{image->width} * image->height);
  const png_color white{255, 255, 255};
  if (png_image_finish_read(image.Get(), &white, picture.pixels.data(), 0, nullptr) == 0) {
    throw EInvalidGraphic("The PNG picture is damaged");
  }
  return picture;
}

}  // namespace kvshare::paper
