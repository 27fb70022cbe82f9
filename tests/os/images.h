// Files of programs, byte by byte, with a version resource in them.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/os/version/imagereader.h"

namespace kvshare::os {

class MemoryImage : public ImageReader {
 public:
  explicit MemoryImage(std::string_view bytes) : bytes_(bytes) {}
  std::uint64_t Size() const override { return bytes_.size(); }

 private:
  bool Fill(std::uint64_t offset, std::span<char> to) const override {
    std::ranges::copy(bytes_.substr(offset, to.size()), to.begin());
    return true;
  }
  std::string_view bytes_;
};

// Puts little-endian numbers of the given types.
template <std::unsigned_integral... T>
std::string Numbers(T... values) {
  std::string bytes;
  const auto put = [&bytes](std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  };
  (put(values, sizeof values), ...);
  return bytes;
}
inline std::string Half(std::uint16_t value) {
  return Numbers(value);
}
template <typename... T>
std::string Words(T... values) {
  return Numbers(static_cast<std::uint32_t>(values)...);
}
inline std::string Zeros(std::size_t count) {
  return std::string(count, '\0');
}

// The parts of an image that tests damage: where each begins.
struct Image {
  std::string bytes;
  std::size_t tables = 0;     // section rows, program headers
  std::size_t resources = 0;  // the root directory, the note segment
};

// A resource tree with a named type, an icon and the version, two languages deep, in its second
// section.
inline Image MakePe(std::string_view block, bool wide) {
  constexpr unsigned kSub = 0x80000000;
  constexpr unsigned kMemory = 0x3000;
  Image image;
  std::string& bytes = image.bytes;
  const std::size_t directories = wide ? 112 : 96;
  bytes = "MZ";
  bytes += Zeros(58) + Words(0x48) + Zeros(8);
  bytes += "PE";
  bytes += Zeros(2) + Half(wide ? 0x8664 : 0x14C) + Half(2) + Zeros(12) +
           Half(static_cast<std::uint16_t>(directories + 128)) + Half(0x102);
  bytes += Half(wide ? 0x20B : 0x10B) + Zeros(directories - 6) + Words(16);
  bytes += Zeros(16) + Words(kMemory, 104 + block.size()) + Zeros(13 * 8);
  image.tables = bytes.size();
  image.resources = (image.tables + 2 * 40 + 511) / 512 * 512 + 512;
  bytes += ".text";
  bytes += Zeros(3) + Words(16, 0x1000, 512, image.resources - 512) + Zeros(16);
  bytes += ".rsrc";
  bytes += Zeros(3) + Words(104 + block.size(), kMemory, 104 + block.size(), image.resources);
  bytes += Zeros(16);
  bytes.resize(image.resources);

  const auto directory = [](std::uint16_t named, std::uint16_t ids) {
    return Zeros(12) + Half(named) + Half(ids);
  };
  bytes += directory(1, 2) + Words(kSub | 88, 88, 3, kSub | 64, 16, kSub | 40);
  bytes += directory(0, 1) + Words(1, kSub | 64);
  bytes += directory(0, 1) + Words(1054, 88);
  bytes += Words(kMemory + 104, block.size(), 0, 0);
  bytes += block;
  return image;
}

inline std::string MakeNote(std::string_view owner, unsigned type, std::string_view text,
                            std::size_t alignment = 4) {
  std::string note = Words(owner.size(), text.size(), type);
  const auto align = [&] { note.resize((note.size() + alignment - 1) / alignment * alignment); };
  note += owner;
  align();
  note += text;
  align();
  return note;
}
inline constexpr std::string_view kOwner{"KvShare", 8};

// One loaded segment, then one of the given notes.
inline Image MakeElf(std::string_view notes, bool wide, std::uint64_t alignment = 4) {
  Image image;
  image.tables = wide ? 64 : 52;
  image.resources = image.tables + 2 * (wide ? 56u : 32u);
  const auto number = [wide](std::uint64_t value) { return wide ? Numbers(value) : Words(value); };
  const auto segment = [&](unsigned type, std::uint64_t offset, std::uint64_t size) {
    return Words(type) + (wide ? Words(4) : "") + number(offset) + number(0) + number(0) +
           number(size) + number(size) + (wide ? "" : Words(4)) + number(alignment);
  };
  std::string& bytes = image.bytes;
  bytes =
      "\x7F"
      "ELF";
  bytes += std::string(1, wide ? '\2' : '\1') + "\1\1" + Zeros(9);
  bytes += Half(3) + Half(wide ? 62 : 3) + Words(1) + number(0) + number(image.tables) + number(0) +
           Words(0) + Half(static_cast<std::uint16_t>(image.tables)) + Half(wide ? 56 : 32) +
           Half(2) + Zeros(6);
  bytes += segment(1, 0, 16) + segment(4, image.resources, notes.size());
  bytes += notes;
  return image;
}

}  // namespace kvshare::os
