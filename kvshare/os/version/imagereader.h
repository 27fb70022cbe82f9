// The files of programs and libraries, read at the places that their headers name.
// A test passes bytes of its own.
// Internal header.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// A little-endian number; the caller knows that the bytes are there.
template <std::unsigned_integral T>
constexpr T Load(std::string_view bytes, std::size_t at) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    value = static_cast<T>(value | static_cast<T>(static_cast<unsigned char>(bytes[at + i]))
                                       << (8 * i));
  }
  return value;
}

class KVSHARE_API ImageReader {
 public:
  ImageReader() = default;
  ImageReader(const ImageReader&) = delete;
  ImageReader& operator=(const ImageReader&) = delete;
  virtual ~ImageReader();

  virtual std::uint64_t Size() const = 0;

  // `size` bytes from `offset`; none where the file does not hold them all, so that a number from a
  // broken file never makes memory grow past the file's size.
  std::optional<std::string> Bytes(std::uint64_t offset, std::size_t size) const;

 private:
  // Fills `to` from a place inside Size(). False when the file has become shorter. Throws
  // EInOutError.
  virtual bool Fill(std::uint64_t offset, std::span<char> to) const = 0;
};

// The version resource that an image carries, "" for one without, for a broken image and for a
// resource of more than kLargestVersionBlock. Reads headers, directories and the resource alone.
KVSHARE_API std::string VersionBlockOfImage(const ImageReader& image);

// A resource's own length has 16 bits; linkers pad it.
inline constexpr std::size_t kLargestVersionBlock = std::size_t{1} << 20;

// Whether a program or library of this system has lost its end, so that a loader that trusts its
// headers would look at bytes that are not there. False for files of another kind.
KVSHARE_API bool IsCutShort(const ImageReader& image);

// Of one kind of image.
std::string VersionBlockOfPe(const ImageReader& image);
std::string VersionBlockOfElf(const ImageReader& image);

}  // namespace kvshare::os
