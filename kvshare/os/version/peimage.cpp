// The version resource of a Windows executable or library.
#include "kvshare/os/version/imagereader.h"

namespace kvshare::os {

namespace {

using std::uint16_t;
using std::uint32_t;
using std::uint64_t;

constexpr std::size_t kResources = 2;  // of the data directories
constexpr std::size_t kSectionRow = 40;
constexpr uint32_t kVersionType = 16;
constexpr uint32_t kSubdirectory = 0x80000000;

struct Headers {
  uint32_t resources = 0;  // where the resources lie in memory
  std::string sections;
};

// Where the data directories begin in the optional header, 0 for no kind of image.
std::size_t DataDirectories(std::string_view optional) {
  if (optional.size() < sizeof(uint16_t)) return 0;
  switch (Load<uint16_t>(optional, 0)) {
    case 0x10B:
      return 96;  // 32 bits
    case 0x20B:
      return 112;  // 64 bits
    default:
      return 0;
  }
}

std::optional<Headers> ReadHeaders(const ImageReader& image) {
  const auto dos = image.Bytes(0, 64);
  if (!dos || !dos->starts_with("MZ")) return std::nullopt;
  const uint64_t start = Load<uint32_t>(*dos, 0x3C);
  const auto coff = image.Bytes(start, 24);
  if (!coff || !coff->starts_with(std::string_view("PE\0\0", 4))) return std::nullopt;
  const std::size_t optionalSize = Load<uint16_t>(*coff, 20);
  const auto optional = image.Bytes(start + coff->size(), optionalSize);
  if (!optional) return std::nullopt;

  const std::size_t directories = DataDirectories(*optional);
  const std::size_t row = directories + 8 * kResources;
  if (directories == 0 || optionalSize < row + 8) return std::nullopt;
  const auto directoryCount = Load<uint32_t>(*optional, directories - 4);
  if (directoryCount <= kResources) return std::nullopt;

  auto sections =
      image.Bytes(start + coff->size() + optionalSize, kSectionRow * Load<uint16_t>(*coff, 6));
  const auto resources = Load<uint32_t>(*optional, row);
  if (!sections || resources == 0) return std::nullopt;
  return Headers{resources, std::move(*sections)};
}

// The resources as a tree of three levels: type, name, language. A path through it is followed for
// these three steps and no further, whatever its offsets say, so that one in a circle ends too.
class Resources {
 public:
  Resources(const ImageReader& image, Headers headers)
      : image_(image), headers_(std::move(headers)) {}

  std::string Block() const {
    const auto types = Entry(kSubdirectory, kVersionType);
    const auto names = types ? Entry(*types, kAny) : std::nullopt;
    const auto languages = names ? Entry(*names, kAny) : std::nullopt;
    if (!languages || (*languages & kSubdirectory) != 0) return {};
    const auto leaf = Mapped(uint64_t{headers_.resources} + *languages, 16);
    if (!leaf) return {};
    const std::size_t size = Load<uint32_t>(*leaf, 4);
    if (size > kLargestVersionBlock) return {};
    return Mapped(Load<uint32_t>(*leaf, 0), size).value_or(std::string());
  }

 private:
  static constexpr uint32_t kAny = 0;

  // Bytes at a place in memory, out of the file's part of the section that lies there.
  std::optional<std::string> Mapped(uint64_t address, std::size_t size) const {
    const std::string_view rows = headers_.sections;
    for (std::size_t row = 0; row < rows.size(); row += kSectionRow) {
      const uint64_t begin = Load<uint32_t>(rows, row + 12);
      const uint64_t end = begin + Load<uint32_t>(rows, row + 16);
      if (address < begin || address >= end) continue;
      if (size > end - address) return std::nullopt;
      return image_.Bytes(Load<uint32_t>(rows, row + 20) + (address - begin), size);
    }
    return std::nullopt;
  }

  // Where the entry `id`, or the first of all, of a directory leads.
  std::optional<uint32_t> Entry(uint32_t directory, uint32_t id) const {
    if ((directory & kSubdirectory) == 0) return std::nullopt;
    const uint64_t at = uint64_t{headers_.resources} + (directory & ~kSubdirectory);
    const auto head = Mapped(at, 16);
    if (!head) return std::nullopt;
    const std::size_t named = Load<uint16_t>(*head, 12);
    const std::size_t count = named + Load<uint16_t>(*head, 14);
    const auto entries = Mapped(at + head->size(), 8 * count);
    if (!entries) return std::nullopt;
    for (std::size_t i = id == kAny ? 0 : named; i < count; ++i) {
      if (id == kAny || Load<uint32_t>(*entries, 8 * i) == id) {
        return Load<uint32_t>(*entries, 8 * i + 4);
      }
    }
    return std::nullopt;
  }

  const ImageReader& image_;
  Headers headers_;
};

}  // namespace

std::string VersionBlockOfPe(const ImageReader& image) {
  auto headers = ReadHeaders(image);
  return headers ? Resources(image, std::move(*headers)).Block() : std::string();
}

}  // namespace kvshare::os
