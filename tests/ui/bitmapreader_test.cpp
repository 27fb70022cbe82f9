#include <gtest/gtest.h>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/bitmap.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using namespace std::string_literals;

std::string Little(std::int64_t value, int bytes) {
  std::string out;
  for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
  return out;
}

// A file whose headers say what the members say, right or wrong.
struct File {
  std::string pixels;
  int bits = 8;
  int width = 1;
  int height = 1;
  unsigned compression = 0;
  std::string palette{};  // or masks
  unsigned colours = 0;
  unsigned header = 40;
  std::string inHeader{};  // behind its first 40 bytes
  int planes = 1;
  int moved = 0;  // the place of the pixels, from where they are

  std::string Bytes() const {
    std::string info = Little(header, 4);
    if (header == 12) {
      info += Little(width, 2) + Little(height, 2) + Little(planes, 2) + Little(bits, 2);
    } else {
      info += Little(width, 4) + Little(height, 4) + Little(planes, 2) + Little(bits, 2) +
              Little(compression, 4) + std::string(12, '\xEE') + Little(colours, 4) +
              std::string(4, '\0') + inHeader;
      info.resize(header);
    }
    info += palette;
    return "BM\x01\x02\x03\x04"s + std::string(4, '\0') + Little(std::ssize(info) + 14 + moved, 4) +
           info + pixels;
  }
};

// The rows from the top, a letter a pixel: black, white, red, green, blue.
std::string Letters(const TPicture& picture) {
  constexpr std::pair<char, TPixel> kNames[] = {{'k', {}},
                                                {'w', {255, 255, 255}},
                                                {'r', {0, 0, 255}},
                                                {'g', {0, 255, 0}},
                                                {'b', {255, 0, 0}}};
  std::string letters;
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    if (i != 0 && i % static_cast<std::size_t>(picture.width) == 0) letters += '/';
    char letter = '?';
    for (const auto& [name, pixel] : kNames) {
      if (picture.pixels[i] == pixel) letter = name;
    }
    letters += letter;
  }
  return letters;
}

const std::string kRed = "\0\0\xFF\0"s, kGreen = "\0\xFF\0\0"s, kBlue = "\xFF\0\0\0"s;
const std::string kWhite = "\xFF\xFF\xFF\0"s;
const std::string kRGBW = kRed + kGreen + kBlue + kWhite;
const std::string k565 = Little(0xF800, 4) + Little(0x07E0, 4) + Little(0x001F, 4);

