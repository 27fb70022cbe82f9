#include "kvshare/os/registry/registry.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/os/childprocess.h"
#include "tests/os/diskcalls.h"
#include "tests/support.h"

namespace kvshare::os {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Registry : public ::testing::Test {
 protected:
  Registry() { UseHome("home"); }

  void UseHome(const std::string& name) { ::setenv("KVSHARE_HOME", folder_.File(name).c_str(), 1); }
  std::string Home() const { return std::getenv("KVSHARE_HOME"); }
  std::string File() const { return Home() + "/registry.db"; }

  // A store that was closed, as after the programs' end: one file, all of it.
  void Store(std::string_view name, std::string_view text) {
    EXPECT_TRUE(ChildProcess([&] {
                  TRegistry().WriteString(name, text);
                  std::exit(0);
                  return true;
                }).Held());
    ASSERT_FALSE(fs::exists(File() + "-wal"));
  }

  const TemporaryFolder folder_;
};

std::vector<std::string> Listed(const TRegistry& registry, bool keys) {
  TStringList list;
  list.Add("from before");
  keys ? registry.GetKeyNames(list) : registry.GetValueNames(list);
  return {list.begin(), list.end()};
}
std::vector<std::string> Values(const TRegistry& registry) {
  return Listed(registry, false);
}
std::vector<std::string> Keys(const TRegistry& registry) {
  return Listed(registry, true);
}

TEST_F(Registry, PathsLeadToOneKey) {
  TRegistry writer;
  ASSERT_TRUE(writer.OpenKey("Software\\Acme\\Ledger v5.2", true));
  writer.WriteString("Top", "12");
  struct Case {
    std::string_view current, key;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"", "Software\\Acme\\Ledger v5.2", "as written"},
      {"", "\\SOFTWARE\\acme\\LEDGER V5.2", "from the root, other case"},
      {"", "\\\\Software\\\\Acme\\Ledger v5.2\\\\", "doubled and trailing"},
      {"Software", "Acme\\Ledger v5.2", "from the open key"},
      {"Software\\Other", "\\Software\\Acme\\Ledger v5.2", "from the root while one is open"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    TRegistry reader;
    ASSERT_TRUE(reader.OpenKey(c.current, true));
    EXPECT_TRUE(reader.KeyExists(c.key));
    ASSERT_TRUE(reader.OpenKeyReadOnly(c.key));
    EXPECT_EQ(reader.ReadString("top"), "12");
    EXPECT_FALSE(reader.OpenKey("Missing", false));
    EXPECT_EQ(reader.ReadString("TOP"), "12") << "the current key stays";
    ASSERT_TRUE(reader.OpenKey("", false));
    EXPECT_EQ(reader.CurrentPath(), "") << "the root";
  }
  EXPECT_FALSE(TRegistry(Hive::LocalMachine).KeyExists("Software")) << "hives are apart";
  EXPECT_THAT(Keys(TRegistry()), ElementsAre("Software")) << "the first spelling stays";
}

TEST_F(Registry, EveryByteComesBack) {
  std::string all;
  for (int i = 0; i < 256; ++i) all += static_cast<char>(i);
  std::string key = all;
  key.erase('\\', 1);
  key.resize(255);
  const std::string names[] = {all,
                               "",
                               "a=b",
                               "\"quoted\"",
                               "'",
                               "line\r\nbreak",
                               std::string("a\0b", 3),
                               "%s",
                               "x\\y\\",
                               std::string("ยอดเงิน ๑๒๓"_th),
                               "\x81\xFF",
                               std::string(16'383, 'n')};
  TRegistry registry;
  ASSERT_TRUE(registry.OpenKey(key, true));
  for (const std::string& name : names) {
    registry.WriteString(name, name + all);
    EXPECT_EQ(registry.ReadString(name), name + all);
  }
  EXPECT_THAT(Values(registry), ::testing::ElementsAreArray(names));
  TRegistry other;
  ASSERT_TRUE(other.OpenKeyReadOnly("\\" + key + "\\"));
  EXPECT_THAT(Values(other), ::testing::ElementsAreArray(names));
  registry.WriteString("long", std::string(3'000'000, '\xA1'));
  EXPECT_TRUE(other.ReadString("long") == std::string(3'000'000, '\xA1'));
  EXPECT_FALSE(other.ValueExists("\xA1")) << "a Thai letter has no case";
}

TEST_F(Registry, Order) {
  TRegistry registry;
  for (const char* name : {"z", "A", "m"}) registry.WriteString(name, "");
  registry.WriteInteger("Z", -5);
  registry.WriteString("b", "");
  EXPECT_TRUE(registry.DeleteValue("a"));
  EXPECT_FALSE(registry.DeleteValue("a"));
  registry.WriteString("A", "");
  EXPECT_THAT(Values(registry), ElementsAre("z", "m", "b", "A"));
  EXPECT_EQ(registry.ReadInteger("z"), -5) << "a replaced value has its new kind in its old place";

  for (const char* key : {"b", "C", "a_", "AB", "aB\\x", "A\\x", "\xA1", "a"}) {
    registry.CreateKey(key);
  }
  EXPECT_THAT(Keys(registry), ElementsAre("A", "AB", "a_", "b", "C", "\xA1"));
  EXPECT_TRUE(registry.HasSubKeys());
  ASSERT_TRUE(registry.OpenKey("a", false));
  EXPECT_THAT(Keys(registry), ElementsAre("x"));
  EXPECT_TRUE(registry.OpenKey("x", false) && !registry.HasSubKeys());
  EXPECT_EQ(registry.CurrentPath(), "a\\x");
}

TEST_F(Registry, DeletedKeysTakeWhatIsBelow) {
  TRegistry registry;
  for (const char* key : {"A\\b\\c", "A!", "A]x", "AB"}) {
    ASSERT_TRUE(registry.OpenKey(std::string("\\") + key, true));
    registry.WriteString("v", key);
  }
  registry.CloseKey();
  EXPECT_TRUE(registry.DeleteKey("a\\"));
  EXPECT_FALSE(registry.DeleteKey("a"));
  EXPECT_FALSE(registry.DeleteKey("")) << "a hive stays";
  EXPECT_THAT(Keys(registry), ElementsAre("A!", "AB", "A]x")) << "neighbours in every order stay";
  ASSERT_TRUE(registry.OpenKey("A\\b\\c", true));
  EXPECT_THAT(Values(registry), IsEmpty()) << "a key made again is empty";

  TRegistry().DeleteKey("A");
  EXPECT_EQ(registry.ReadString("v"), "");
  registry.WriteString("v", "again");
  EXPECT_EQ(registry.ReadString("v"), "again") << "a write makes its key";
}

TEST_F(Registry, KindsAndTheirErrors) {
  TRegistry registry;
  const RegistryValue values[] = {{"text", ValueKind::Text, "x"},
                                  {"expand", ValueKind::ExpandText, "%TEMP%"},
                                  {"integer", ValueKind::Integer, std::string("\0\0\0\x80", 4)},
                                  {"short", ValueKind::Integer, "x"},
                                  {"binary", ValueKind::Binary, std::string("\0\xFF", 2)},
                                  {"none", ValueKind::None, ""},
                                  {"odd", static_cast<ValueKind>(200), "?"}};
  for (const RegistryValue& value : values) registry.WriteValue(value);
  EXPECT_THAT(registry.ReadValues(), ::testing::ElementsAreArray(values));
  EXPECT_EQ(registry.ReadString("expand"), "%TEMP%");
  EXPECT_EQ(registry.ReadInteger("integer"), INT32_MIN);
  EXPECT_EQ(registry.ReadString("missing"), "");
  using E = ERegistryException;
  EXPECT_EQ(MessageOf<E>([&] { registry.ReadInteger("None"); }), "Invalid data type for 'None'");
  EXPECT_EQ(MessageOf<E>([&] { registry.ReadInteger("short"); }), "Invalid data type for 'short'");
  EXPECT_EQ(MessageOf<E>([&] { registry.ReadInteger("no"); }), "Failed to get data for 'no'");
  EXPECT_EQ(MessageOf<E>([&] { registry.ReadString("binary"); }), "Invalid data type for 'binary'");
}

TEST_F(Registry, Limits) {
  TRegistry registry;
  std::string deep = "k";
  for (int i = 1; i < 512; ++i) deep += "\\k";
  EXPECT_TRUE(registry.OpenKey(deep, true));
  EXPECT_FALSE(registry.OpenKey("k", true)) << "the 513th";
  EXPECT_FALSE(registry.OpenKey("\\" + std::string(256, 'k'), true));
  EXPECT_EQ(MessageOf<ERegistryException>([&] { registry.CreateKey("k"); }),
            "Failed to create key k");
  const std::string name(16'384, 'n');
  EXPECT_EQ(MessageOf<ERegistryException>([&] { registry.WriteString(name, ""); }),
            "Failed to set data for '" + name + "'");
  EXPECT_TRUE(registry.DeleteKey("\\k"));
}

TEST_F(Registry, ReadsMakeNothing) {
  TRegistry registry;
  EXPECT_TRUE(registry.OpenKeyReadOnly("\\")) << "the root is always there";
  EXPECT_FALSE(registry.OpenKeyReadOnly("Software"));
  EXPECT_EQ(registry.ReadString("x"), "");
  EXPECT_FALSE(registry.DeleteValue("x") || registry.DeleteKey("k") || registry.HasSubKeys());
  EXPECT_THAT(Keys(registry), IsEmpty());
  EXPECT_EQ(RegistryTrouble(), "");
  EXPECT_FALSE(fs::exists(Home()));
  EXPECT_EQ(RegistryFile(), File());

  registry.WriteString("x", "1");
  EXPECT_EQ(registry.ReadString("x"), "1");
  struct stat facts = {};
  ASSERT_EQ(::stat(File().c_str(), &facts), 0);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  EXPECT_EQ(facts.st_mode & 0777, 0666 & ~mask) << "as every file that the user makes";
}

TEST_F(Registry, TransactionsAreWholeOrNothing) {
  TRegistry registry;
  registry.WriteString("a", "old");
  EXPECT_THROW(InOneRegistryTransaction([&] {
                 registry.WriteString("a", "new");
                 registry.CreateKey("k");
                 EXPECT_EQ(registry.ReadString("a"), "new") << "it sees its own changes";
                 EXPECT_TRUE(ChildProcess([] { return true; }).Held());
                 throw std::out_of_range("mine");
               }),
               std::out_of_range);
  EXPECT_EQ(registry.ReadString("a"), "old");
  EXPECT_FALSE(registry.KeyExists("k"));

  InOneRegistryTransaction([&] {
    registry.WriteString("a", "outer");
    EXPECT_THROW(InOneRegistryTransaction([&] {
                   registry.WriteString("a", "inner");
                   throw EAbort("");
                 }),
                 EAbort);
    InOneRegistryTransaction([&] { registry.WriteString("b", "inner"); });
    EXPECT_EQ(registry.ReadString("a"), "outer") << "the inner one is undone alone";
  });
  EXPECT_EQ(registry.ReadString("a") + registry.ReadString("b"), "outerinner");

  EXPECT_THROW(InOneRegistryTransaction([&] {
                 InOneRegistryTransaction([&] { registry.WriteString("b", "x"); });
                 throw EAbort("");
               }),
               EAbort);
  EXPECT_EQ(registry.ReadString("b"), "inner") << "the outer one undoes the inner one too";
}

TEST_F(Registry, BadStoresAreLeftAlone) {
  TRegistry().WriteString("kept", std::string(20'000, 'x'));
  Store("other", "");
  const std::string good = ReadFileBytes(File());
  std::string newer = good;
  newer[63] = 2;  // the store's version, at its place in the file's header
  std::string foreign = good;
  foreign[71] = 0;
  struct Case {
    std::string bytes, reason;
    const char* why;
  };
  const Case cases[] = {
      {"", "damaged", "an empty file"},
      {good.substr(0, 50), "damaged", "a header cut short"},
      {good.substr(0, 4096), "damaged", "only its first page"},
      {good.substr(0, good.size() - 4096), "damaged", "without its last page"},
      {std::string(5000, 'G'), "damaged", "another file"},
      {good.substr(0, 100) + std::string(good.size() - 100, '\0'), "damaged", "zeros"},
      {newer, "newer version", "from the future"},
      {foreign, "no settings store", "another program's database"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    UseHome(std::string("home of ") + c.why);
    fs::create_directory(Home());
    WriteFileBytes(File(), c.bytes);
    TRegistry registry;
    EXPECT_EQ(registry.ReadString("kept"), "");
    EXPECT_FALSE(registry.KeyExists("k") || registry.OpenKey("k", true));
    EXPECT_THAT(Values(registry), IsEmpty());
    EXPECT_THROW(registry.WriteString("kept", "lost"), ERegistryException);
    EXPECT_THROW(InOneRegistryTransaction([] {}), ERegistryException);
    EXPECT_THAT(RegistryTrouble(RegistryUse::Reading), HasSubstr(c.reason));
    EXPECT_THAT(RegistryTrouble(), ::testing::StartsWith(File() + ": "));
    EXPECT_TRUE(ReadFileBytes(File()) == c.bytes) << "nothing was written over it";
    WriteFileBytes(File(), good);
    EXPECT_EQ(registry.ReadString("kept").size(), 20'000u) << "mended, while the program runs";
    EXPECT_EQ(RegistryTrouble(), "");
  }
}

TEST_F(Registry, PlacesWithoutAStore) {
  const std::string blocked = folder_.File("file");
  WriteFileBytes(blocked, "x");
  fs::create_directories(folder_.File("asfolder/registry.db"));
  struct Case {
    const char *home, *reason;
  };
  for (const Case& c : {Case{"asfolder", "it is a folder"}, Case{"file/home", "Not a directory"}}) {
    UseHome(c.home);
    EXPECT_EQ(TRegistry().ReadString("x"), "");
    EXPECT_THROW(TRegistry().WriteString("x", "1"), ERegistryException);
    EXPECT_FALSE(TRegistry().OpenKey("k", true));
    EXPECT_THAT(RegistryTrouble(), HasSubstr(c.reason));
  }
  EXPECT_TRUE(ChildProcess([] {
                for (const char* name : {"KVSHARE_HOME", "XDG_DATA_HOME", "HOME"}) ::unsetenv(name);
                EXPECT_EQ(TRegistry().ReadString("x"), "");
                EXPECT_THROW(TRegistry().WriteString("x", "1"), ERegistryException);
                return RegistryFile().empty() &&
                       RegistryTrouble() == "No home folder: set KVSHARE_HOME" &&
                       !::testing::Test::HasFailure();
              }).Held());
}

TEST_F(Registry, WhatMayNotBeWrittenIsRead) {
  Store("x", "kept");
  fs::permissions(folder_.Path(), fs::perms{0755});
  const std::string bytes = ReadFileBytes(File());
  struct Case {
    unsigned file, folder;
    const char *value, *reason;
  };
  constexpr Case kCases[] = {{0444, 0777, "kept", "it may only be read"},
                             {0666, 0555, "kept", "may not be written"},
                             {0444, 0555, "kept", "it may only be read"},
                             {0000, 0755, "", "cannot be opened: Permission denied"},
                             {0666, 0666, "", "cannot be reached: Permission denied"}};
  for (const Case& c : kCases) {
    fs::permissions(File(), fs::perms{c.file});
    fs::permissions(Home(), fs::perms{c.folder});
    EXPECT_TRUE(HoldsForOrdinaryUser([&] {
      EXPECT_EQ(TRegistry().ReadString("x"), c.value);
      EXPECT_EQ(TRegistry().ReadString("x"), c.value) << "and again";
      EXPECT_THROW(TRegistry().WriteString("x", "new"), ERegistryException);
      EXPECT_FALSE(TRegistry().DeleteValue("x"));
      EXPECT_THAT(RegistryTrouble(), HasSubstr(c.reason));
      EXPECT_EQ(RegistryTrouble(RegistryUse::Reading).empty(), *c.value != '\0');
      return !HasFailure();
    })) << c.file
        << " " << c.folder;
    fs::permissions(Home(), fs::perms{0755});
    fs::permissions(File(), fs::perms{0644});
    EXPECT_TRUE(ReadFileBytes(File()) == bytes);
  }
}

TEST_F(Registry, FollowsTheFile) {
  TRegistry registry;
  registry.WriteString("x", "first");
  UseHome("other");
  EXPECT_EQ(registry.ReadString("x"), "") << "another home";
  registry.WriteString("x", "second");
  UseHome("home");
  EXPECT_EQ(registry.ReadString("x"), "first");

  fs::remove_all(Home());
  EXPECT_EQ(registry.ReadString("x"), "") << "deleted underneath";
  registry.WriteString("x", "anew");
  EXPECT_EQ(registry.ReadString("x"), "anew");

  Store("x", "closed");
  fs::copy_file(File(), folder_.File("backup"));
  Store("x", "later");
  EXPECT_EQ(registry.ReadString("x"), "later");
  fs::rename(folder_.File("backup"), File());
  EXPECT_EQ(registry.ReadString("x"), "closed") << "replaced underneath";
}

TEST_F(Registry, ChildrenHaveTheirOwnConnection) {
  TRegistry registry;
  registry.WriteString("x", "parent");
  ASSERT_EQ(registry.ReadString("x"), "parent");
  EXPECT_TRUE(ChildProcess([&] {
                const bool sees = registry.ReadString("x") == "parent";
                registry.WriteString("x", "child");
                return sees;
              }).Held());
  EXPECT_EQ(registry.ReadString("x"), "child");
  InOneRegistryTransaction([&] {
    registry.WriteString("x", "changed");
    EXPECT_TRUE(ChildProcess([&] {
                  EXPECT_THROW(registry.WriteString("x", "mixed"), ERegistryException);
                  return registry.ReadString("x").empty() &&
                         RegistryTrouble().find("forked") != std::string::npos;
                }).Held());
  });
  EXPECT_EQ(registry.ReadString("x"), "changed");
}

TEST_F(Registry, ThreadsShareIt) {
  constexpr int kThreads = 12;
  constexpr int kWrites = 25;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t] {
      TRegistry registry;
      ASSERT_TRUE(registry.OpenKey("thread" + std::to_string(t), true));
      for (int i = 0; i < kWrites; ++i) {
        registry.WriteInteger("n", i);
        ASSERT_EQ(registry.ReadInteger("n"), i);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Keys(TRegistry()).size(), std::size_t{kThreads});
  EXPECT_EQ(RegistryTrouble(), "");
}

TEST_F(Registry, AWriteIsOneFlush) {
  TRegistry registry;
  registry.WriteString("x", "1");
  registry.WriteString("x", "2");
  auto& calls = DiskCalls::Instance();
  const int before = calls.flushes;
  constexpr int kWrites = 50;
  for (int i = 0; i < kWrites; ++i) registry.WriteInteger("x" + std::to_string(i), i);
  EXPECT_EQ(calls.flushes - before, kWrites);
  InOneRegistryTransaction([&] {
    for (int i = 0; i < kWrites; ++i) registry.WriteInteger("x" + std::to_string(i), -i);
  });
  EXPECT_EQ(calls.flushes - before, kWrites + 1) << "a transaction is one";
  for (int i = 0; i < kWrites; ++i) EXPECT_EQ(registry.ReadInteger("x" + std::to_string(i)), -i);
  EXPECT_EQ(calls.flushes - before, kWrites + 1) << "and a read none";
}

// A till that starts on a full disk or in a closed folder has its settings, also those that wait in
// the log of a program that was killed.
TEST_F(Registry, IsReadWhereNothingCanBeMadeBesideIt) {
  fs::permissions(folder_.Path(), fs::perms{0755});
  enum class Left { Nothing, Log, LogAndMemory };
  for (const Left left : {Left::Nothing, Left::Log, Left::LogAndMemory}) {
    SCOPED_TRACE(static_cast<int>(left));
    UseHome("home" + std::to_string(static_cast<int>(left)));
    Store("x", "first");
    if (left != Left::Nothing) {
      ASSERT_TRUE(ChildProcess([] {
                    TRegistry().WriteString("x", "kept");
                    return true;  // and ends without closing
                  }).Held());
      ASSERT_TRUE(fs::exists(File() + "-wal"));
    }
    if (left == Left::Log) fs::remove(File() + "-shm");
    const std::string stored = left == Left::Nothing ? "first" : "kept";
    const std::string bytes = ReadFileBytes(File());
    const auto reads = [&](std::string_view reason) {
      EXPECT_EQ(TRegistry().ReadString("x"), stored);
      EXPECT_EQ(TRegistry().ReadString("x"), stored) << "and again";
      EXPECT_EQ(RegistryTrouble(RegistryUse::Reading), "");
      EXPECT_THROW(TRegistry().WriteString("x", "new"), ERegistryException);
      EXPECT_THAT(RegistryTrouble(), HasSubstr(reason));
      EXPECT_EQ(TRegistry().ReadString("x"), stored) << "after the attempt";
      return !HasFailure();
    };
    EXPECT_TRUE(ChildProcess([&] {
                  auto& calls = DiskCalls::Instance();
                  calls.error = ENOSPC;
                  calls.left = 0;
                  return reads("the disk is full");
                }).Held());
    const mode_t log = left == Left::Nothing ? 0 : 0444;
    fs::permissions(File(), fs::perms{0444});
    if (log != 0) fs::permissions(File() + "-wal", fs::perms{0444});
    fs::permissions(Home(), fs::perms{0555});
    EXPECT_TRUE(HoldsForOrdinaryUser([&] { return reads("it may only be read"); }));
    fs::permissions(Home(), fs::perms{0755});
    fs::permissions(File(), fs::perms{0644});
    if (log != 0) fs::permissions(File() + "-wal", fs::perms{0644});
    EXPECT_TRUE(ReadFileBytes(File()) == bytes);
    Store("y", "later");
    EXPECT_EQ(TRegistry().ReadString("x"), stored);
  }
}

// What is left of a file that was cut is never written to, nor is one whose index misses a value.
TEST_F(Registry, ADamagedFileIsNeverWrittenTo) {
  TRegistry registry;
  constexpr int kValues = 60;
  InOneRegistryTransaction([&] {
    for (int i = 0; i < kValues; ++i) {
      registry.WriteString("name " + std::to_string(i), std::string(300, 'x'));
    }
  });
  Store("x", std::string(5000, 'y'));
  const std::string whole = ReadFileBytes(File());
  const auto isRefused = [&](const std::string& bytes) {
    WriteFileBytes(File(), bytes);
    EXPECT_TRUE(ChildProcess([&] {
                  EXPECT_THROW(TRegistry().WriteString("x", "new"), ERegistryException);
                  EXPECT_THAT(RegistryTrouble(RegistryUse::Reading), HasSubstr("damaged"));
                  return !HasFailure();
                }).Held());
    EXPECT_TRUE(ReadFileBytes(File()) == bytes);
  };
  for (std::size_t size = 1000; size < whole.size(); size += 1777) {
    SCOPED_TRACE(size);
    isRefused(whole.substr(0, size));
  }
  // One name in the index, beside the one in the table.
  std::string flipped = whole;
  const std::size_t inIndex = flipped.find("NAME 59", flipped.find("NAME 59") + 1);
  ASSERT_NE(inIndex, std::string::npos);
  flipped[inIndex + 6] = '!';
  isRefused(flipped);
}

// The disk is full, or broken, from the first, second, third ... call on.
TEST_F(Registry, AFullDiskLosesNothing) {
  auto& calls = DiskCalls::Instance();
  TRegistry registry;
  registry.WriteString("earlier", "kept");
  for (const int error : {ENOSPC, EIO}) {
    calls.error = error;
    bool written = false;
    for (int good = 0; !written; ++good) {
      ASSERT_LT(good, 100);
      SCOPED_TRACE(std::to_string(error) + " after " + std::to_string(good));
      const std::string text(30'000, static_cast<char>('a' + good));
      calls.left = good;
      try {
        InOneRegistryTransaction([&] {
          try {
            registry.WriteString("big", text);
          } catch (const ERegistryException&) {
            written = false;  // as callers do that report nothing
          }
          registry.WriteString("part", "x");
        });
        written = true;
      } catch (const ERegistryException&) {
        written = false;
      }
      calls.left = -1;
      const bool there = registry.ReadString("big") == text && registry.ValueExists("part");
      EXPECT_EQ(there, written) << "what is said is so";
      EXPECT_EQ(registry.ReadString("earlier"), "kept");
      EXPECT_TRUE(ChildProcess([&] { return registry.ReadString("earlier") == "kept"; }).Held());
      registry.DeleteValue("part");
    }
  }
  EXPECT_EQ(RegistryTrouble(), "");

  UseHome("new");
  bool made = false;
  for (int good = 0; !made; ++good) {
    ASSERT_LT(good, 100);
    calls.left = good;
    made = registry.OpenKey("k", true);
    calls.left = -1;
    EXPECT_EQ(RegistryTrouble(), "") << "half a store is never left behind";
  }
  EXPECT_TRUE(registry.KeyExists("\\k"));
}

}  // namespace
}  // namespace kvshare::os
