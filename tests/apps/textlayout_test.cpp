#include "apps/receipts/textlayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/recordingprinter.h"

namespace kvshare::receipts {
namespace {

TEST(Layout, Wrap) {
  const struct {
    std::string_view text;
    std::size_t width;
    std::string want;  // pieces with | between
    const char* why;
  } cases[] = {
      {"", 5, "", "one empty piece"},
      {"abcde", 5, "abcde", "fits"},
      {"ab cde fgh", 6, "ab cde|fgh", "at a blank"},
      {"ab cdefgh", 5, "ab|cdefg|h", "before a word, then inside it"},
      {"abcde fg", 5, "abcde|fg", "a blank just past the width is dropped"},
      {"a\tb\nc", 9, "a b c", "control characters"},
      {"ที่นี่ที่นี่"_th, 1, "ที่|นี่|ที่|นี่", "marks stay with their letter and take no column"},
      {"กากากา"_th, 3, "กา|กา|กา", "a vowel stays with its consonant"},
      {"นาเก"_th, 3, "นา|เก", "a vowel in front too"},
      {"าาาา"_th, 2, "าา|าา", "where it cannot, the text still ends"},
  };
  for (const auto& c : cases) {
    std::string joined;
    for (const std::string& piece : Wrap(c.text, c.width)) {
      EXPECT_LE(DisplayWidth(piece), c.width) << c.why;
      if (!joined.empty()) joined.push_back('|');
      joined += Cp874ToUtf8(piece);
    }
    EXPECT_EQ(joined, c.want) << c.why;
  }
}

// A measure of one unit a column splits as columns do, and never asks for an empty text.
// A device of columns that breaks lines behind blanks alone breaks them as columns do.
TEST(Layout, WrapByMeasure) {
  TRecordingPrinter printer;
  const TextDevice device{
      [](std::string_view piece) {
        EXPECT_FALSE(piece.empty());
        return static_cast<int>(DisplayWidth(piece));
      },
      [&printer](std::string_view text) { return printer.Canvas().LineBreaks(text); }};
  const std::string_view texts[] = {"",        "abcde",     "ab cde fgh",     "ab cdefgh",
                                    "a\tb\nc", "กากากา"_th, "ที่นี่ที่นี่ นาเกเก"_th, "าาาา"_th};
  for (const std::string_view text : texts) {
    for (int width = 1; width < 9; ++width) {
      EXPECT_EQ(Wrap(text, width, device), Wrap(text, static_cast<std::size_t>(width)))
          << Cp874ToUtf8(text) << " in " << width;
    }
  }
  EXPECT_EQ(Wrap("ab", -5, device), (std::vector<std::string>{"a", "b"})) << "no room at all";
}

TEST(Layout, TableAlignsByColumns) {
  Table table(25);
  table.Add({std::string("ที่"_th), "1", "22"});
  table.Add({"a long text that wraps", "333", "4"});
  std::string out;
  table.AppendTo(out);
  EXPECT_EQ(Cp874ToUtf8(out),
            "ที่                   1  22\n"
            "a long text that  333   4\n"
            "wraps\n");

  Table narrow(12);
  narrow.Add({"a long text", "1,000.00"});
  out.clear();
  narrow.AppendTo(out);
  EXPECT_EQ(out, "a long text\n    1,000.00\n") << "no room beside the numbers";

  Table shortNames(12);
  shortNames.Add({"tea", "1.00"});
  out.clear();
  shortNames.AppendTo(out);
  EXPECT_EQ(out, "tea     1.00\n") << "a short name needs little room";
}

}  // namespace
}  // namespace kvshare::receipts
