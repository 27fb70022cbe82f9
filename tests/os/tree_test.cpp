#include "kvshare/os/tree.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <future>
#include <set>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

constexpr int kDeep = 2000;

// `depth` folders one in the other, deeper than any name may be long, with a file in the last.
void MakeDeep(const std::string& top, int depth) {
  int folder = open(top.c_str(), O_DIRECTORY);
  for (int i = 0; i < depth; ++i) {
    ASSERT_EQ(mkdirat(folder, "sub", 0755), 0);
    const int next = openat(folder, "sub", O_DIRECTORY);
    close(folder);
    folder = next;
  }
  close(openat(folder, "file", O_CREAT | O_WRONLY, 0644));
  close(folder);
}

std::vector<std::string> Listed(const os::TreeScope& scope) {
  std::vector<std::string> names;
  os::ListTree(scope, [&](const os::TreeEntry& entry) { names.emplace_back(entry.listed); });
  return names;
}

TEST(Tree, FarDeeperThanDescriptorsAndNames) {
  const TemporaryHome home(FastDisk());
  const std::string from = (home.Path() / "from").string();
  const std::string to = (home.Path() / "to").string();
  fs::create_directory(from);
  fs::create_directory(to);
  MakeDeep(from, kDeep);
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    const rlimit few{48, 48};
    return setrlimit(RLIMIT_NOFILE, &few) == 0 && os::CountTree({from, "*.*", true}) == 1;
  }));
  rlimit before = {};
  getrlimit(RLIMIT_NOFILE, &before);
  const rlimit few{64, before.rlim_max};
  setrlimit(RLIMIT_NOFILE, &few);
  EXPECT_EQ(os::CopyTree({from, "*.*", true}, to), 1u);
  const auto names = Listed({to, "*.*", true});
  ASSERT_EQ(names.size(), 1u);
  EXPECT_EQ(names[0].size(), std::string_view("sub\\").size() * kDeep + 4);
  EXPECT_FALSE(os::RemoveEmptyTree(to, true));
  const os::TreeDeletion deleted = os::DeleteTree({to, "*.*", true});
  EXPECT_EQ(deleted.folders, kDeep + 1u);
  os::DeleteTree({from, "*.*", true});
  setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_FALSE(fs::exists(from) || fs::exists(to));
}

TEST(Tree, LinksToFolders) {
  const TemporaryHome home;
  home.Make("top/a/file");
  home.Make("top/deep/1/2/3/file");
  home.Make("other/1");
  home.Make("other/in/2");
  const fs::path top = home.Drive() / "top";
  fs::create_directory_symlink("..", top / "a/up");          // back into its own way
  fs::create_directory_symlink(".", top / "self");           // likewise
  fs::create_directory_symlink("../other", top / "across");  // elsewhere
  fs::create_directory_symlink("a", top / "beside");         // a folder twice
  fs::create_symlink("nowhere", top / "dangling");
  EXPECT_THAT(Listed({top.string(), "*.*", true}),
              UnorderedElementsAre("a\\file", "beside\\file", "deep\\1\\2\\3\\file", "across\\1",
                                   "across\\in\\2", "dangling"));
  EXPECT_EQ(os::CountTree({top.string() + "/", "*.*", true}), 6u);

  EXPECT_FALSE(os::RemoveEmptyTree(top, true)) << "links keep a folder";
  const os::TreeDeletion deleted = os::DeleteTree({top.string(), "*.*", true});
  EXPECT_EQ(deleted.files, 7u);
  EXPECT_EQ(deleted.folders, 6u);
  EXPECT_TRUE(home.Has("other/1") && home.Has("other/in/2")) << "never what a link leads to";
  EXPECT_FALSE(home.Has("top"));

  fs::create_directory_symlink("other", home.Drive() / "link");
  EXPECT_EQ(os::DeleteTree({(home.Drive() / "link").string(), "*.*", true}).files, 2u);
  EXPECT_TRUE(home.Has("other") && !home.Has("other/1") && !home.Has("link"))
      << "a top that is a link is entered as named, and goes alone";
}

