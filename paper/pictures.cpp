#include "paper/pictures.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "kvshare/ui/printer.h"

namespace kvshare::paper {

namespace {

constexpr int kWhite = 255;

// A surface's row of pixels, each 0xRRGGBB.
std::uint32_t* Row(cairo_surface_t* image, int y) {
  unsigned char* const bytes = cairo_image_surface_get_data(image);
  return reinterpret_cast<std::uint32_t*>(bytes + static_cast<std::ptrdiff_t>(y) *
                                                      cairo_image_surface_get_stride(image));
}

Surface MakeImage(int width, int height) {
  Surface image(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
  if (cairo_surface_status(image.get()) != CAIRO_STATUS_SUCCESS) {
    throw EPrinter("The picture is too large to be printed");
  }
  return image;
}

Surface ImageOf(const TPicture& picture) {
  Surface image = MakeImage(picture.width, picture.height);
  cairo_surface_flush(image.get());
  auto pixel = picture.pixels.begin();
  for (int y = 0; y < picture.height; ++y) {
    std::uint32_t* const row = Row(image.get(), y);
    std::transform(pixel, pixel + picture.width, row, [](TPixel p) {
      return std::uint32_t{p.red} << 16 | std::uint32_t{p.green} << 8 | p.blue;
    });
    pixel += picture.width;
  }
  cairo_surface_mark_dirty(image.get());
  return image;
}

// Rec. 601, in whole numbers.
int GreyOf(std::uint32_t pixel) {
  const int red = static_cast<int>(pixel >> 16 & 0xFF);
  const int green = static_cast<int>(pixel >> 8 & 0xFF);
  const int blue = static_cast<int>(pixel & 0xFF);
  return (299 * red + 587 * green + 114 * blue + 500) / 1000;
}

void Dither(cairo_surface_t* image) {
  constexpr std::uint32_t kBlackPixel = 0, kWhitePixel = 0xFFFFFF;
  const int width = cairo_image_surface_get_width(image);
  const int height = cairo_image_surface_get_height(image);
  cairo_surface_flush(image);
  // The errors of this row and of the next, in sixteenths, with a place more at both ends.
  std::vector<int> here(static_cast<std::size_t>(width) + 2), below(here.size());
  for (int y = 0; y < height; ++y) {
    std::uint32_t* const row = Row(image, y);
    for (int x = 0; x < width; ++x) {
      const auto at = static_cast<std::size_t>(x) + 1;
      const int grey = GreyOf(row[x]) + here[at] / 16;
      const bool white = grey > kWhite / 2;
      row[x] = white ? kWhitePixel : kBlackPixel;
      const int error = grey - (white ? kWhite : 0);
      here[at + 1] += 7 * error;
      below[at - 1] += 3 * error;
      below[at] += 5 * error;
      below[at + 1] += error;
    }
    std::swap(here, below);
    std::ranges::fill(below, 0);
  }
  cairo_surface_mark_dirty(image);
}

}  // namespace

void DrawPicture(cairo_t* page, const TRect& target, const TPicture& picture) {
  const Surface image = ImageOf(picture);
  const double across = (static_cast<double>(target.Right) - target.Left) / picture.width;
  const double down = (static_cast<double>(target.Bottom) - target.Top) / picture.height;
  cairo_save(page);
  cairo_rectangle(page, target.Left, target.Top, across * picture.width, down * picture.height);
  cairo_clip(page);
  cairo_translate(page, target.Left, target.Top);
  cairo_scale(page, across, down);
  cairo_set_source_surface(page, image.get(), 0, 0);
  // Enlarged pixels stay squares.
  cairo_pattern_set_filter(cairo_get_source(page),
                           across >= 1 && down >= 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(cairo_get_source(page), CAIRO_EXTEND_PAD);
  cairo_paint(page);
  cairo_restore(page);
}

void DrawDithered(cairo_t* page, const TRect& target, const TRect& seen, const TPicture& picture) {
  const Surface image = MakeImage(seen.Right - seen.Left, seen.Bottom - seen.Top);
  {
    const Context context(cairo_create(image.get()));
    cairo_translate(context.get(), -seen.Left, -seen.Top);
    DrawPicture(context.get(), target, picture);
  }
  Dither(image.get());
  cairo_set_source_surface(page, image.get(), seen.Left, seen.Top);
  cairo_rectangle(page, seen.Left, seen.Top, seen.Right - seen.Left, seen.Bottom - seen.Top);
  cairo_fill(page);
}

}  // namespace kvshare::paper
