// A picture from the bytes of a Windows bitmap.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <span>

#include "kvshare/ui/bitmap.h"
#include "kvshare/ui/bitmapformat.h"
#include "kvshare/ui/bitmaprle.h"

namespace kvshare {

EInvalidGraphic::~EInvalidGraphic() = default;

namespace {

constexpr std::uint32_t kOldHeader = 12;
constexpr std::uint64_t kMasksSize = 12;

enum Compression : std::uint32_t { kPlain = 0, kRle8 = 1, kRle4 = 2, kMasked = 3 };

void Require(bool holds) {
  if (!holds) throw EInvalidGraphic("Bitmap image is not valid");
}

// A little-endian number; refuses what lies behind the file's end.
template <typename Number>
Number Load(std::string_view bytes, std::uint64_t at) {
  Require(at <= bytes.size() && bytes.size() - at >= sizeof(Number));
  Number value = 0;
  for (std::size_t i = 0; i < sizeof(Number); ++i) {
    value |= static_cast<Number>(static_cast<Number>(static_cast<unsigned char>(bytes[at + i]))
                                 << 8 * i);
  }
  return value;
}

struct Header {
  std::uint32_t size = 0;
  std::uint32_t width = 0;  // below 2^31, as the height
  std::uint32_t height = 0;
  bool topFirst = false;
  std::uint16_t bits = 0;
  std::uint32_t compression = kPlain;
  std::uint32_t colours = 0;  // of the palette; 0: all that the depth has
  std::uint64_t pixels = 0;   // where they begin
};

bool IsKnownSize(std::uint32_t size) {
  constexpr std::uint32_t kSizes[] = {kBitmapInfoHeader, 52, 56, 64, 108, 124};
  return std::ranges::find(kSizes, size) != std::end(kSizes);
}

bool FitTogether(std::uint16_t bits, std::uint32_t compression) {
  switch (compression) {
    case kPlain:
      return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    case kRle8:
      return bits == 8;
    case kRle4:
      return bits == 4;
    case kMasked:
      return bits == 16 || bits == 32;
    default:
      return false;
  }
}

void ReadOldHeader(Header& header, std::string_view bytes) {
  header.width = Load<std::uint16_t>(bytes, kBitmapFileHeader + 4);
  header.height = Load<std::uint16_t>(bytes, kBitmapFileHeader + 6);
  Require(Load<std::uint16_t>(bytes, kBitmapFileHeader + 8) == 1);
  header.bits = Load<std::uint16_t>(bytes, kBitmapFileHeader + 10);
  Require(header.bits <= 8 || header.bits == 24);
}

void ReadInfoHeader(Header& header, std::string_view bytes) {
  Require(bytes.size() >= kBitmapFileHeader + header.size);
  header.width = Load<std::uint32_t>(bytes, kBitmapFileHeader + 4);
  header.height = Load<std::uint32_t>(bytes, kBitmapFileHeader + 8);
  header.topFirst = header.height > INT32_MAX;
  if (header.topFirst) header.height = 0 - header.height;
  Require(Load<std::uint16_t>(bytes, kBitmapFileHeader + 12) == 1);
  header.bits = Load<std::uint16_t>(bytes, kBitmapFileHeader + 14);
  header.compression = Load<std::uint32_t>(bytes, kBitmapFileHeader + 16);
  header.colours = Load<std::uint32_t>(bytes, kBitmapFileHeader + 32);
}

// Where the headers end: the masks behind a header that has no room for them are among them.
std::uint64_t EndOfHeaders(const Header& header) {
  const bool masksBehind = header.compression == kMasked && header.size == kBitmapInfoHeader;
  return kBitmapFileHeader + header.size + (masksBehind ? kMasksSize : 0);
}

Header ReadHeader(std::string_view bytes) {
  Require(bytes.starts_with("BM"));
  Header header;
  header.pixels = Load<std::uint32_t>(bytes, 10);
  header.size = Load<std::uint32_t>(bytes, kBitmapFileHeader);
  Require(header.size == kOldHeader || IsKnownSize(header.size));
  header.size == kOldHeader ? ReadOldHeader(header, bytes) : ReadInfoHeader(header, bytes);
  Require(FitTogether(header.bits, header.compression));
  Require(header.width != 0 && header.width <= INT32_MAX);
  Require(header.height != 0 && header.height <= INT32_MAX);
  Require(header.pixels >= EndOfHeaders(header) && header.pixels < bytes.size());
  return header;
}

// As many colours as the depth can name; those that the file lacks are black.
BitmapPalette ReadPalette(const Header& header, std::string_view bytes) {
  BitmapPalette palette{};
  const std::uint64_t begin = EndOfHeaders(header);
  const std::uint64_t entry = header.size == kOldHeader ? 3 : 4;
  const std::uint64_t all = std::uint64_t{1} << header.bits;
  const std::uint64_t named =
      header.colours == 0 ? all : std::min<std::uint64_t>(header.colours, all);
  const std::uint64_t there = std::min(named, (header.pixels - begin) / entry);
  for (std::uint64_t i = 0; i < there; ++i) {
    std::memcpy(&palette[i], &bytes[begin + i * entry], sizeof(TPixel));
  }
  return palette;
}

// One colour's bits in a pixel of 16 or 32.
class Channel {
 public:
  Channel() = default;
  explicit Channel(std::uint32_t mask)
      : shift_(mask == 0 ? 0 : std::countr_zero(mask)), most_(mask >> shift_) {
    Require((most_ & (std::uint64_t{most_} + 1)) == 0);  // no gaps
  }

