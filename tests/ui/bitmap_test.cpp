#include "kvshare/ui/bitmap.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/exceptions.h"

namespace kvshare {
namespace {

using namespace std::string_literals;

TEST(Bitmap, AFileByteByByte) {
  TPicture picture{3, 2, std::vector<TPixel>(6)};
  picture.pixels[0] = {1, 2, 3};
  picture.pixels[2] = {4, 5, 6};
  picture.pixels[5] = {7, 8, 255};
  const std::string want =
      "BM\x4E\0\0\0\0\0\0\0\x36\0\0\0"s  // 54 + 2 rows of 12
      "\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0\0\0\0\0\x18\0\0\0"s +
      std::string(16, '\0') +
      "\0\0\0\0\0\0\x07\x08\xFF\0\0\0"s  // bottom row, filled to 12
      "\x01\x02\x03\0\0\0\x04\x05\x06\0\0\0"s;
  EXPECT_EQ(BitmapFileBytes(picture), want);
}

TEST(Bitmap, RowsAreFilledToFourBytes) {
  constexpr std::size_t kRows[] = {0, 4, 8, 12, 12, 16};
  for (int width = 0; width < 6; ++width) {
    const std::vector<TPixel> pixels(static_cast<std::size_t>(width) * 5);
    EXPECT_EQ(BitmapFileBytes({width, 5, pixels}).size(), 54 + 5 * kRows[width]) << width;
  }
}

TEST(Bitmap, RefusesWhatIsNoPicture) {
  EXPECT_THROW(BitmapFileBytes({-1, 1, {}}), ERangeError);
  EXPECT_THROW(BitmapFileBytes({1, -1, {}}), ERangeError);
  EXPECT_THROW(BitmapFileBytes({2, 2, std::vector<TPixel>(3)}), ERangeError)
      << "a pixel is missing";
  EXPECT_THROW(BitmapFileBytes({INT32_MAX, INT32_MAX, {}}), ERangeError);
  EXPECT_THROW(BitmapFileBytes({0, INT32_MAX, std::vector<TPixel>(1)}), ERangeError);
}

}  // namespace
}  // namespace kvshare
