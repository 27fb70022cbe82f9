#include "kvshare/data/records/uniqueindex.h"

#include <bit>
#include <functional>

namespace kvshare::data {

namespace {

constexpr std::uint64_t Mix(std::uint64_t value) {
  value ^= value >> 32;
  value *= 0xD6E8FEB86659FD93;
  value ^= value >> 32;
  value *= 0xD6E8FEB86659FD93;
  return value ^ (value >> 32);
}

std::uint64_t Bits(const Cell& cell) {
  switch (cell.kind) {
    case CellKind::Integer:
      return static_cast<std::uint64_t>(cell.integer);
    case CellKind::Real:
      // Both zeros are one key, and so are all NaNs.
      if (cell.real != cell.real) return 1;
      return std::bit_cast<std::uint64_t>(cell.real == 0 ? 0.0 : cell.real);
    case CellKind::Text:
      return std::hash<std::string_view>()(cell.text);
    case CellKind::Null:
      break;
  }
  return 0;
}

}  // namespace

// Sixteen whole numbers that follow each other stay side by side: keys are mostly counted up, and a
// cache line has room for eight.
std::uint32_t HashOf(const Cell& cell, std::uint32_t seed) {
  constexpr std::uint32_t kNear = 15;
  const std::uint64_t kind = static_cast<std::uint64_t>(cell.kind) << 32;
  const std::uint64_t bits = Bits(cell);
  if (cell.kind != CellKind::Integer) {
    return static_cast<std::uint32_t>(Mix(bits + Mix(seed + kind)));
  }
  const auto far =
      static_cast<std::uint32_t>(Mix((bits & ~std::uint64_t{kNear}) + Mix(seed + kind)));
  return (far & ~kNear) | (static_cast<std::uint32_t>(bits + seed) & kNear);
}

// Moves what stands behind the gap and would not be found across it.
void UniqueIndex::Remove(std::uint32_t hash, RowId row) {
  std::size_t gap = hash & Mask();
  while (slots_[gap].row != row) gap = (gap + 1) & Mask();
  for (std::size_t at = (gap + 1) & Mask(); slots_[at].row != kNoRow; at = (at + 1) & Mask()) {
    const std::size_t home = slots_[at].hash & Mask();
    if (((at - home) & Mask()) < ((at - gap) & Mask())) continue;
    slots_[gap] = slots_[at];
    gap = at;
  }
  slots_[gap] = Slot();
  --count_;
}

void UniqueIndex::Grow() {
  constexpr std::size_t kSmallest = 16;
  std::vector<Slot> old(slots_.empty() ? kSmallest : slots_.size() * 2);
  old.swap(slots_);
  for (const Slot& slot : old) {
    if (slot.row != kNoRow) Place(slot);
  }
}

}  // namespace kvshare::data
