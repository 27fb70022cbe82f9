#include "kvshare/os/version/versionresource.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <vector>

#include "kvshare/os/version/versionresourcebuilder.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/images.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

namespace vb = versionblock;

constexpr vb::Text kThai[] = {{u"CompanyName", u"บริษัท เอก จำกัด"}, {u"ProductVersion", u"5.2"}};
constexpr vb::Text kEnglish[] = {{u"CompanyName", u"Aek Ltd. © 𝄞"}, {u"Comments", u""}};
constexpr vb::Table kTables[] = {{1054, 874, kThai}, {1033, 1252, kEnglish}};
constexpr vb::Source kSource{{5, 1, 2, 3}, {10, 0, 0, 65535}, kTables};
constexpr auto kBuilt = vb::MakeBlock<kSource>();
constexpr std::string_view kBlock(kBuilt.data(), kBuilt.size());

std::string Utf16(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) bytes += Half(unit);
  return bytes;
}

// A node whose length is the length of what it holds, plus `extra`.
std::string Node(std::u16string_view key, std::uint16_t type, std::size_t valueLength,
                 std::string_view value, const std::vector<std::string>& children = {},
                 int extra = 0) {
  std::string body =
      Zeros(2) + Half(static_cast<std::uint16_t>(valueLength)) + Half(type) + Utf16(key) + Zeros(2);
  const auto append = [&body](std::string_view part) {
    body.resize((body.size() + 3) / 4 * 4);
    body += part;
  };
  append(value);
  for (const std::string& child : children) append(child);
  const std::string length =
      Half(static_cast<std::uint16_t>(static_cast<int>(body.size()) + extra));
  return body.replace(0, 2, length);
}
std::string TextNode(std::u16string_view name, std::u16string_view value) {
  return Node(name, 1, value.size() + 1, Utf16(value) + Zeros(2));
}
std::string Fixed(unsigned signature = 0xFEEF04BD) {
  return Words(signature, 0x10000, 0x50001, 0x20003, 0xA0000, 0xFFFF) + Zeros(28);
}
std::string Root(const std::vector<std::string>& children) {
  return Node(u"VS_VERSION_INFO", 0, 52, Fixed(), children);
}
std::string Table(std::u16string_view key, const std::vector<std::string>& texts) {
  return Node(u"StringFileInfo", 1, 0, "", {Node(key, 1, 0, "", texts)});
}

TEST(VersionResource, TheBuilderMakesTheDocumentedBytes) {
  const std::string thai =
      Node(u"041E036A", 1, 0, "",
           {TextNode(u"CompanyName", u"บริษัท เอก จำกัด"), TextNode(u"ProductVersion", u"5.2")});
  const std::string english =
      Node(u"040904E4", 1, 0, "",
           {TextNode(u"CompanyName", u"Aek Ltd. © 𝄞"), TextNode(u"Comments", u"")});
  const std::string translations =
      Numbers(std::uint16_t{1054}, std::uint16_t{874}, std::uint16_t{1033}, std::uint16_t{1252});
  const std::string want =
      Root({Node(u"StringFileInfo", 1, 0, "", {thai, english}),
            Node(u"VarFileInfo", 1, 0, "", {Node(u"Translation", 0, 8, translations)})});
  EXPECT_TRUE(kBlock == want);
}

TEST(VersionResource, Parse) {
  const auto resource = ParseVersionResource(kBlock);
  ASSERT_TRUE(resource);
  EXPECT_EQ(resource->fileVersion, (VersionNumber{5, 1, 2, 3}));
  EXPECT_EQ(resource->productVersion, (VersionNumber{10, 0, 0, 65535}));
  constexpr VersionLanguage kThaiTable{1054, 874};
  constexpr VersionLanguage kEnglishTable{1033, 1252};
  EXPECT_EQ(resource->translations, (std::vector<VersionLanguage>{kThaiTable, kEnglishTable}));
  EXPECT_EQ(resource->MainLanguage(), kThaiTable);
  ASSERT_EQ(resource->strings.size(), 4U);
  EXPECT_EQ(resource->Value(kThaiTable, "companyNAME"), "บริษัท เอก จำกัด"_th);
  EXPECT_EQ(resource->Value(kEnglishTable, "CompanyName"), "Aek Ltd. ? ?") << "letters it lacks";
  EXPECT_EQ(resource->Value(kEnglishTable, "ProductVersion"), "") << "of the other table alone";
  EXPECT_EQ(resource->Value({1054, 1252}, "CompanyName"), "");
}

