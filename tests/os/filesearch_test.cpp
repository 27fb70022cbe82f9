#include "kvshare/os/filesearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/os/files.h"
#include "kvshare/rtl/cp874.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

using ::testing::UnorderedElementsAre;

TEST(Masks, AsThePlatformReadsThem) {
  struct Case {
    std::string_view mask, matching, other;  // names with blanks between
  };
  constexpr Case kCases[] = {
      {"*.*", "a a.b .x a.b.c", ""},
      {"*", "a a.b .x", ""},
      {"*.txt", "a.txt A.TXT .txt a.b.txt", "a.txtx atxt a.txt.b a"},
      {"*.", "a abc", "a.b .x"},
      {"a*.", "a abc", "a.b b"},
      {"a.", "a", "a.b"},
      {"a*.*", "a abc a.b", "b b.a"},
      {"?", "a", "ab a.b"},
      {"a??", "a ab abc", "abcd a.b"},
      {"a?c", "abc", "ac a.c"},
      {"????.txt", "a.txt abcd.txt .txt", "abcde.txt a.b.txt"},
      {"a.?", "a a.b", "a.bc"},
      {"*a*b*", "ab xaxbx", "ba"},
      {"REPORT*.d?c", "report1.DOC Report.dbc", "report.dc"},
      {"", "", "a ."},
      {"a", "A", "ab"},
  };
  for (const Case& c : kCases) {
    const auto each = [&](std::string_view names, bool want) {
      while (!names.empty()) {
        const std::string_view name = names.substr(0, names.find(' '));
        names.remove_prefix(std::min(name.size() + 1, names.size()));
        EXPECT_EQ(os::MatchesMask(name, c.mask), want) << name << " by " << c.mask;
      }
    };
    each(c.matching, true);
    each(c.other, false);
  }
  std::string slow;
  for (int i = 0; i < 100; ++i) slow += "*a";
  EXPECT_FALSE(os::MatchesMask(std::string(255, 'a') + "b", slow)) << "and at once";
}

std::vector<std::string> Found(std::string_view mask, int attributes) {
  std::vector<std::string> names;
  os::FileSearch search(mask, attributes);
  while (search.Next()) names.push_back(search.Name());
  return names;
}

TEST(FileSearch, EntriesByAttributes) {
  const TemporaryHome home;
  for (const char* name : {"S/a.txt", "S/B.TXT", "S/.cache", "S/sub/x", "S/ไทย.txt", "S/日本.txt",
                           "S/bad\xFF", "S/back\\slash"}) {
    home.Make(name);
  }
  std::filesystem::create_directory_symlink("sub", home.Drive() / "S/link");
  std::filesystem::create_symlink("none", home.Drive() / "S/dangling");
  constexpr std::string_view kThai = "ไทย.txt"_th;
  const std::string thai(kThai);
  EXPECT_THAT(Found("C:\\s\\*.txt", 0), UnorderedElementsAre("a.txt", "B.TXT", thai, "??.txt"));
  EXPECT_THAT(
      Found("C:/S/*", os::faReadOnly),
      UnorderedElementsAre("a.txt", "B.TXT", thai, "??.txt", "bad?", "back?slash", "dangling"));
  EXPECT_THAT(Found("C:\\S\\??????", os::faHidden | os::faDirectory),
              UnorderedElementsAre("sub", "link", "bad?"))
      << "no letter is a point";
  EXPECT_THAT(Found("C:\\S\\.*", os::faAnyFile), UnorderedElementsAre(".", "..", ".cache"));
  EXPECT_THAT(Found("C:\\S\\l*", os::faAnyFile), UnorderedElementsAre("link"));
  os::FileSearch link("C:\\S\\link", os::faAnyFile);
  EXPECT_TRUE(link.Next() && link.IsDirectory() && link.IsLink());
  EXPECT_EQ(link.Attributes(), os::faDirectory);
  os::FileSearch hidden("C:\\S\\.cache", os::faAnyFile);
  EXPECT_TRUE(hidden.Next() && !hidden.IsDirectory());
  EXPECT_EQ(hidden.Attributes(), os::faHidden | os::faArchive);
}

TEST(FileSearch, Errors) {
  const TemporaryHome home;
  home.Make("file");
  struct Case {
    std::string_view mask;
    int error;
  };
  constexpr Case kCases[] = {{"C:\\*", 0},       {"C:\\none*", 18}, {"C:\\none\\*", 3},
                             {"C:\\file\\*", 3}, {"Q:\\*", 3},      {"C:\\", 2},
                             {"C:FILE", 0}};
  for (const Case& c : kCases) {
    os::FileSearch search(c.mask, 0);
    while (search.Next()) {
    }
    EXPECT_EQ(search.Error(), c.error) << c.mask;
  }
  std::filesystem::create_directory(home.Drive() / "locked");
  std::filesystem::permissions(home.Drive() / "locked", std::filesystem::perms{0});
  EXPECT_TRUE(HoldsForOrdinaryUser([] { return os::FileSearch("C:\\locked\\*", 0).Error() == 5; }));
}

}  // namespace
}  // namespace kvshare
