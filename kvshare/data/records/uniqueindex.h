// Which row has a key: open addressing, linear probing.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "kvshare/data/records/record.h"

namespace kvshare::data {

using RowId = std::uint32_t;
inline constexpr RowId kNoRow = 0xFFFFFFFF;

// Equal cells have equal hashes; `seed` chains the columns of a key.
std::uint32_t HashOf(const Cell& cell, std::uint32_t seed);

// Rows by the hash of their key; whoever asks compares the keys. The index holds no key itself, so
// that it costs 12 to 24 bytes a row, whatever the keys are.
class UniqueIndex {
 public:
  // The row with that hash for which `same` is true; kNoRow.
  template <typename Same>
  RowId Find(std::uint32_t hash, Same same) const {
    if (slots_.empty()) return kNoRow;
    for (std::size_t at = hash & Mask();; at = (at + 1) & Mask()) {
      const Slot& slot = slots_[at];
      if (slot.row == kNoRow) return kNoRow;
      if (slot.hash == hash && same(slot.row)) return slot.row;
    }
  }

  // Without looking: the caller has made sure that the key is new.
  void Insert(std::uint32_t hash, RowId row) {
    if ((count_ + 1) * 3 > slots_.size() * 2) Grow();
    Place({hash, row});
    ++count_;
  }
  // Moves the rows behind it up, so that no marks of removed rows slow down a search.
  void Remove(std::uint32_t hash, RowId row);
  void Clear() {
    slots_.clear();
    count_ = 0;
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    RowId row = kNoRow;
  };
  std::size_t Mask() const { return slots_.size() - 1; }
  void Place(Slot slot) {
    std::size_t at = slot.hash & Mask();
    while (slots_[at].row != kNoRow) at = (at + 1) & Mask();
    slots_[at] = slot;
  }
  void Grow();

  std::vector<Slot> slots_;  // a power of two, a third of them free at least
  std::size_t count_ = 0;
};

}  // namespace kvshare::data
