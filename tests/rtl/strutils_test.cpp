#include "kvshare/rtl/strutils.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/random.h"

namespace kvshare {
namespace {

TEST(StrUtils, TrimDropsEveryByteUpToTheBlank) {
  const std::string_view text("\0\t\r\n \x1F\xA0 a b \xA0\0 \n", 17);
  EXPECT_EQ(Trim(text), "\xA0 a b \xA0") << "a no-break space is a letter";
  EXPECT_EQ(Trim("\t \r"), "");
}

TEST(StrUtils, OnlyAsciiLettersHaveCase) {
  for (int i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(i));
    const bool upper = i >= 'A' && i <= 'Z';
    const bool lower = i >= 'a' && i <= 'z';
    EXPECT_EQ(UpperCase(byte)[0], static_cast<char>(lower ? i - 32 : i)) << i;
    EXPECT_EQ(LowerCase(byte)[0], static_cast<char>(upper ? i + 32 : i)) << i;
  }
}

TEST(StrUtils, CopyDeleteInsertClampTheirRange) {
  struct Case {
    int index, count;
    std::string_view copied, left;
  };
  constexpr Case kCases[] = {
      {0, 2, "ab", "abc"},        {-1, 2, "ab", "abc"},
      {1, 2, "ab", "c"},          {2, 99, "bc", "a"},
      {3, 1, "c", "ab"},          {4, 1, "", "abc"},
      {2, 0, "", "abc"},          {2, -5, "", "abc"},
      {2, 0x7FFFFFFF, "bc", "a"}, {-0x7FFFFFFF - 1, 1, "a", "abc"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::to_string(c.index) + "," + std::to_string(c.count));
    std::string text = "abc";
    EXPECT_EQ(Copy(text, c.index, c.count), c.copied);
    Delete(text, c.index, c.count);
    EXPECT_EQ(text, c.left);
  }
  std::string text = "abc";
  Insert("<", text, -3);
  Insert("-", text, 3);
  Insert(">", text, 99);
  EXPECT_EQ(text, "<a-bc>");
}

TEST(StrUtils, ComparesFoldedUnsignedBytes) {
  struct Case {
    std::string_view a, b;
    int folded, bytes;
  };
  constexpr Case kCases[] = {
      {"abc", "ABC", 0, 1}, {"a", "B", -1, 1}, {"ab", "A", 1, 1},  {"_", "a", 1, -1},
      {"\xA1", "z", 1, 1},  {"", "a", -1, -1}, {"[", "{", -1, -1}, {"\xA1z", "\xA2", -1, -1},
  };
  const auto sign = [](int n) { return (n > 0) - (n < 0); };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.a) + "|" + std::string(c.b));
    EXPECT_EQ(sign(CompareText(c.a, c.b)), c.folded);
    EXPECT_EQ(sign(AnsiCompareText(c.b, c.a)), -c.folded);
    EXPECT_EQ(sign(AnsiCompareStr(c.a, c.b)), c.bytes);
    EXPECT_EQ(SameText(c.a, c.b), c.folded == 0);
  }
}

TEST(StrUtils, PosFindsWhatAPlainSearchFinds) {
  EXPECT_EQ(Pos("bc", "abcbc"), 2);
  EXPECT_EQ(Pos("บาท"_th, "ห้าบาทถ้วน"_th), 4);
  // Two letters only, so that long texts nearly match in many places.
  for (int round = 0; round < 3000; ++round) {
    std::string text(static_cast<std::size_t>(Random(300)), 'a');
    for (char& c : text) c = Random(20) == 0 ? 'b' : 'a';
    std::string sub = std::string(Copy(text, Random(300), 1 + Random(80)));
    if (!sub.empty() && Random(4) == 0) sub.back() = 'c';
    EXPECT_EQ(Pos(sub, text), sub.empty() ? 0 : static_cast<int>(text.find(sub) + 1));
  }
}

TEST(StrUtils, StringReplace) {
  constexpr TReplaceFlags kAll{true, false};
  constexpr TReplaceFlags kFolded{true, true};
  struct Case {
    std::string_view text, old, with;
    TReplaceFlags flags;
    std::string_view want;
  };
  constexpr Case kCases[] = {{"aXaXa", "X", "--", {}, "a--aXa"},
                             {"aXaXa", "X", "", kAll, "aaa"},
                             {"aXaxa", "x", "xx", kFolded, "axxaxxa"},
                             {"aaa", "aa", "a", kAll, "aa"},
                             {"abc", "", "x", kAll, "abc"},
                             {"ab", "abc", "x", kAll, "ab"},
                             {"", "a", "x", kAll, ""}};
  for (const Case& c : kCases) EXPECT_EQ(StringReplace(c.text, c.old, c.with, c.flags), c.want);
  const std::string key(40, 'k');
  EXPECT_EQ(StringReplace(key + "k." + key, UpperCase(key), "!", kFolded), "!k.!")
      << "a text too long for the short search";
}

TEST(StrUtils, QuotesBreaksAndRuns) {
  EXPECT_EQ(QuotedStr("a'b"), "'a''b'");
  EXPECT_EQ(AdjustLineBreaks("a\rb\nc\r\nd\n\re\r\r\n"), "a\r\nb\r\nc\r\nd\r\n\r\ne\r\n\r\n");
  EXPECT_EQ(StringOfChar('x', 3) + StringOfChar('y', 0) + StringOfChar('z', -1), "xxx");
}

TEST(Random, StepsTheDocumentedSequence) {
  RandSeed = 0;
  EXPECT_EQ(Random(0), 0);
  EXPECT_EQ(RandSeed, 1u) << "a range of 0 steps the seed too";
  EXPECT_EQ(Random(1000), 31) << "134775814 * 1000 / 2^32";
  EXPECT_EQ(RandSeed, 134775814u);
  for (int i = 0; i < 1000; ++i) {
    const int value = Random(7);
    EXPECT_TRUE(value >= 0 && value < 7);
  }
  Randomize();
  const std::uint32_t first = RandSeed;
  Randomize();
  EXPECT_NE(RandSeed, first);
}

}  // namespace
}  // namespace kvshare
