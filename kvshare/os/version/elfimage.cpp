// The version resource of a program or library of this system: the note that
// versionresourcebuilder.h makes, found as a loader finds notes, so that a stripped file has it.
#include "kvshare/os/version/imagereader.h"
#include "kvshare/os/version/versionresourcebuilder.h"

namespace kvshare::os {

namespace {

using std::uint16_t;
using std::uint32_t;
using std::uint64_t;

// Where the fields stand in the two classes of the format.
struct Layout {
  std::size_t headerSize;
  std::size_t tableOffset, rowSize, rowCount;  // in the header, of the program headers
  std::size_t row;                             // bytes of a program header
  std::size_t offset, size, alignment;         // in a program header
  bool wide;

  uint64_t Address(std::string_view bytes, std::size_t at) const {
    return wide ? Load<uint64_t>(bytes, at) : Load<uint32_t>(bytes, at);
  }
};
constexpr Layout k32{52, 28, 42, 44, 32, 4, 16, 28, false};
constexpr Layout k64{64, 32, 54, 56, 56, 8, 32, 48, true};

// None for another format, another class, and for big-endian numbers.
const Layout* LayoutOf(const ImageReader& image) {
  const auto ident = image.Bytes(0, 16);
  if (!ident || !ident->starts_with("\x7F"
                                    "ELF"))
    return nullptr;
  const bool littleEndian = (*ident)[5] == 1;
  if (!littleEndian) return nullptr;
  switch ((*ident)[4]) {
    case 1:
      return &k32;
    case 2:
      return &k64;
    default:
      return nullptr;
  }
}

struct Segment {
  uint64_t offset = 0;
  uint64_t size = 0;
  uint64_t alignment = 4;  // of a note's two parts
};

class Notes {
 public:
  explicit Notes(const ImageReader& image) : image_(image) {}

  // The resource among a segment's notes; none when it has none or is broken.
  std::optional<std::string> BlockIn(const Segment& segment) {
    constexpr std::size_t kHead = 12;
    const uint64_t end = image_.Size();
    if (segment.offset > end || segment.size > end - segment.offset) return std::nullopt;
    uint64_t at = 0;
    while (at < segment.size && kHead <= segment.size - at && left_-- > 0) {
      const auto head = image_.Bytes(segment.offset + at, kHead);
      if (!head) return std::nullopt;
      const uint64_t nameSize = Load<uint32_t>(*head, 0);
      const uint64_t size = Load<uint32_t>(*head, 4);
      const uint64_t body = Aligned(at + kHead + nameSize, segment.alignment);
      const bool inside = body <= segment.size && size <= segment.size - body;
      if (!inside) return std::nullopt;
      if (Load<uint32_t>(*head, 8) == versionblock::kNoteType && nameSize == kOwner.size() &&
          image_.Bytes(segment.offset + at + kHead, kOwner.size()) == kOwner) {
        if (size > kLargestVersionBlock) return std::nullopt;
        return image_.Bytes(segment.offset + body, size);
      }
      at = Aligned(body + size, segment.alignment);
    }
    return std::nullopt;
  }

 private:
  static constexpr std::string_view kOwner{"KvShare\0", 8};

  static uint64_t Aligned(uint64_t at, uint64_t alignment) {
    return (at + alignment - 1) / alignment * alignment;
  }

  const ImageReader& image_;
  int left_ = 4096;  // notes of a file that are looked at; programs have a handful
};

// The program headers, one behind the other; none where the file does not hold them.
std::optional<std::string> ProgramHeaders(const ImageReader& image, const Layout& layout) {
  const auto header = image.Bytes(0, layout.headerSize);
  if (!header || Load<uint16_t>(*header, layout.rowSize) != layout.row) return std::nullopt;
  const std::size_t count = Load<uint16_t>(*header, layout.rowCount);
  return image.Bytes(layout.Address(*header, layout.tableOffset), layout.row * count);
}

}  // namespace

bool IsCutShort(const ImageReader& image) {
  const Layout* layout = LayoutOf(image);
  if (layout == nullptr) return false;
  const auto rows = ProgramHeaders(image, *layout);
  if (!rows) return true;

  constexpr uint32_t kLoadedSegment = 1;
  const uint64_t end = image.Size();
  for (std::size_t at = 0; at < rows->size(); at += layout->row) {
    if (Load<uint32_t>(*rows, at) != kLoadedSegment) continue;
    const uint64_t offset = layout->Address(*rows, at + layout->offset);
    if (offset > end || layout->Address(*rows, at + layout->size) > end - offset) return true;
  }
  return false;
}

std::string VersionBlockOfElf(const ImageReader& image) {
  const Layout* layout = LayoutOf(image);
  if (layout == nullptr) return {};
  const auto rows = ProgramHeaders(image, *layout);
  if (!rows) return {};

  constexpr uint32_t kNoteSegment = 4;
  Notes notes(image);
  for (std::size_t at = 0; at < rows->size(); at += layout->row) {
    if (Load<uint32_t>(*rows, at) != kNoteSegment) continue;
    const Segment segment{layout->Address(*rows, at + layout->offset),
                          layout->Address(*rows, at + layout->size),
                          layout->Address(*rows, at + layout->alignment) == 8 ? 8u : 4u};
    if (auto block = notes.BlockIn(segment)) return std::move(*block);
  }
  return {};
}

}  // namespace kvshare::os
