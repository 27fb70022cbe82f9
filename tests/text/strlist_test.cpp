#include "kvshare/text/strlist.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using L = TKovraStrList;

// Lists as texts, their items joined by bars; no items are "".
TStringList ListOf(std::string_view items) {
  TStringList list;
  while (!items.empty()) {
    const std::size_t bar = std::min(items.find('|'), items.size());
    list.Add(items.substr(0, bar));
    items.remove_prefix(std::min(bar + 1, items.size()));
  }
  return list;
}

std::string Items(const TStrings& list) {
  std::string items;
  for (const std::string& item : list) items += (&item == &list[0] ? "" : "|") + item;
  return items;
}

TEST(StrList, Stack) {
  TStringList stack = ListOf("a");
  L::PushStack(stack, "b");
  EXPECT_EQ(L::PopStack(stack), "b");
  EXPECT_EQ(L::PopStack(stack), "a");
  EXPECT_EQ(L::PopStack(stack), "");
}

TEST(StrList, Removes) {
  TStringList list = ListOf("x|B|b|y");
  EXPECT_TRUE(L::RemoveFromList(list, "b"));
  EXPECT_EQ(Items(list), "x|b|y") << "the first, letter case ignored";
  EXPECT_FALSE(L::RemoveFromList(list, "z"));

  TStringList twins = ListOf("same|same");
  EXPECT_FALSE(L::RemoveFromListByPointer(twins, ListOf("same").Identity(0)));
  const TStringId kept = twins.Identity(0);
  EXPECT_TRUE(L::RemoveFromListByPointer(twins, twins.Identity(1)));
  ASSERT_EQ(twins.Count(), 1);
  EXPECT_EQ(twins.Identity(0), kept);
}

TEST(StrList, SplitsNamesAndValues) {
  TStringList source = ListOf("X=1|Y = 2 |Z| CODE = A=01\t");
  const auto expectSplit = [](const TStrings& names, const TStrings& values, const char* why) {
    EXPECT_EQ(Items(names), "X|Y || CODE ") << why;
    EXPECT_EQ(Items(values), "1|2|Z|A=01") << why;
  };
  TStringList names = ListOf("old");
  TStringList values = source;
  L::SplitList(values, names, values);
  expectSplit(names, values, "the source becomes the values");
  L::SplitList(source, names, values);
  expectSplit(names, values, "three lists, two with earlier items");
  L::SplitList(source, source, values);
  expectSplit(source, values, "the source becomes the names");
}

TEST(StrList, JoinsConditions) {
  struct Case {
    std::string_view items, want;
  };
  constexpr Case kCases[] = {{"", ""},
                             {"A=1", "AND A=1"},
                             {"A=1|B=2", "AND(A=1|OR B=2)"},
                             {"A=1|B='%s'|C=3", "AND(A=1|OR B='%s'|OR C=3)"}};
  for (const Case& c : kCases) {
    TStringList list = ListOf(c.items);
    L::AddAndOr(list);
    EXPECT_EQ(Items(list), c.want);
  }
}

TEST(StrList, RawLinesOfASection) {
  const TemporaryFolder folder;
  const std::string file = folder.File("raw.ini");
  WriteFileBytes(file,
                 "lost=0\r\n[One]\r\n; note\r\n\r\n a = 1\r\nno key\r\n[100%s]\r\ne=5\r\n"
                 "[ONE]\r\nf=6\r\n[Two]\r\nb=2\r\n[ Loose ]\r\nc=3\r\n[Last]\r\nd=4\r\n\r\nend");
  struct Case {
    std::string_view section, want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"one", "kept|; note|| a = 1|no key", "lines as they stand, up to the next header"},
      {"100%s", "kept|e=5", "a name is no pattern; the next header stood before, too"},
      {"Two", "kept|b=2|[ Loose ]|c=3|[Last]|d=4||end", "a loose header ends nothing"},
      {"Loose", "kept", "nor begins anything"},
      {"LAST", "kept|d=4||end", "to the end of the file"},
      {"None", "kept", "missing"},
  };
  for (const Case& c : kCases) {
    TStringList list = ListOf("kept");
    L::ReadContentInSection(file, c.section, list);
    L::ReadContentInSection(folder.File("absent.ini"), c.section, list);
    EXPECT_EQ(Items(list), c.want) << c.why;
  }
}

TEST(StrList, ArgumentsMayBeItemsOfTheList) {
  const TemporaryFolder folder;
  const std::string file = folder.File("a-name-that-is-long.ini");
  WriteFileBytes(file, "[a section with a name that is long]\r\nkey=1\r\n");
  const struct {
    const char* routine;
    std::string start;
    void (*change)(TStringList& list);
    std::string want;
  } cases[] = {
      {"PushStack", "a text that is long", [](TStringList& list) { L::PushStack(list, list[0]); },
       "a text that is long|a text that is long"},
      {"RemoveFromList", "x|a text that is long",
       [](TStringList& list) { L::RemoveFromList(list, list[1]); }, "x"},
      {"ReadContentInSection", file + "|a section with a name that is long",
       [](TStringList& list) { L::ReadContentInSection(list[0], list[1], list); },
       file + "|a section with a name that is long|key=1"},
  };
  for (const auto& c : cases) {
    TStringList list = ListOf(c.start);
    c.change(list);
    EXPECT_EQ(Items(list), c.want) << c.routine;
  }
}

}  // namespace
}  // namespace kvshare
