#include "kvshare/ui/bitmaprle.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kvshare {

namespace {

constexpr unsigned kEscape = 0;                                          // in the place of a length
enum Escape : unsigned { kEndOfRow = 0, kEndOfPicture = 1, kMove = 2 };  // others are lengths

class RleDecoder {
 public:
  RleDecoder(std::string_view runs, unsigned bits, const BitmapPalette& palette, TPicture& picture)
      : runs_(runs), bits_(bits), palette_(palette), picture_(picture) {}

  bool Run() {
    while (runs_.size() - at_ >= 2) {
      const unsigned length = Take();
      const unsigned second = Take();
      if (length != kEscape) {
        Repeat(length, second);
      } else if (second == kEndOfPicture) {
        return true;
      } else if (!Follow(second)) {
        return false;
      }
    }
    return at_ == runs_.size() && y_ + 1 >= Height();
  }

 private:
  std::uint64_t Width() const { return static_cast<std::uint64_t>(picture_.width); }
  std::uint64_t Height() const { return static_cast<std::uint64_t>(picture_.height); }
  unsigned Take() { return static_cast<unsigned char>(runs_[at_++]); }

  bool Follow(unsigned escape) {
    if (escape == kEndOfRow) {
      x_ = 0;
      ++y_;
      return true;
    }
    if (escape == kMove) {
      if (runs_.size() - at_ < 2) return false;
      x_ += Take();
      y_ += Take();
      return true;
    }
    return CopyPixels(escape);
  }

  void Draw(unsigned colour) {
    if (x_ < Width() && y_ < Height()) {
      picture_.pixels[(Height() - 1 - y_) * Width() + x_] = palette_[colour];
    }
    ++x_;
  }

  // The pixel of that number in the byte; two halves of 4 bits, the high one first.
  unsigned Colour(unsigned byte, unsigned number) const {
    if (bits_ == 8) return byte;
    return number % 2 == 0 ? byte >> 4 : byte & 0x0F;
  }

  // What lies outside costs no time: a small file may run on there for long.
  void Repeat(unsigned length, unsigned byte) {
    const std::uint64_t room = x_ < Width() && y_ < Height() ? Width() - x_ : 0;
    const auto seen = static_cast<unsigned>(std::min<std::uint64_t>(length, room));
    for (unsigned i = 0; i < seen; ++i) Draw(Colour(byte, i));
    x_ += length - seen;
  }

  // Pixels that stand as they are, filled up to 16 bits.
  bool CopyPixels(unsigned length) {
    const std::size_t bytes = (std::size_t{length} * bits_ + 7) / 8;
    if (runs_.size() - at_ < bytes) return false;
    for (unsigned i = 0; i < length; ++i) {
      const auto byte = static_cast<unsigned char>(runs_[at_ + std::size_t{i} * bits_ / 8]);
      Draw(Colour(byte, i));
    }
    at_ += bytes;
    if (bytes % 2 != 0 && at_ < runs_.size()) ++at_;
    return true;
  }

  std::string_view runs_;
  unsigned bits_;
  const BitmapPalette& palette_;
  TPicture& picture_;
  std::size_t at_ = 0;
  std::uint64_t x_ = 0;
  std::uint64_t y_ = 0;  // from the bottom
};

}  // namespace

bool DecodeRle(std::string_view runs, unsigned bits, const BitmapPalette& palette,
               TPicture& picture) {
  return RleDecoder(runs, bits, palette, picture).Run();
}

}  // namespace kvshare