  std::uint8_t Of(std::uint32_t pixel) const {
    if (most_ == 0) return 0;
    const std::uint64_t value = pixel >> shift_ & most_;
    return static_cast<std::uint8_t>((value * 255 + most_ / 2) / most_);
  }

 private:
  int shift_ = 0;
  std::uint32_t most_ = 0;
};

struct Channels {
  Channel red, green, blue;
  TPixel Of(std::uint32_t pixel) const { return {blue.Of(pixel), green.Of(pixel), red.Of(pixel)}; }
};

Channels ReadChannels(const Header& header, std::string_view bytes) {
  std::array<std::uint32_t, 3> masks = {0x7C00, 0x03E0, 0x001F};
  if (header.bits == 32) masks = {0xFF0000, 0xFF00, 0xFF};
  if (header.compression == kMasked) {
    for (std::size_t i = 0; i < masks.size(); ++i) {
      masks[i] = Load<std::uint32_t>(bytes, kBitmapFileHeader + kBitmapInfoHeader + 4 * i);
    }
  }
  const auto [red, green, blue] = masks;
  Require((red & green) == 0 && (green & blue) == 0 && (red & blue) == 0);
  Require(header.bits == 32 || (red | green | blue) <= UINT16_MAX);
  return {Channel(red), Channel(green), Channel(blue)};
}

void ReadIndexedRow(std::string_view row, unsigned bits, const BitmapPalette& palette,
                    std::span<TPixel> to) {
  const unsigned mask = (1U << bits) - 1;
  const std::size_t perByte = 8 / bits;
  for (std::size_t x = 0; x < to.size(); ++x) {
    const auto byte = static_cast<unsigned char>(row[x / perByte]);
    to[x] = palette[byte >> (8 - bits * (x % perByte + 1)) & mask];
  }
}

template <typename Number>
void ReadMaskedRow(std::string_view row, const Channels& channels, std::span<TPixel> to) {
  for (std::size_t x = 0; x < to.size(); ++x) {
    to[x] = channels.Of(Load<Number>(row, x * sizeof(Number)));
  }
}

// The plain rows of a picture that the file holds whole; the last one may lack its filling.
class Rows {
 public:
  Rows(const Header& header, std::string_view bytes)
      : header_(header),
        pixels_(bytes.substr(header.pixels)),
        used_((std::uint64_t{header.width} * header.bits + 7) / 8),
        stride_((used_ + 3) / 4 * 4) {
    Require(used_ <= pixels_.size() && (pixels_.size() - used_) / stride_ >= header.height - 1);
  }

  // From the top.
  std::string_view operator[](std::uint32_t y) const {
    const std::uint64_t stored = header_.topFirst ? y : header_.height - 1 - y;
    return pixels_.substr(stored * stride_, used_);
  }

 private:
  const Header& header_;
  std::string_view pixels_;
  std::uint64_t used_;
  std::uint64_t stride_;
};

TPicture EmptyPicture(const Header& header, TPixel pixel) {
  return {static_cast<int>(header.width), static_cast<int>(header.height),
          std::vector<TPixel>(std::size_t{header.width} * header.height, pixel)};
}

TPicture ReadPlain(const Header& header, std::string_view bytes) {
  const Rows rows(header, bytes);
  const bool indexed = header.bits <= 8;
  const BitmapPalette palette = indexed ? ReadPalette(header, bytes) : BitmapPalette{};
  const Channels channels = indexed ? Channels() : ReadChannels(header, bytes);
  TPicture picture = EmptyPicture(header, {});
  for (std::uint32_t y = 0; y < header.height; ++y) {
    const std::span<TPixel> to(&picture.pixels[std::size_t{y} * header.width], header.width);
    switch (header.bits) {
      case 16:
        ReadMaskedRow<std::uint16_t>(rows[y], channels, to);
        break;
      case 24:
        std::memcpy(to.data(), rows[y].data(), to.size_bytes());
        break;
      case 32:
        ReadMaskedRow<std::uint32_t>(rows[y], channels, to);
        break;
      default:
        ReadIndexedRow(rows[y], header.bits, palette, to);
    }
  }
  return picture;
}

TPicture ReadRle(const Header& header, std::string_view bytes) {
  constexpr std::uint64_t kSmall = std::uint64_t{2048} * 2048;
  constexpr std::uint64_t kPixelsAByte = 256;
  Require(!header.topFirst);
  Require(std::uint64_t{header.width} * header.height <=
          std::max<std::uint64_t>(kSmall, kPixelsAByte * bytes.size()));
  const BitmapPalette palette = ReadPalette(header, bytes);
  TPicture picture = EmptyPicture(header, palette.front());
  Require(DecodeRle(bytes.substr(header.pixels), header.bits, palette, picture));
  return picture;
}

}  // namespace

TPicture ReadBitmapFile(std::string_view bytes) {
  const Header header = ReadHeader(bytes);
  const bool rle = header.compression == kRle8 || header.compression == kRle4;
  return rle ? ReadRle(header, bytes) : ReadPlain(header, bytes);
}

}  // namespace kvshare