TEST(Tree, DeepBehindLinksTheWayBackIsFound) {
  const TemporaryHome home;
  std::string way = "top";
  home.Make(way + "/x");
  for (int i = 0; i < 40; ++i) {  // each level reached by a link from elsewhere
    const std::string real = "real" + std::to_string(i);
    home.Make(real + "/x");
    fs::create_directory_symlink(home.Drive() / real, home.Drive() / way / "next");
    home.Make(way + "/zz/y");
    home.Make(way + "/aa/y");
    way = real;
  }
  EXPECT_EQ(os::CountTree({(home.Drive() / "top").string(), "*.*", true}), 41u + 80u);
}

TEST(Tree, NamesThatTheInterfaceLacks) {
  const TemporaryHome home;
  for (const char* name : {"S/日本/ไทย", "S/日本/bad\xFF\xC3", "S/a\\b"}) home.Make(name);
  const std::string from = (home.Drive() / "S").string();
  constexpr std::string_view kThai = "??\\ไทย"_th;
  EXPECT_THAT(Listed({from, "*.*", true}), UnorderedElementsAre(kThai, "??\\bad??", "a?b"));
  fs::create_directory(home.Drive() / "T");
  EXPECT_EQ(os::CopyTree({from, "*.*", true}, (home.Drive() / "T").string()), 3u);
  EXPECT_TRUE(home.Has("T/日本/bad\xFF\xC3") && home.Has("T/a\\b"));
  EXPECT_EQ(os::CountTree({from, "??", true}), 2u) << "a mask counts letters, not bytes";
  os::DeleteTree({from, "*.*", true});
  EXPECT_FALSE(home.Has("S"));
}

TEST(Tree, CopyOverWhatIsThere) {
  const TemporaryHome home;
  home.Make("S/Ledger.txt", "new");
  home.Make("S/SUB/x", "new");
  home.Make("S/a", "lower");
  home.Make("S/A", "upper");
  home.Make("S/taken", "file");
  home.Make("S/locked", "new");
  home.Make("T/LEDGER.TXT", "old");
  home.Make("T/Sub/X", "old");
  home.Make("T/a", "old");
  home.Make("T/taken/x", "folder");
  home.Make("T/locked", "old");
  fs::permissions(home.Drive() / "T/locked", fs::perms{0444});
  fs::permissions(home.Drive() / "S/SUB", fs::perms{0700});
  std::vector<std::string> failures;
  const auto failed = [&](const std::string& path, std::string_view) {
    failures.push_back(fs::path(path).filename());
  };
  const std::string from = (home.Drive() / "S").string();
  EXPECT_EQ(os::CopyTree({from, "*.*", true}, (home.Drive() / "T").string(), failed), 4u);
  EXPECT_THAT(failures, UnorderedElementsAre("taken", "locked"));
  const auto text = [&](const char* name) { return ReadFileBytes((home.Drive() / name).string()); };
  EXPECT_EQ(text("T/LEDGER.TXT"), "new") << "the file of another case";
  EXPECT_FALSE(home.Has("T/Ledger.txt") || home.Has("T/SUB"));
  EXPECT_EQ(text("T/Sub/X"), "new");
  EXPECT_EQ(text("T/a") + text("T/A"), "lowerupper") << "both where the source has both";
  EXPECT_EQ(text("T/locked"), "old");

  fs::create_directory(home.Drive() / "S/inside");
  EXPECT_EQ(os::CopyTree({from, "*.*", true}, from + "/inside"), 6u) << "not into itself";
  EXPECT_EQ(fs::status(home.Drive() / "S/inside/SUB").permissions(), fs::perms{0700});
  EXPECT_FALSE(home.Has("S/inside/inside"));
}

