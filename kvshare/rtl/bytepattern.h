// A text to look for, prepared once. Programs use Pos and the text helpers.
// Internal header.
#pragma once

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

using FoldTable = std::array<char, 256>;

constexpr FoldTable MakeFoldTable(bool upper) {
  FoldTable table{};
  for (unsigned i = 0; i < 256; ++i) {
    const char c = static_cast<char>(i);
    table[i] = upper ? UpCase(c) : c;
  }
  return table;
}
inline constexpr FoldTable kSameLetters = MakeFoldTable(false);
inline constexpr FoldTable kUpperLetters = MakeFoldTable(true);

// The automaton of Knuth, Morris and Pratt (1977): one step a byte whatever the texts are, where
// comparing at every position takes the product of both lengths for texts that repeat themselves.
// Places where its first eight bytes do not stand are passed over, sixteen at a time.
class BytePattern {
 public:
  enum class Letters : unsigned char { AsTheyAre, IgnoringCase };
  static constexpr std::size_t kNowhere = std::string_view::npos;

  // `pattern` is not empty and outlives this.
  explicit BytePattern(std::string_view pattern, Letters letters = Letters::AsTheyAre)
      : fold_(letters == Letters::IgnoringCase ? kUpperLetters : kSameLetters),
        bytes_(pattern),
        headSize_(std::min(pattern.size(), kMostHead)),
        secondPlace_(pattern.size() > 1 ? 1 : 0) {
    PrepareHead();
    PrepareBorders();
  }
  BytePattern(const BytePattern&) = delete;
  BytePattern& operator=(const BytePattern&) = delete;

  std::size_t Size() const { return bytes_.size(); }

  // A text ends with the first `matched` bytes of the pattern (0 .. Size() - 1) and no more of
  // them; how many once `c` follows.
  std::size_t Step(std::size_t matched, char c) const {
    const char folded = Fold(c);
    while (Fold(bytes_[matched]) != folded) {
      if (matched == 0) return 0;
      matched = borders_[matched];
    }
    return matched + 1;
  }

  // Whether the byte stands in the pattern behind its first.
  bool HasInside(char c) const {
    const auto same = [this, folded = Fold(c)](char other) { return Fold(other) == folded; };
    return std::any_of(bytes_.begin() + 1, bytes_.end(), same);
  }

  // Reads on at `at`, where `matched` bytes have been matched (as for Step), until the pattern has
  // been read whole; false at the end of the text.
  bool ReadToMatch(std::string_view text, std::size_t& at, std::size_t& matched) const {
    for (;;) {
      if (matched == 0) {
        at = FindHead(text, at);
        if (at == text.size()) return false;
        at += headSize_;
        matched = headSize_;
      } else {
        if (at == text.size()) return false;
        matched = Step(matched, text[at++]);
      }
      if (matched == bytes_.size()) return true;
    }
  }

  // The place of an occurrence, the first by default, overlapping ones counted; or kNowhere.
  std::size_t FindIn(std::string_view text, int occurrence = 1) const {
    std::size_t at = 0;
    std::size_t matched = 0;
    while (ReadToMatch(text, at, matched)) {
      if (--occurrence == 0) return at - bytes_.size();
      matched = borders_[matched];
    }
    return kNowhere;
  }

 private:
  static_assert(std::endian::native == std::endian::little, "words hold the first byte lowest");
  static constexpr std::size_t kMostHead = 8;

  // Sixteen bytes that are compared at once.
  using Block = std::uint8_t __attribute__((vector_size(16)));

  // What bytes must be, in the bits that count: a letter differs from its other case in one.
  template <typename Word>
  struct Wanted {
    Word bytes{};
    Word bits{};
    auto StandsAt(const char* text) const {
      Word word;
      std::memcpy(&word, text, sizeof word);
      return (word & bits) == bytes;
    }
  };

  char Fold(char c) const { return fold_[static_cast<unsigned char>(c)]; }

