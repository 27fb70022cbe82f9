#include "kvshare/text/strings.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using S = TKovraString;

TEST(Strings, PadsAndCuts) {
  struct Case {
    std::string (*pad)(std::string_view, SmallInt);
    std::string_view text;
    SmallInt width;
    std::string_view want;
  };
  constexpr Case kCases[] = {
      {S::Pad, "ABC", 5, "ABC  "},    {S::PadLeft, "ABC", 5, "  ABC"},
      {S::PadZero, "42", 5, "42000"}, {S::PadLeftZero, "42", 5, "00042"},
      {S::Pad, "ABCDEF", 3, "ABC"},   {S::PadLeft, "ABCDEF", 3, "ABC"},
      {S::PadLeft, "ABC", -1, ""},    {S::PadLeft, "บาท"_th, 4, " บาท"_th},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.pad(c.text, c.width), c.want) << c.text << c.width;
  EXPECT_EQ(S::PadLeft("x", 32767).size(), 32767u);
}

TEST(Strings, TextsFromTexts) {
  struct Case {
    std::string (*change)(std::string_view);
    std::string_view text, want;
  };
  constexpr Case kCases[] = {
      {S::ChangeSlashToCRLF, "a//b//c", "a\r\nb\r\nc"},
      {S::ChangeSlashToCRLF, "///", "\r\n/"},
      {S::ChangeCRLFToSpace, "a\r\r\n\nb\r\n", "a\r  \nb  "},
      {S::Change1To2Quote, "it''s", "it\"\"s"},
      {S::RemoveComma, ",1,234,,567.00,", "1234567.00"},
      {S::FirstOccur, "one two", "one"},
      {S::FirstOccur, " one", ""},
      {S::StripNumber, "12.Sales", "Sales"},
      {S::StripNumber, "-3.a.b", "a.b"},
      {S::StripNumber, "$1F.x", "x"},
      {S::StripNumber, "A.Sales", "A.Sales"},
      {S::StripNumber, ".Sales", ".Sales"},
      {S::StripNumber, "99999999999.x", "99999999999.x"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.change(c.text), c.want) << c.text;
  EXPECT_EQ(S::Space(2) + S::Replicate('-', 2) + S::Replicate('-', -1), "  --");
  EXPECT_EQ(S::RemoveString("ab", "xabyab"), "xyab");
  EXPECT_EQ(S::RemoveString("", "xab"), "xab");
  EXPECT_EQ(S::Bool2Str(true) + S::Logical(false), "YN");
}

TEST(Strings, Questions) {
  EXPECT_TRUE(S::IsStartWith("abc", ""));
  EXPECT_FALSE(S::IsStartWith("abc", "AB"));
  EXPECT_FALSE(S::IsStartWith("ab", "abc"));
  EXPECT_EQ(S::CountDelimeter("a,b,,c", ','), 3);
  EXPECT_TRUE(S::Empty(Null));
  EXPECT_TRUE(S::Empty(Unassigned));
  EXPECT_TRUE(S::Empty(" \t\r\n"));
  EXPECT_FALSE(S::Empty("\xA0")) << "a no-break space is no blank";
}

TEST(Strings, NthPlace) {
  struct Case {
    std::string_view part, text;
    int n, want;
  };
  constexpr Case kCases[] = {
      {",", "a,b,c", 1, 2},   {",", "a,b,c", 2, 4}, {",", "a,b,c", 3, 0}, {"aa", "aaa", 2, 2},
      {"aba", "ababa", 2, 3}, {"A", "aA", 1, 2},    {"", "abc", 1, 0},    {",", "a,b", 0, 0},
      {",", "a,b", -1, 0},    {"abc", "ab", 1, 0},
  };
  for (const Case& c : kCases) EXPECT_EQ(S::BStrPos(c.part, c.text, c.n), c.want) << c.part << c.n;
}

TEST(Strings, OverwritesInPlace) {
  using Move = void (*)(std::string_view, std::string&, int, int);
  struct Case {
    Move move;
    std::string_view source;
    int count, position;
    std::string_view want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {S::MoveLStr, "XY", 0, 4, "abcXYf", "all of the source"},
      {S::MoveLStr, "XY", 0, 6, "abcdeX", "cut at the end"},
      {S::MoveLStr, "XY", 1, 1, "Xbcdef", "the first of the source"},
      {S::MoveLStr, "XY", 9, 1, "XYcdef", "no more than the source has"},
      {S::MoveLStr, "XY", 0, 7, "abcdef", "past the end"},
      {S::MoveLStr, "XY", 0, 0, "abcdef", "before the start"},
      {S::MoveRStr, "XY", 4, 2, "abcXYf", "right-aligned"},
      {S::MoveRStr, "XYZ", 2, 1, "YZcdef", "the last of the source"},
      {S::MoveRStr, "XY", 5, 2, "abcdXY", "the field ends with the destination"},
      {S::MoveRStr, "XY", 9, 2, "abcdXY", "a cut field does not read before the source"},
      {S::MoveRStr, "XYZ", 9, 5, "abcdYZ", "the cut field is shorter than the source"},
      {S::MoveRStr, "XY", 2147483647, 6, "abcdeY", "no overflow"},
      {S::MoveRStr, "XY", 0, 4, "aXYdef", "count 0 ends just before the position"},
      {S::MoveRStr, "XYZ", 0, 3, "YZcdef", "less what stands before the start"},
      {S::MoveRStr, "XY", 0, 7, "abcdef", "past the end"},
      {S::MoveRStr, "XY", 4, 0, "abcdef", "before the start"},
  };
  for (const Case& c : kCases) {
    std::string destination = "abcdef";
    c.move(c.source, destination, c.count, c.position);
    EXPECT_EQ(destination, c.want) << c.why;
  }
  std::string own = "abcdef";
  S::MoveLStr(own, own, -1, 3);
  S::MoveRStr(own, own, -1, 3);
  S::MoveLStr(own, own, 0, 1);
  EXPECT_EQ(own, "abcdef") << "negative counts, and itself over itself";
  S::MoveLStr(own, own, 0, 3);
  EXPECT_EQ(own, "ababcd") << "the bytes of before the call";
}

TEST(ChangeString, Examples) {
  struct Case {
    std::string_view text, old, with, want, why;
  };
  constexpr Case kCases[] = {
      {"Tax TAX tax", "tax", "VAT", "VAT VAT VAT", "letter case is ignored"},
      {"taxax", "tax", "VAT", "VAVAT", "what a replacement completes"},
      {"aabb", "ab", "", "", "what a removal brings together"},
      {"abc", "", "x", "abc", "an empty part is nowhere"},
      {"ab", "abc", "abcd", "ab", "nothing to replace, nothing to refuse"},
      {"\xE1\xC1", "\xC1", "x", "\xE1x", "Thai bytes have no letter case"},
      {"`@", "@", "x", "`x", "neither have signs"},
      {std::string_view("a\0b", 3), std::string_view("\0", 1), "", "ab", "a zero byte is a byte"},
  };
  for (const Case& c : kCases) EXPECT_EQ(S::ChangeString(c.text, c.old, c.with), c.want) << c.why;
}

TEST(ChangeString, RefusesWhatNeverEnds) {
  const auto refusal = [](std::string_view text, std::string_view old, std::string_view with) {
    return MessageOf<EConvertError>([&] { S::ChangeString(text, old, with); });
  };
  EXPECT_EQ(refusal("the tax", "tax", "[TAX]"), "'[TAX]' cannot replace 'tax', which it contains");
  const std::string wide = "bb" + std::string(1000, 'c') + "aa";
  EXPECT_EQ(refusal("aab", "ab", wide), "Replacing 'ab' by '" + wide + "' does not come to an end");
}

// Sorting takes a replacement of two bytes for each pair, nearly all of them in what was inserted.
TEST(ChangeString, EndsAtItsLimit) {
  const auto sorted = [](std::size_t letters) {
    const std::string a(letters, 'a'), b(letters, 'b');
    return S::ChangeString(a + b, "ab", "ba") == b + a;
  };
  EXPECT_TRUE(sorted(2890)) << "16,704,200 bytes";
  EXPECT_THROW(sorted(2905), EConvertError) << "16,878,050 bytes, past 2^24 and the text's 5,810";
}

// The steps as they are described: search, delete, insert, from the start again.
std::optional<std::string> ChangeByTheSteps(std::string text, std::string_view old,
                                            std::string_view with) {
  const std::string upper = UpperCase(old);
  for (int step = 0; step < 100; ++step) {
    const int at = Pos(upper, UpperCase(text));
    if (at == 0) return text;
    Delete(text, at, static_cast<int>(old.size()));
    Insert(with, text, at);
  }
  return std::nullopt;
}

TEST(ChangeString, EqualsTheSteps) {
  std::mt19937 random(874);  // NOLINT(cert-msc51-cpp): the same texts in every run
  const auto word = [&](std::string_view letters, unsigned longest) {
    std::string out(random() % (longest + 1), ' ');
    for (char& c : out) c = letters[random() % letters.size()];
    return out;
  };
  // Short words of few letters, and long ones that nearly repeat themselves.
  struct Kind {
    std::string_view letters;
    unsigned longestOld, longestText;
  };
  constexpr Kind kKinds[] = {{"abB", 4, 24}, {"abcAx", 4, 24}, {"aaaaaab", 14, 60}};
  int changed = 0;
  for (int i = 0; i < 60'000; ++i) {
    const Kind& kind = kKinds[i % 3];
    const std::string old = word(kind.letters, kind.longestOld);
    const std::string with = word(kind.letters, kind.longestOld + 1);
    const std::string text = word(kind.letters, kind.longestText);
    if (!old.empty() && Pos(UpperCase(old), UpperCase(with)) != 0) continue;
    const std::optional<std::string> want = ChangeByTheSteps(text, old, with);
    if (!want) continue;
    ASSERT_EQ(S::ChangeString(text, old, with), *want) << text << ": " << old << " -> " << with;
    changed += *want != text ? 1 : 0;
  }
  EXPECT_GT(changed, 15'000);
}

TEST(Strings, LongTextsThatRepeatThemselves) {
  constexpr int kHalf = 300'000;  // squared, it would take minutes
  const std::string a(kHalf, 'a');
  const std::string b(kHalf, 'b');
  EXPECT_EQ(S::ChangeString(a + b, "ab", ""), "");
  EXPECT_EQ(S::ChangeString(a + a, a + "b", "x"), a + a);
  EXPECT_EQ(S::RemoveString(a + "b", a + a + "bc"), a + "c");
  EXPECT_EQ(S::BStrPos(a, a + a, kHalf + 1), kHalf + 1);
  EXPECT_EQ(S::ChangeSlashToCRLF(std::string(kHalf, '/')).find('/'), std::string::npos);
}

}  // namespace
}  // namespace kvshare