TEST(BitmapReader, EveryForm) {
  struct Case {
    std::string_view why;
    File file;
    std::string want;
  };
  const Case cases[] = {
      {"1 bit, rows from the bottom",
       {"\x40\0\0\0\xA0\0\0\0"s, 1, 3, 2, 0, kRed + kGreen},
       "grg/rgr"},
      {"1 bit, top first", {"\x40\0\0\0\xA0\0\0\0"s, 1, 3, -2, 0, kRed + kGreen}, "rgr/grg"},
      {"1 bit past a byte", {"\xFF\x80\0\0"s, 1, 9, 1, 0, kRed + kGreen}, "ggggggggg"},
      {"4 bits, odd width", {"\x01\x20\0\0"s, 4, 3, 1, 0, kRGBW}, "rgb"},
      {"8 bits", {"\3\2\1\0"s, 8, 4, 1, 0, kRGBW}, "wbgr"},
      {"palette shorter than the depth", {"\0\1\2\xFF"s, 8, 4, 1, 0, kRed + kGreen, 2}, "rgkk"},
      {"palette that says more than there is", {"\0\1\2\0"s, 8, 3, 1, 0, kRed, 200}, "rkk"},
      {"palette longer than the depth", {"\xC0\0\0\0"s, 1, 3, 1, 0, kRGBW, 4}, "ggr"},
      {"the old header, three bytes a colour",
       {"\1\0\0\0"s, 8, 2, 1, 0, kRed.substr(0, 3) + kGreen.substr(0, 3), 0, 12},
       "gr"},
      {"the old header, 24 bits", {"\0\0\xFF\xFF\0\0\0\0"s, 24, 2, 1, 0, "", 0, 12}, "rb"},
      {"16 bits",
       {Little(0x7C00, 2) + Little(0x03E0, 2) + Little(0xFFFF, 2) + "\0\0"s, 16, 3},
       "rgw"},
      {"16 bits, masks behind",
       {Little(0xF800, 2) + Little(0x07E0, 2) + Little(0x001F, 2) + "\0\0"s, 16, 3, 1, 3, k565},
       "rgb"},
      {"16 bits, masks inside", {Little(0xF800, 2) + "\0\0"s, 16, 1, 1, 3, "", 0, 52, k565}, "r"},
      {"32 bits", {kRed + kWhite, 32, 2}, "rw"},
      {"32 bits, masks of ten",
       {Little(0x3FF00000, 4) + Little(0xC00003FF, 4), 32, 2, 1, 3,
        Little(0x3FF00000, 4) + Little(0xFFC00, 4) + Little(0x3FF, 4)},
       "rb"},
      {"a mask of no bits",
       {Little(0xFFFF, 4), 32, 1, 1, 3, Little(0, 4) + Little(0xFF00, 4) + Little(0, 4)},
       "g"},
      {"a mask of all bits",
       {Little(0xFFFFFFFF, 4), 32, 1, 1, 3, Little(0, 4) + Little(0xFFFFFFFF, 4) + Little(0, 4)},
       "g"},
      {"the longest header", {kRed, 32, 1, 1, 0, "", 0, 124}, "r"},
      {"a last row without its filling", {"\0\0\xFF\0\0\0\xFF"s, 24, 1, 2}, "r/r"},
      {"a gap before the pixels", {"\7\7\1"s, 8, 1, 1, 0, kRGBW, 4, 40, "", 1, 2}, "g"},

      {"RLE8: runs, pixels as they are, ends",
       {"\2\1\1\2\0\0\0\3\0\1\3\0\0\1"s, 8, 3, 2, 1, kRGBW},
       "rgw/ggb"},
      {"RLE8: moved over", {"\0\2\1\1\1\2\0\1"s, 8, 3, 2, 1, kRGBW}, "rbr/rrr"},
      {"RLE8: past the edges",
       {"\5\1\0\0\5\2\0\0\5\3\0\2\xFF\xFF\1\1\0\1"s, 8, 2, 2, 1, kRGBW},
       "bb/gg"},
      {"RLE8: no end mark", {"\2\1\0\0\2\2"s, 8, 2, 2, 1, kRGBW}, "bb/gg"},
      {"RLE8: a colour that there is not", {"\1\1\1\x77\0\1"s, 8, 2, 1, 1, kRGBW, 4}, "gk"},
      {"RLE4: a run alternates", {"\5\x12\0\1"s, 4, 5, 1, 2, kRGBW}, "gbgbg"},
      {"RLE4: five pixels in three bytes, filled",
       {"\0\5\x01\x23\x10\0\0\1"s, 4, 5, 1, 2, kRGBW},
       "rgbwg"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const TPicture picture = ReadBitmapFile(c.file.Bytes());
    EXPECT_EQ(picture.width, c.file.width);
    EXPECT_EQ(picture.height, std::abs(c.file.height));
    EXPECT_EQ(Letters(picture), c.want);
  }
}

TEST(BitmapReader, ColoursComeToTheNearestOfEightBits) {
  constexpr std::pair<int, int> kRows[] = {{0, 0},    {1, 8},    {7, 58},
                                           {24, 197}, {30, 247}, {31, 255}};
  for (const auto& [five, eight] : kRows) {
    const TPixel pixel = ReadBitmapFile(File{Little(five, 4), 16}.Bytes()).pixels[0];
    EXPECT_EQ(pixel.blue, eight) << five;
  }
}

TEST(BitmapReader, RefusesTheRest) {
  const std::pair<std::string_view, File> cases[] = {
      {"two bits", {"\0\0\0\0"s, 2}},
      {"no bits", {"\0\0\0\0"s, 0}},
      {"another compression", {"\0\0\0\0"s, 24, 1, 1, 4}},
      {"RLE of the other depth", {"\1\1\0\1"s, 4, 1, 1, 1}},
      {"masks of 24 bits", {"\0\0\0\0"s, 24, 1, 1, 3, k565}},
      {"RLE with its top first", {"\1\1\0\1"s, 8, 1, -1, 1}},
      {"two planes", {"\0\0\0\0"s, 8, 1, 1, 0, "", 0, 40, "", 2}},
      {"no width", {"\0\0\0\0"s, 8, 0}},
      {"a negative width", {"\0\0\0\0"s, 8, -1}},
      {"no height", {"\0\0\0\0"s, 8, 1, 0}},
      {"the height that cannot be turned", {"\0\0\0\0"s, 8, 1, INT32_MIN}},
      {"an unknown header", {"\0\0\0\0"s, 8, 1, 1, 0, "", 0, 41}},
      {"16 bits in the old header", {"\0\0\0\0"s, 16, 1, 1, 0, "", 0, 12}},
      {"a byte of a row is missing", {"\0\0\0\0\0\0"s, 24, 1, 2}},
      {"more rows than memory", {"\0\0\0\0"s, 24, 1, INT32_MAX}},
      {"rows longer than memory", {"\0\0\0\0"s, 32, INT32_MAX, 1}},
      {"RLE that claims gigabytes", {"\1\1\0\1"s, 8, INT32_MAX, INT32_MAX, 1}},
      {"RLE of just too much", {"\1\1\0\1"s, 8, 2048, 2049, 1}},
      {"RLE that ends in a row below", {"\2\1"s, 8, 2, 2, 1}},
      {"RLE that ends within a code", {"\2\1\1"s, 8, 2, 1, 1}},
      {"RLE that ends within a move", {"\0\2\1"s, 8, 2, 1, 1}},
      {"RLE that ends within its pixels", {"\0\4\1\1\1"s, 8, 4, 1, 1}},
      {"pixels inside the masks", {"\0\0\0\0"s, 32, 1, 1, 3, k565, 0, 40, "", 1, -4}},
      {"pixels inside the header", {"\0\0\0\0"s, 8, 1, 1, 0, "", 0, 40, "", 1, -1}},
      {"pixels behind the file", {"\0\0\0\0"s, 8, 1, 1, 0, "", 0, 40, "", 1, 4}},
      {"masks that overlap",
       {"\0\0\0\0"s, 16, 1, 1, 3, Little(3, 4) + Little(2, 4) + Little(8, 4)}},
      {"a mask with a gap", {"\0\0\0\0"s, 16, 1, 1, 3, Little(5, 4) + Little(2, 4) + Little(8, 4)}},
      {"a mask past the depth",
       {"\0\0\0\0"s, 16, 1, 1, 3, Little(1 << 16, 4) + Little(2, 4) + Little(1, 4)}},
  };
  for (const auto& [why, file] : cases) {
    const std::string bytes = file.Bytes();
    EXPECT_EQ(MessageOf<EInvalidGraphic>([&bytes] { ReadBitmapFile(bytes); }),
              "Bitmap image is not valid")
        << why;
  }
  const std::string whole = File{kWhite, 32, 1, 1, 3, "", 0, 52, k565 + "\0"s}.Bytes();
  for (std::size_t size = 0; size < 14 + 52; ++size) {
    EXPECT_THROW(ReadBitmapFile(whole.substr(0, size)), EInvalidGraphic) << size;
  }
  EXPECT_THROW(ReadBitmapFile("ba" + whole.substr(2)), EInvalidGraphic);
}

TEST(BitmapReader, ReadsWhatIsWritten) {
  for (int width = 1; width < 6; ++width) {
    TPicture picture{width, 3, {}};
    for (int i = 0; i < 3 * width; ++i) {
      picture.pixels.push_back({static_cast<std::uint8_t>(i), 200, static_cast<std::uint8_t>(~i)});
    }
    const TPicture read = ReadBitmapFile(BitmapFileBytes(picture));
    EXPECT_EQ(read.width, width);
    EXPECT_EQ(read.pixels, picture.pixels);
  }
}

}  // namespace
}  // namespace kvshare