TEST(Tree, NoTwoFilesLandOnOne) {
  const TemporaryHome home;
  home.Make("S/ledger.txt", "lower,");
  home.Make("S/LEDGER.TXT", "upper,");
  home.Make("S/LEDGER.txt", "mixed,");
  home.Make("T/Ledger.txt", "old");
  const std::string from = (home.Drive() / "S").string();
  EXPECT_EQ(os::CopyTree({from, "*.*", true}, (home.Drive() / "T").string()), 3u);
  std::multiset<std::string> texts;
  for (const auto& file : fs::directory_iterator(home.Drive() / "T")) {
    texts.insert(ReadFileBytes(file.path().string()));
  }
  EXPECT_EQ(texts, (std::multiset<std::string>{"lower,", "mixed,", "upper,"}));
}

TEST(Tree, AKilledCopyLeavesNoHalfFile) {
  const TemporaryHome home;
  home.Make("S/big", std::string(300'000, 'x'));
  home.Make("T/other");
  const pid_t child = fork();
  if (child == 0) {
    const rlimit most{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &most);
    std::signal(SIGXFSZ, SIG_DFL);
    os::CopyTree({(home.Drive() / "S").string(), "*.*", true}, (home.Drive() / "T").string());
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_FALSE(home.Has("T/big"));
}

TEST(Tree, TwoMayDeleteOneTree) {
  const TemporaryHome home;
  for (int round = 0; round < 20; ++round) {
    for (int i = 0; i < 60; ++i) home.Make("D/" + std::to_string(i) + "/a/b/file");
    const auto work = [&home] {
      os::DeleteTree({(home.Drive() / "D").string(), "*.*", true},
                     [](const std::string& path, std::string_view reason) {
                       ADD_FAILURE() << path << ": " << reason;
                     });
    };
    auto other = std::async(std::launch::async, work);
    try {
      work();
      other.get();
    } catch (const EInOutError& e) {
      // Whoever comes to a tree that is gone already gets the error, as ever.
      EXPECT_EQ(e.ErrorCode(), 2) << e.Message();
    }
    EXPECT_FALSE(home.Has("D"));
  }
}

TEST(Tree, DeletionThatCannotBeWhole) {
  const TemporaryHome home;
  home.Make("D/keep/.cache");
  home.Make("D/go/file");
  std::vector<std::string> would;
  std::vector<std::string> kept;
  const auto read = [&](const os::TreeEntry& entry) { would.emplace_back(entry.native); };
  const auto failed = [&](const std::string& path, std::string_view reason) {
    kept.push_back(fs::path(path).lexically_relative(home.Drive()).string() + ":" +
                   std::string(reason));
  };
  const os::TreeScope scope{(home.Drive() / "D").string(), "*.*", true};
  os::ListDeletion(scope, read, failed);
  EXPECT_THAT(would, UnorderedElementsAre("go/file", "go"));
  EXPECT_THAT(kept, ElementsAre("D/keep/:the folder is not empty", "D/:the folder is not empty"));
  EXPECT_EQ(CodeOf([&] { os::DeleteTree(scope); }), 145);
  EXPECT_TRUE(home.Has("D/keep/.cache"));
  fs::remove(home.Drive() / "D/keep/.cache");
  fs::permissions(home.Drive() / "D", fs::perms{0777});
  home.Make("D/locked/x");
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    return os::CountTree({scope.folder + "/locked", "*.*", true}) == 1 &&
           CodeOf([&] {
             os::DeleteTree({scope.folder + "/locked", "*.*", true});
           }) == 145;
  })) << "a folder that may be read but not written";
  fs::permissions(home.Drive() / "D/locked", fs::perms{0700});
  EXPECT_TRUE(HoldsForOrdinaryUser([&] {
    int told = 0;
    const auto count = [&told](const std::string&, std::string_view) { ++told; };
    return os::CountTree(scope, count) <= 1 && told == 1;
  })) << "one that may not be read is reported";
  os::DeleteTree(scope);
  EXPECT_FALSE(home.Has("D"));
}

}  // namespace
}  // namespace kvshare
