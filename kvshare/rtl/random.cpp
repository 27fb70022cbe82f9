#include "kvshare/rtl/random.h"

#include <atomic>
#include <chrono>

namespace kvshare::inline rtl {

namespace {

// Spreads a clock reading over all bits (the finisher of SplitMix64, Steele, Lea and Flood 2014).
constexpr std::uint64_t Spread(std::uint64_t bits) {
  bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9u;
  bits = (bits ^ bits >> 27) * 0x94D049BB133111EBu;
  return bits ^ bits >> 31;
}

}  // namespace

std::uint32_t RandSeed = 0;

std::int32_t Random(std::int32_t range) {
  RandSeed = RandSeed * 134775813u + 1u;
  const std::uint64_t product = std::uint64_t{RandSeed} * static_cast<std::uint32_t>(range);
  return static_cast<std::int32_t>(product >> 32);
}

void Randomize() {
  static std::atomic<std::uint32_t> calls{0};
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  // The odd factor gives each call of one tick a seed of its own.
  RandSeed = static_cast<std::uint32_t>(Spread(static_cast<std::uint64_t>(ticks))) +
             0x9E3779B9u * calls.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace kvshare::inline rtl