TEST(VersionResource, UnusualBlocks) {
  const std::u16string_view kKey = u"040904e4";
  const auto company = [](std::string_view bytes, std::size_t length, std::uint16_t type) {
    return Node(u"CompanyName", type, length, bytes);
  };
  struct Case {
    std::string block;
    bool whole;
    std::string_view value;
    const char* why;
  };
  const Case cases[] = {
      {Root({Table(kKey, {TextNode(u"CompanyName", u"Acme")})}), true, "Acme",
       "no translations: English"},
      {Root({Table(kKey, {TextNode(u"CompanyName", u"Acme")})}) + "more", true, "Acme",
       "padded file"},
      {Root({Table(kKey, {company(Utf16(u"Acme") + Zeros(2), 10, 1)})}), true, "Acme",
       "a length in bytes"},
      {Root({Table(kKey, {company(Utf16(u"Acme"), 4, 1)})}), true, "Acme",
       "no zero behind the text"},
      {Root({Table(kKey, {company(Utf16(u"Acme"), 8, 0)})}), true, "Acme", "a text called binary"},
      {Root({Table(kKey, {company(Utf16(u"Acme"), 10, 0)})}), false, "", "binary past its node"},
      {Root({Table(kKey, {TextNode(u"CompanyName", u"Acme"), Zeros(8)})}), true, "Acme",
       "zeros at the end"},
      {Root({Table(u"04090", {TextNode(u"CompanyName", u"Acme")})}), true, "", "no key of a table"},
      {Root({Table(u"0409g4e4", {TextNode(u"CompanyName", u"Acme")})}), true, "", "no digit"},
      {Root({Table(kKey, {TextNode(u"CompanyName", {u"\xD834", 1})})}), true, "?", "half a letter"},
      {Root({Node(u"Unknown", 1, 0, "", {"?????????"}),
             Table(kKey, {TextNode(u"CompanyName", u"A")})}),
       true, "A", "an unknown part is not read"},
      {Root({Table(kKey, {Node(u"CompanyName", 1, 2, Utf16(u"A"), {}, 2)})}), false, "",
       "past its parent"},
      {Root({Table(kKey, {Half(5) + Zeros(6)})}), false, "", "shorter than a node's head"},
      {Root({Table(kKey, {Half(8) + Zeros(4) + "ab"})}), false, "", "a key without an end"},
      {Node(u"VS_VERSION_INFO", 0, 52, Fixed(0xFEEF04BC)), false, "", "signature"},
      {Node(u"VS_VERSION_INFO", 0, 48, Fixed().substr(4)), false, "", "short fixed part"},
      {Node(u"VS_VERSION_INFO", 0, 0, ""), false, "", "no fixed part"},
      {Node(u"VS_VERSION", 0, 52, Fixed()), false, "", "another key"},
      {"", false, "", "nothing"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const auto resource = ParseVersionResource(c.block);
    ASSERT_EQ(resource.has_value(), c.whole);
    if (!resource) continue;
    EXPECT_EQ(resource->Value(resource->MainLanguage(), "CompanyName"), c.value);
  }
}

struct ImageCase {
  const char* name;
  Image image;
};
std::vector<ImageCase> Images() {
  const std::string note =
      MakeNote("GNU", 16, "build id") + MakeNote(kOwner, 1, "other") + MakeNote(kOwner, 16, kBlock);
  return {{"PE 32", MakePe(kBlock, false)},
          {"PE 64", MakePe(kBlock, true)},
          {"ELF 32", MakeElf(note, false)},
          {"ELF 64", MakeElf(note, true)},
          {"notes of eight",
           MakeElf(MakeNote("GNU", 5, "x", 8) + MakeNote(kOwner, 16, kBlock, 8), true, 8)}};
}

std::string BlockOf(std::string_view image) {
  return VersionBlockOfImage(MemoryImage(image));
}

TEST(VersionImages, CarryTheBlock) {
  for (const auto& [name, image] : Images()) EXPECT_TRUE(BlockOf(image.bytes) == kBlock) << name;
  EXPECT_EQ(BlockOf(""), "");
  EXPECT_EQ(BlockOf("#!/bin/sh\n"), "");
}

// A broken image has no block, or one that is read like any other: nothing is read outside it,
// which the sanitizers see.
TEST(VersionImages, EveryCutAndEveryFlippedByte) {
  for (const auto& [name, image] : Images()) {
    for (std::size_t size = 0; size < image.bytes.size(); ++size) {
      const std::string cut = image.bytes.substr(0, size);
      const std::string block = BlockOf(cut);
      EXPECT_TRUE(block.empty() || block == kBlock) << name << " cut to " << size;
    }
    for (std::size_t at = 0; at < image.bytes.size(); ++at) {
      for (const char byte : {'\0', '\xFF'}) {
        std::string flipped = image.bytes;
        flipped[at] = byte;
        const auto resource = ParseVersionResource(BlockOf(flipped));
        ASSERT_TRUE(!resource || resource->strings.size() <= kBlock.size() / 8) << name << at;
      }
    }
  }
  for (std::size_t size = 0; size < kBlock.size(); ++size) {
    EXPECT_FALSE(ParseVersionResource(std::string(kBlock.substr(0, size)))) << size;
  }
}

TEST(VersionImages, LyingHeaders) {
  const Image pe = MakePe(kBlock, false);
  const Image elf = MakeElf(MakeNote(kOwner, 16, kBlock), true);
  const std::size_t r = pe.resources;
  const std::size_t rsrc = pe.tables + 40;
  struct Case {
    const Image* image;
    std::size_t at;
    std::string bytes;
    const char* why;
  };
  const Case cases[] = {
      {&pe, 0x3C, Words(0xFFFFFFFF), "header past the end"},
      {&pe, 0x48 + 6, Half(0xFFFF), "more sections than bytes"},
      {&pe, 0x48 + 20, Half(8), "optional header too short for the directories"},
      {&pe, 0x48 + 24, Half(0x107), "another kind of image"},
      {&pe, 0x48 + 24 + 92, Words(2), "no directory for resources"},
      {&pe, 0x48 + 24 + 112, Words(0), "no resources"},
      {&pe, 0x48 + 24 + 112, Words(0xFFFFFFF0), "resources in no section"},
      {&pe, rsrc + 16, Words(100), "a section that ends before its leaf"},
      {&pe, rsrc + 20, Words(0xFFFFFFF0), "a section past the end"},
      {&pe, r + 12, Words(0xFFFFFFFF), "more entries than bytes"},
      {&pe, r + 16 + 2 * 8, Words(17), "no version among the types"},
      {&pe, r + 16 + 2 * 8 + 4, Words(40), "a leaf for a directory"},
      {&pe, r + 40 + 20, Words(0x80000000 | 40), "a circle"},
      {&pe, r + 64 + 20, Words(0x80000000), "a directory for a leaf"},
      {&pe, r + 64 + 20, Words(0x7FFFFFFF), "a leaf past the section"},
      {&pe, r + 88, Words(0xFFFFFFFF), "a block in no section"},
      {&pe, r + 92, Words(0xFFFFFFFF), "a block without end"},
      {&elf, 4, "\3", "no class"},
      {&elf, 5, "\2", "big-endian"},
      {&elf, 32, Numbers(~std::uint64_t{0}), "program headers past the end"},
      {&elf, 54, Half(57), "program headers of another size"},
      {&elf, 56, Half(0xFFFF), "more program headers than bytes"},
      {&elf, elf.tables + 56 + 8, Numbers(~std::uint64_t{0} - 4), "a segment that wraps"},
      {&elf, elf.tables + 56 + 32, Numbers(~std::uint64_t{0}), "a segment without end"},
      {&elf, elf.resources, Words(0xFFFFFFFF), "a name without end"},
      {&elf, elf.resources + 4, Words(0xFFFFFFFF), "a note without end"},
      {&elf, elf.resources + 8, Words(15), "another type"},
      {&elf, elf.resources + 12, "kvShare", "another owner"},
  };
  for (const Case& c : cases) {
    std::string bytes = c.image->bytes;
    bytes.replace(c.at, c.bytes.size(), c.bytes);
    EXPECT_EQ(BlockOf(bytes), "") << c.why;
  }
  std::string many;
  for (int i = 0; i < 5000; ++i) many += MakeNote("", 0, "");
  EXPECT_EQ(BlockOf(MakeElf(many + MakeNote(kOwner, 16, kBlock), true).bytes), "") << "many notes";
  const std::string large(kLargestVersionBlock + 1, 'x');
  EXPECT_EQ(BlockOf(MakeElf(MakeNote(kOwner, 16, large), true).bytes), "") << "too large";
  EXPECT_EQ(BlockOf(MakePe(large, true).bytes), "") << "too large";
}

TEST(VersionFiles, OnlyWhatIsNeededOfAFile) {
  const TemporaryFolder folder;
  const std::string name = folder.File("ledger");
  Image image = MakeElf(MakeNote(kOwner, 16, kBlock), true);
  const std::string note = image.bytes.substr(image.resources);
  constexpr std::uint64_t kFar = std::uint64_t{5} << 30;
  image.bytes.replace(image.tables + 56 + 8, 8, Numbers(kFar));
  WriteFileBytes(name, image.bytes);
  const int handle = ::open(name.c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_EQ(::pwrite(handle, note.data(), note.size(), kFar), static_cast<ssize_t>(note.size()));
  ::close(handle);
  EXPECT_TRUE(VersionBlockOfFile(name) == kBlock);
  EXPECT_TRUE(VersionBlockOfFile("Z:" + name) == kBlock);
}

TEST(VersionFiles, MissingAndUnreadable) {
  const TemporaryFolder folder;
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& name :
       {folder.File("none"), folder.File("none/x"), pipe, std::string("1:x"),
        folder.Path().string(), folder.File(std::string(300, 'x'))}) {
    EXPECT_EQ(VersionBlockOfFile(name), "") << name;
  }
  const std::string file = folder.File("file");
  MakeUnreadableFile(file);
  EXPECT_EQ(MessageOf<EInOutError>([&] { VersionBlockOfFile(file); }), "No such device or address");
}

}  // namespace
}  // namespace kvshare::os
