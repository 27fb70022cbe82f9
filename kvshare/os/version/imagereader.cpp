#include "kvshare/os/version/imagereader.h"

namespace kvshare::os {

ImageReader::~ImageReader() = default;

std::optional<std::string> ImageReader::Bytes(std::uint64_t offset, std::size_t size) const {
  const std::uint64_t end = Size();
  if (offset > end || size > end - offset) return std::nullopt;
  std::string bytes(size, '\0');
  if (!Fill(offset, bytes)) return std::nullopt;
  return bytes;
}

std::string VersionBlockOfImage(const ImageReader& image) {
  std::string block = VersionBlockOfElf(image);
  return block.empty() ? VersionBlockOfPe(image) : block;
}

}  // namespace kvshare::os