  Wanted<std::uint8_t> WantedAt(std::size_t i) const {
    const auto byte = static_cast<std::uint8_t>(Fold(bytes_[i]));
    const bool isLetter = byte >= 'A' && byte <= 'Z' && &fold_ == &kUpperLetters;
    return {byte, static_cast<std::uint8_t>(isLetter ? 0xDF : 0xFF)};
  }

  Wanted<Block> BlockOf(std::size_t i) const {
    const Wanted<std::uint8_t> wanted = WantedAt(i);
    return {Block{} + wanted.bytes, Block{} + wanted.bits};
  }

  void PrepareHead() {
    for (std::size_t i = headSize_; i-- > 0;) {
      const Wanted<std::uint8_t> wanted = WantedAt(i);
      head_ = {head_.bytes << 8 | wanted.bytes, head_.bits << 8 | wanted.bits};
    }
    first_ = BlockOf(0);
    second_ = BlockOf(secondPlace_);
  }

  void PrepareBorders() {
    if (bytes_.size() >= fewBorders_.size()) manyBorders_.resize(bytes_.size() + 1);
    borders_ = manyBorders_.empty() ? fewBorders_.data() : manyBorders_.data();
    borders_[0] = borders_[1] = 0;
    for (std::size_t i = 1; i < bytes_.size(); ++i) borders_[i + 1] = Step(borders_[i], bytes_[i]);
  }

  bool IsHeadAt(std::string_view text, std::size_t place) const {
    if (text.size() - place >= kMostHead) return head_.StandsAt(text.data() + place);
    char padded[kMostHead] = {};
    text.copy(padded, kMostHead, place);
    return text.size() - place >= headSize_ && head_.StandsAt(padded);
  }

  // The places in the block at `at` where the first two bytes stand, a bit each, the first lowest.
  unsigned CandidatesAt(const char* at) const {
    const auto both = first_.StandsAt(at) & second_.StandsAt(at + secondPlace_);
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_epi8(std::bit_cast<__m128i>(both)));
#else
    const auto halves = std::bit_cast<std::array<std::uint64_t, 2> >(both);
    return BitOfEachByte(halves[0]) | BitOfEachByte(halves[1]) << 8;
#endif
  }

  // Of bytes that are 0 or 255: bit n of byte n moves to bit n of the topmost byte.
  static unsigned BitOfEachByte(std::uint64_t word) {
    return static_cast<unsigned>((word & 0x8040201008040201) * 0x0101010101010101 >> 56);
  }

  // The first place from `from` on where the head of the pattern stands; the length of the text
  // where there is none.
  std::size_t FindHead(std::string_view text, std::size_t from) const {
    if (text.size() - from < bytes_.size()) return text.size();
    const std::size_t reach = sizeof(Block) + secondPlace_;  // bytes that CandidatesAt reads
    if (text.size() < reach) {
      while (from < text.size() && !IsHeadAt(text, from)) ++from;
      return from;
    }
    const std::size_t last = text.size() - reach;
    for (std::size_t at = from;; at += sizeof(Block)) {
      const std::size_t block = std::min(at, last);  // at - block < 16, as the pattern fits behind
      unsigned left = CandidatesAt(text.data() + block) >> (at - block);
      for (; left != 0; left &= left - 1) {
        const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(left));
        if (IsHeadAt(text, place)) return place;
      }
      if (block == last) return text.size();
    }
  }

  const FoldTable& fold_;
  const std::string_view bytes_;
  const std::size_t headSize_;
  const std::size_t secondPlace_;  // of the only byte when there is one
  Wanted<std::uint64_t> head_;     // the first bytes, the bits behind them do not count
  Wanted<Block> first_;
  Wanted<Block> second_;

  // [n]: the length of the longest proper end of the first n bytes that begins them too.
  std::size_t* borders_ = nullptr;
  std::array<std::size_t, 32> fewBorders_;
  std::vector<std::size_t> manyBorders_;
};

}  // namespace kvshare::inline rtl
