// Makes a program's version resource (VS_VERSION_INFO) while the program is compiled, and the ELF
// note in which its file carries it. Stands alone: a program that uses it links nothing for it.
// kvshare_version_resource in CMake writes the source; by hand it is
//
//   namespace vb = kvshare::versionblock;
//   constexpr vb::Text kTexts[] = {{u"CompanyName", u"บริษัท ตัวอย่าง จำกัด"}, {u"ProductVersion",
//   u"5.2"}}; constexpr vb::Table kTables[] = {{1054, 874, kTexts}}; constexpr vb::Source
//   kSource{{5, 2, 0, 0}, {5, 2, 0, 0}, kTables};
//   [[gnu::used, gnu::retain, gnu::section(".note.kvshare")]] alignas(4) constexpr auto kNote =
//       vb::MakeNote<kSource>();
//
// What does not fit (a resource of more than 65,535 bytes) and a text with a zero in it stop the
// compiler.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kvshare::versionblock {

struct Text {
  std::u16string_view name;
  std::u16string_view value;
};

// The texts for one language.
struct Table {
  std::uint16_t language = 0;  // 1054 Thai, 1033 English
  std::uint16_t codePage = 0;  // 874, 1252; what readers find the table by, texts are UTF-16
  std::span<const Text> texts;
};

using Number = std::array<std::uint16_t, 4>;  // major, minor, release, build

struct Source {
  Number fileVersion{};
  Number productVersion{};
  std::span<const Table> tables;  // the first is the one that named values come from
};

namespace detail {

// Puts bytes, little-endian, or only counts them where it has no place for them.
class Writer {
 public:
  explicit constexpr Writer(char* to) : to_(to) {}

  constexpr std::size_t Size() const { return at_; }

  constexpr void Put16(std::size_t value) {
    PutByte(value & 0xFF);
    PutByte(value >> 8);
  }
  constexpr void Put32(std::uint32_t value) {
    Put16(value & 0xFFFF);
    Put16(value >> 16);
  }
  // Two 32-bit words, each with its high part first.
  constexpr void Put(const Number& version) {
    for (const std::size_t i : {1u, 0u, 3u, 2u}) Put16(version[i]);
  }
  constexpr void Put(std::u16string_view text) {
    for (const char16_t unit : text) {
      if (unit == 0) throw "a text of a version resource has no zero in it";
      Put16(unit);
    }
    Put16(0);
  }
  constexpr void Align() {
    while (at_ % 4 != 0) PutByte(0);
  }

  // A node begins, up to the place of its value; its length is known at the end.
  constexpr std::size_t Begin(std::u16string_view key, std::size_t valueLength, bool text) {
    Align();
    const std::size_t start = at_;
    Put16(0);
    Put16(valueLength);
    Put16(text ? 1 : 0);
    Put(key);
    Align();
    return start;
  }
  constexpr void End(std::size_t start) {
    const std::size_t length = at_ - start;
    if (length > 0xFFFF) throw "a version resource has at most 65,535 bytes";
    if (to_ == nullptr) return;
    to_[start] = static_cast<char>(length & 0xFF);
    to_[start + 1] = static_cast<char>(length >> 8);
  }

 private:
  constexpr void PutByte(std::size_t value) {
    if (to_ != nullptr) to_[at_] = static_cast<char>(value);
    ++at_;
  }

  char* to_;
  std::size_t at_ = 0;
};

constexpr void PutFixedInfo(Writer& out, const Source& source) {
  constexpr std::uint32_t kSignature = 0xFEEF04BD;
  constexpr std::uint32_t kStructureVersion = 0x00010000;
  out.Put32(kSignature);
  out.Put32(kStructureVersion);
  out.Put(source.fileVersion);
  out.Put(source.productVersion);
  for (int i = 0; i < 7; ++i) out.Put32(0);  // flags, system, kind and date of the file: unsaid
}

constexpr void PutTable(Writer& out, const Table& table) {
  constexpr char16_t kHex[] = u"0123456789ABCDEF";
  char16_t key[8] = {};
  for (unsigned i = 0; i < 4; ++i) {
    key[i] = kHex[table.language >> (12 - 4 * i) & 0xF];
    key[i + 4] = kHex[table.codePage >> (12 - 4 * i) & 0xF];
  }
  const std::size_t node = out.Begin({key, 8}, 0, true);
  for (const Text& text : table.texts) {
    const std::size_t entry = out.Begin(text.name, text.value.size() + 1, true);
    out.Put(text.value);
    out.End(entry);
  }
  out.End(node);
}

constexpr void PutTranslations(Writer& out, std::span<const Table> tables) {
  const std::size_t info = out.Begin(u"VarFileInfo", 0, true);
  const std::size_t node = out.Begin(u"Translation", 4 * tables.size(), false);
  for (const Table& table : tables) {
    out.Put16(table.language);
    out.Put16(table.codePage);
  }
  out.End(node);
  out.End(info);
}

// Puts the whole resource, or measures it when `to` is null.
constexpr std::size_t PutBlock(char* to, const Source& source) {
  constexpr std::size_t kFixedInfoSize = 52;
  Writer out(to);
  const std::size_t root = out.Begin(u"VS_VERSION_INFO", kFixedInfoSize, false);
  PutFixedInfo(out, source);
  const std::size_t strings = out.Begin(u"StringFileInfo", 0, true);
  for (const Table& table : source.tables) PutTable(out, table);
  out.End(strings);
  PutTranslations(out, source.tables);
  out.End(root);
  return out.Size();
}

}  // namespace detail

// The resource's bytes.
template <const Source& source>
consteval auto MakeBlock() {
  std::array<char, detail::PutBlock(nullptr, source)> bytes{};
  detail::PutBlock(bytes.data(), source);
  return bytes;
}

inline constexpr std::uint32_t kNoteType = 16;  // the platform's number of version resources

// An ELF note with the owner "KvShare", in the byte order of the machine.
template <std::size_t size>
struct Note {
  std::uint32_t nameSize = 8;
  std::uint32_t blockSize = size;
  std::uint32_t type = kNoteType;
  std::array<char, 8> name = {'K', 'v', 'S', 'h', 'a', 'r', 'e', '\0'};
  std::array<char, (size + 3) / 4 * 4> block{};
};

template <const Source& source>
consteval auto MakeNote() {
  constexpr auto kBlock = MakeBlock<source>();
  Note<kBlock.size()> note;
  for (std::size_t i = 0; i < kBlock.size(); ++i) note.block[i] = kBlock[i];
  return note;
}

}  // namespace kvshare::versionblock
