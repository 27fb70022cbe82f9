#include "kvshare/rtl/stringlist.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using Texts = std::vector<std::string>;

Texts TextsOf(const TStrings& list) {
  return {list.begin(), list.end()};
}

TStringList ListOf(std::initializer_list<std::string_view> texts) {
  TStringList list;
  for (const std::string_view text : texts) list.Add(text);
  return list;
}

TEST(StringList, EveryIndexIsChecked) {
  TStringList list = ListOf({"a", "b"});
  for (const int bad : {-1, 2, 0x7FFFFFFF}) {
    const std::string want = "List index out of bounds (" + std::to_string(bad) + ")";
    EXPECT_EQ(MessageOf<EStringListError>([&] { list[bad]; }), want);
    EXPECT_EQ(MessageOf<EStringListError>([&] { list.Put(bad, ""); }), want);
    EXPECT_EQ(MessageOf<EStringListError>([&] { list.Delete(bad); }), want);
  }
  EXPECT_THROW(list.Insert(3, "x"), EStringListError);
  list.Insert(2, "c");
  list.Insert(0, "_");
  list.Delete(1);
  EXPECT_EQ(TextsOf(list), (Texts{"_", "b", "c"}));
}

TEST(StringList, NamesAndValues) {
  TStringList list = ListOf({"plain", "A=1", "B = 2", "a=3", "=4", "C=x=y"});
  struct Case {
    int index;
    std::string_view name, value;
  };
  constexpr Case kCases[] = {
      {0, "", "lain"}, {1, "A", "1"}, {2, "B ", " 2"}, {4, "", "4"}, {5, "C", "x=y"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(list.Names(c.index), c.name) << c.index;
    EXPECT_EQ(list.ValueFromIndex(c.index), c.value) << c.index;
  }
  EXPECT_EQ(list.IndexOfName("a"), 1) << "the first, ignoring case";
  EXPECT_EQ(list.IndexOfName("B"), -1) << "nothing is trimmed";
  EXPECT_EQ(list.IndexOfName("plain"), -1);
  EXPECT_EQ(list.IndexOfName("C=x"), -1) << "a name ends at the first =";
  EXPECT_EQ(list.IndexOfName(""), 4);
  EXPECT_EQ(list.Values("c"), "x=y");

  list.SetValue("a", list.Values("c"));
  list.SetValue("new", "n");
  list.SetValue("C", "");
  EXPECT_EQ(TextsOf(list), (Texts{"plain", "a=x=y", "B = 2", "a=3", "=4", "new=n"}));
}

TEST(StringList, Text) {
  struct Case {
    std::string_view text;
    Texts items;
  };
  const Case cases[] = {
      {"", {}},
      {"\r\n", {""}},
      {"a\r\nb\rc\nd", {"a", "b", "c", "d"}},
      {"a\n\rb\r\r\n", {"a", "", "b", ""}},
      {std::string_view("a\nb\0c\nd", 7), {"a", "b"}},
  };
  for (const Case& c : cases) {
    TStringList list = ListOf({"old"});
    list.SetText(c.text);
    EXPECT_EQ(TextsOf(list), c.items);
    std::string joined;
    for (const std::string& item : c.items) joined += item + "\r\n";
    EXPECT_EQ(list.Text(), joined);
  }
  TStringList own = ListOf({"a\nb and a tail too long for the text's own buffer"});
  own.SetText(own[0]);
  EXPECT_EQ(own.Count(), 2) << "a list can be read from its own item";
}

TEST(StringList, CommaText) {
  struct Case {
    std::string_view text;
    Texts items;
    std::string_view written;
  };
  const Case cases[] = {
      {"", {}, ""},
      {"\"\"", {""}, "\"\""},
      {"a,b c,\"d e\"", {"a", "b", "c", "d e"}, "a,b,c,\"d e\""},
      {"a,", {"a", ""}, "a,"},
      {"a, ,b", {"a", "", "b"}, "a,,b"},
      {"\"a\"\"b\" , \"c,\"", {"a\"b", "c,"}, "\"a\"\"b\",\"c,\""},
      {"\"a\"b", {"a", "b"}, "a,b"},
      {"\"open, end", {"open, end"}, "\"open, end\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    TStringList list;
    list.SetCommaText(c.text);
    EXPECT_EQ(TextsOf(list), c.items);
    EXPECT_EQ(list.CommaText(), c.written);
  }
}

TEST(StringList, SortedKeepsItsOrder) {
  TStringList list = ListOf({"b", "A", "c", "a"});
  list.SetSorted(true);
  EXPECT_EQ(TextsOf(list), (Texts{"A", "a", "b", "c"})) << "equal texts keep their order";
  EXPECT_EQ(list.Add("B"), 2) << "ignored: the index of the one present";
  EXPECT_EQ(list.Count(), 4);
  list.Duplicates = TDuplicates::dupError;
  EXPECT_EQ(MessageOf<EStringListError>([&] { list.Add("C"); }),
            "String list does not allow duplicates");
  list.Duplicates = TDuplicates::dupAccept;
  list.Add("B");
  EXPECT_EQ(list.Count(), 5);
  const std::string refused = "Operation not allowed on sorted list";
  EXPECT_EQ(MessageOf<EStringListError>([&] { list.Insert(0, "x"); }), refused);
  EXPECT_EQ(MessageOf<EStringListError>([&] { list.Put(0, "x"); }), refused);

  list.SetCaseSensitive(true);
  EXPECT_EQ(TextsOf(list), (Texts{"A", "B", "a", "b", "c"}));
  EXPECT_EQ(list.IndexOf("b"), 3);
  EXPECT_EQ(list.IndexOf("C"), -1);
}

TEST(StringList, ObjectsAndIdentities) {
  TObject object;
  TStringList list = ListOf({"a", "a"});
  list.PutObject(1, &object);
  EXPECT_NE(list.Identity(0), list.Identity(1)) << "equal texts are different texts";

  TStringList copy = ListOf({"gone"});
  copy.Assign(list);
  EXPECT_EQ(copy.Objects(1), &object);
  EXPECT_EQ(copy.Identity(1), list.Identity(1));
  copy.Assign(copy);
  EXPECT_EQ(copy.Count(), 2);

  const TStringId before = copy.Identity(1);
  copy.Insert(0, "first");
  EXPECT_EQ(copy.Identity(2), before) << "moves with the item";
  copy.Put(2, copy[2]);
  EXPECT_NE(copy.Identity(2), before) << "a new text";
  copy.AddStrings(copy);
  EXPECT_EQ(TextsOf(copy), (Texts{"first", "a", "a", "first", "a", "a"}));
}

TEST(StringList, CopiesAreTheirOwn) {
  TStringList list = ListOf({"b", "a", "c"});
  list.SetSorted(true);
  list.SetCaseSensitive(true);
  TStringList copy = list;
  list.Delete(0);
  EXPECT_EQ(list.Add("aa"), 0) << "takes the deleted item's place";
  EXPECT_EQ(TextsOf(list), (Texts{"aa", "b", "c"}));
  EXPECT_EQ(TextsOf(copy), (Texts{"a", "b", "c"}));
  EXPECT_EQ(copy.Identity(1), list.Identity(1));
  EXPECT_TRUE(copy.Sorted() && copy.CaseSensitive());
  copy = std::move(list);
  EXPECT_EQ(copy.IndexOf("aa"), 0);
}

TEST(StringList, LoadAndSave) {
  const TemporaryFolder folder;
  const std::string name = folder.File("list.txt");
  TStringList list = ListOf({"a", "", "b"});
  list.SaveToFile(name);
  EXPECT_EQ(ReadFileBytes(name), "a\r\n\r\nb\r\n");
  TStringList loaded;
  loaded.LoadFromFile(name);
  EXPECT_EQ(TextsOf(loaded), TextsOf(list));

  const std::string none = folder.File("none/list.txt");
  EXPECT_EQ(MessageOf<EFOpenError>([&] { loaded.LoadFromFile(none); }),
            "Cannot open file \"" + none + "\". No such file or directory");
  EXPECT_EQ(loaded.Count(), 3) << "a failed load leaves the list";
  EXPECT_EQ(MessageOf<EFCreateError>([&] { list.SaveToFile(none); }),
            "Cannot create file \"" + none + "\". No such file or directory");
}

}  // namespace
}  // namespace kvshare
