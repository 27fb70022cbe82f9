#include "kvshare/platform/verinfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <memory>

#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/platform/fileinfo.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/settings/globals.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using os::Hive;
using os::TRegistry;
using testing::ElementsAre;

std::vector<std::string> Lines(const TStrings& list) {
  return {list.begin(), list.end()};
}

TStringList ListOf(std::initializer_list<std::string_view> items) {
  TStringList list;
  for (const std::string_view item : items) list.Add(item);
  return list;
}

class SettingsStore : public testing::Test {
 protected:
  std::string UserText(std::string_view key, std::string_view name) const {
    TRegistry registry;
    return registry.OpenKeyReadOnly(Key(key)) ? registry.ReadString(name) : "no key";
  }
  void WriteUserInteger(std::string_view key, std::string_view name, int value) const {
    TRegistry registry;
    ASSERT_TRUE(registry.OpenKey(Key(key), true));
    registry.WriteInteger(name, value);
  }
  bool UserKeyExists(std::string_view key) const { return TRegistry().KeyExists(Key(key)); }
  std::string Key(std::string_view below) const { return store.RootKey() + std::string(below); }

  TemporaryHome home;
  TKovraRegistry store;
};

TEST_F(SettingsStore, AProgramWithoutIdentityHasTheDefaultsOfTheRoot) {
  EXPECT_EQ(store.RootKey(), R"(Software\Undefined CompanyName\Undefined ProductName v0.0)");
  EXPECT_EQ(TKovraRegistry::ReadVersionInfo("ProductVersion", "9"), "9");
}

TEST_F(SettingsStore, RootAndSectionNameTheKey) {
  struct Case {
    const char *root, *section, *key, *why;
  };
  constexpr Case kCases[] = {
      {"", "", R"(Software\Undefined CompanyName\Undefined ProductName v0.0)", "both empty"},
      {"", R"(A\B)", R"(Software\Undefined CompanyName\Undefined ProductName v0.0\A\B)", "section"},
      {R"(Software\Own)", "", R"(Software\Own)", "the root is a whole path"},
      {R"(\Software\Own)", "S", R"(software\own\s)", "leading backslash, letter case"},
  };
  for (const Case& c : kCases) {
    store.WriteRegistryString(c.root, c.section, "Printer", "ชั้น 2"_th);
    EXPECT_EQ(store.ReadRegistryString(c.root, c.section, "printer", ""), "ชั้น 2"_th) << c.why;
    TRegistry registry;
    ASSERT_TRUE(registry.OpenKeyReadOnly(c.key)) << c.why;
    EXPECT_EQ(registry.ReadString("Printer"), "ชั้น 2"_th) << c.why;
  }
  EXPECT_EQ(store.ReadShareRegistryString("", "", "Printer", "none"), "none") << "another hive";
}

TEST_F(SettingsStore, BlankMissingAndOtherKindsReadAsTheDefault) {
  EXPECT_EQ(store.ReadRegistryString("", "Default", "X", "4"), "4");
  EXPECT_FALSE(UserKeyExists("")) << "a read creates nothing";
  store.WriteRegistryString("", "Default", "X", "  ");
  EXPECT_EQ(store.ReadRegistryString("", "Default", "X", "4"), "4");
  store.WriteRegistryString("", "Default", "X", " 7 ");
  EXPECT_EQ(store.ReadRegistryString("", "Default", "X", "4"), " 7 ") << "not trimmed";
  WriteUserInteger("\\Default", "X", 7);
  EXPECT_EQ(store.ReadRegistryString("", "Default", "X", "4"), "4") << "an integer";
}

TEST_F(SettingsStore, ListsKeepTenItemsUnderFindkey) {
  TStringList twelve;
  for (int i = 0; i < 12; ++i) twelve.Add("item" + std::to_string(i));
  twelve.Put(3, "  ");
  store.WriteRegistryStringList("", "", "Search", twelve);
  EXPECT_EQ(UserText(R"(\Findkey\Search)", "Value_9"), "item9");
  EXPECT_EQ(UserText(R"(\Findkey\Search)", "Value_10"), "");

  TStringList read = ListOf({"own", "ITEM4"});
  store.ReadRegistryStringList("", "", "Search", read);
  EXPECT_THAT(Lines(read), ElementsAre("own", "ITEM4", "item0", "item1", "item2", "item5", "item6",
                                       "item7", "item8", "item9"))
      << "not cleared, nothing twice, blank ones skipped";

  store.WriteRegistryStringList("", "", "Search", ListOf({"new"}));
  TStringList again;
  store.ReadRegistryStringList("", "", "Search", again);
  EXPECT_THAT(Lines(again), ElementsAre("new")) << "the earlier items are gone";
  store.ReadRegistryStringList("", "Own", "Search", again);
  EXPECT_THAT(Lines(again), ElementsAre("new")) << "a missing key leaves the list";
}

TEST_F(SettingsStore, NamedListsKeepEveryLine) {
  TStringList lines = ListOf({"b=2", "a=x=y", "no value", "c="});
  for (int i = 0; i < 20; ++i) lines.Add("n" + std::to_string(i) + "=" + std::to_string(i));
  store.WriteRegistryStringListWKey("", "", "Columns", lines);
  EXPECT_EQ(UserText(R"(\Columns)", "a"), "x=y") << "no Findkey here";
  TStringList read = ListOf({"old=1"});
  store.ReadRegistryStringListWKey("", "", "Columns", read);
  lines.Delete(2);
  EXPECT_EQ(Lines(read), Lines(lines)) << "in order, no cap, cleared before";
}

TEST_F(SettingsStore, ListsMayHoldWhereTheyAreRead) {
  const std::string root = R"(Software\A root with a long name)";
  const TStringList where = ListOf({root, "a section with a long name", "a list with a long name"});
  store.WriteRegistryStringListWKey(where[0], where[1], where[2], ListOf({"b=2", "a=1"}));
  TStringList named = where;
  store.ReadRegistryStringListWKey(named[0], named[1], named[2], named);
  EXPECT_THAT(Lines(named), ElementsAre("b=2", "a=1"));
  TStringList added = where;
  store.ReadRegistryStringList(added[0], added[1], added[2], added);
  EXPECT_THAT(Lines(added), ElementsAre(where[0], where[1], where[2], "2", "1"));
}

TEST_F(SettingsStore, SavesAFormUnlessItIsMaximisedAsStored) {
  TForm form(nullptr, "Ledger");
  form.SetBounds({10, 20, 300, 400});
  form.SetWindowState(TWindowState::wsMaximized);
  store.SaveFormPosition(form);
  TRegistry registry;
  ASSERT_TRUE(registry.OpenKeyReadOnly(Key(R"(\FormPosition\Ledger)")));
  TStringList names;
  registry.GetValueNames(names);
  EXPECT_THAT(Lines(names), ElementsAre("Top", "Left", "Height", "Width", "WindowState"));
  EXPECT_EQ(registry.ReadInteger("Top"), 20);
  EXPECT_EQ(registry.ReadInteger("Width"), 300);

  // Nothing is written while all is as stored, nor when "Left" is missing; a value by its side
  // shows whether the five were written.
  struct Case {
    TBounds bounds;
    TWindowState state;
    bool leftMissing, written;
    const char* why;
  };
  constexpr auto kMax = TWindowState::wsMaximized;
  const Case kCases[] = {
      {{10, 20, 300, 400}, kMax, false, false, "unchanged and maximised"},
      {{10, 20, 300, 400}, kMax, true, false, "the missing left edge fails"},
      {{10, 20, 301, 400}, kMax, true, true, "another width is seen before left is asked for"},
      {{11, 20, 301, 400}, kMax, false, true, "another left edge"},
      {{11, 20, 301, 400}, TWindowState::wsNormal, false, false, "the stored state decides"},
  };
  for (const Case& c : kCases) {
    TRegistry entry;
    ASSERT_TRUE(entry.OpenKey(Key(R"(\FormPosition\Ledger)"), false));
    if (c.leftMissing) entry.DeleteValue("Left");
    form.SetBounds(c.bounds);
    form.SetWindowState(c.state);
    store.SaveFormPosition(form);
    const bool written = entry.ValueExists("Left") &&
                         entry.ReadInteger("Width") == c.bounds.Width &&
                         entry.ReadInteger("Left") == c.bounds.Left &&
                         entry.ReadInteger("WindowState") == static_cast<int>(c.state);
    EXPECT_EQ(written, c.written || (!c.leftMissing && c.state == kMax)) << c.why;
  }
}

TEST_F(SettingsStore, RestoresAForm) {
  TForm form(nullptr, "Ledger");
  form.SetBounds({1, 2, 3, 4});
  store.SetFormPosition(form);
  EXPECT_EQ(form.Bounds(), (TBounds{1, 2, 3, 4}));
  EXPECT_FALSE(UserKeyExists(R"(\FormPosition)"));

  WriteUserInteger(R"(\FormPosition\Ledger)", "Top", 20);
  WriteUserInteger(R"(\FormPosition\Ledger)", "Width", 300);
  WriteUserInteger(R"(\FormPosition\Ledger)", "Height", 400);
  store.SetFormPosition(form);
  EXPECT_EQ(form.Bounds(), (TBounds{1, 2, 3, 4})) << "no state: nothing";
  EXPECT_TRUE(store.IsChangeWindowsState(form, 300, 401));
  EXPECT_FALSE(store.IsChangeWindowsState(form, 300, 400));
  EXPECT_TRUE(store.IsChangeWindowsState(TForm(nullptr, "Other"), 300, 400));

  WriteUserInteger(R"(\FormPosition\Ledger)", "WindowState", 0);
  form.BorderStyle = TFormBorderStyle::bsDialog;
  store.SetFormPosition(form);
  EXPECT_EQ(form.Bounds(), (TBounds{1, 20, 3, 4})) << "a dialog keeps its size; left is missing";
  form.BorderStyle = TFormBorderStyle::bsSizeable;
  store.SetFormPosition(form);
  EXPECT_EQ(form.Bounds(), (TBounds{1, 20, 300, 400}));

  form.SetBounds({1, 2, 3, 4});
  for (const int state : {1, 2}) {
    WriteUserInteger(R"(\FormPosition\Ledger)", "WindowState", state);
    store.SetFormPosition(form);
    EXPECT_EQ(form.Bounds(), (TBounds{1, 2, 3, 4})) << state;
    EXPECT_EQ(form.WindowState(), state == 2 ? TWindowState::wsMaximized : TWindowState::wsNormal);
  }
}

TEST_F(SettingsStore, KeepsThePlacesOfToolBars) {
  TForm form(nullptr, "Ledger");
  TWinControl bar(&form, "TBarMain");
  bar.SetBounds({5, 6, 100, 20});
  EXPECT_EQ(store.SetLocation(bar, 7, 8), 8 + 100 + 2) << "the defaults";
  EXPECT_EQ(bar.Bounds(), (TBounds{8, 7, 100, 20}));
  bar.SetBounds({50, 60, 100, 20});
  store.SaveLocation(bar);
  EXPECT_EQ(store.SetLocation(bar, 7, 8), 50 + 100 + 2);
  EXPECT_EQ(bar.Bounds(), (TBounds{50, 60, 100, 20}));

  bar.SetVisible(false);
  EXPECT_EQ(store.SetLocation(bar, 7, 8), 8);
  bar.SetBounds({1, 1, 1, 1});
  store.SaveLocation(bar);
  bar.SetVisible(true);
  store.SetLocation(bar, 0, 0);
  EXPECT_EQ(bar.Left(), 50) << "a hidden one is not saved";

  for (const char* name : {"tbar2", "Grid1"}) {
    TWinControl other(&form, name);
    store.SaveLocation(other);
  }
  store.ClearLocation("Missing");
  store.ClearLocation("ledger");
  EXPECT_FALSE(UserKeyExists(R"(\FormPosition\Ledger\TBarMain)"));
  EXPECT_FALSE(UserKeyExists(R"(\FormPosition\Ledger\tbar2)"));
  EXPECT_TRUE(UserKeyExists(R"(\FormPosition\Ledger\Grid1)"));
  EXPECT_FALSE(UserKeyExists(R"(\FormPosition\Missing)"));

  TWinControl ownerless(nullptr, "TBarLost");
  store.SaveLocation(ownerless);
  EXPECT_EQ(store.SetLocation(ownerless, 3, 4), 4 + 0 + 2);
}

TEST_F(SettingsStore, FoldersAreStoredCreatedAndEndInABackslash) {
  const std::string alias = R"(C:\Program Files\Undefined CompanyName\Undefined ProductName v0.0)";
  EXPECT_EQ(store.GetAliasPath(), alias + "\\");
  EXPECT_TRUE(os::DirectoryExists(alias));
  EXPECT_EQ(store.ReadShareRegistryString("", "", "AliasPath", ""), alias);
  store.WriteShareRegistryString("", "", "AliasPath", R"(C:\Shop\)");
  EXPECT_EQ(store.GetAliasPath(), R"(C:\Shop\)");

  store.WriteShareRegistryString("", "", "ReportPath", R"(C:\Reports)");
  EXPECT_EQ(store.GetReportPath(), R"(C:\Reports\)");
  EXPECT_TRUE(os::DirectoryExists(R"(C:\Reports)"));
  EXPECT_EQ(store.SetReportPath(), os::ProgramFolder() + "Report") << "always overwrites";
  EXPECT_EQ(store.ReadShareRegistryString("", "", "ReportPath", ""),
            os::ProgramFolder() + "Report");
  EXPECT_EQ(store.SetDocumentPath(), os::ProgramFolder() + "Document");

  WriteFileBytes(R"(C:\plain)", "a file");
  store.WriteShareRegistryString("", "", "DocumentPath", R"(C:\plain\Document)");
  EXPECT_THROW(store.GetDocumentPath(), EInOutError);

  EXPECT_EQ(store.GetKovraAppDataPath(), R"(C:\ProgramData\QXN\Undefined ProductName v0.0\)");
  EXPECT_FALSE(os::DirectoryExists(R"(C:\ProgramData\QXN)")) << "not created";
}

TEST_F(SettingsStore, ASystemTableNeedsAnUpdateOnceForEachTimeOfItsFile) {
  EXPECT_FALSE(store.NeedAutoUpdate("SCTYTAB", R"(C:\scty.txt)")) << "missing";
  WriteFileBytes(R"(C:\scty.txt)", "1");
  EXPECT_TRUE(store.NeedAutoUpdate("SCTYTAB", R"(C:\scty.txt)"));
  EXPECT_FALSE(store.NeedAutoUpdate("SCTYTAB", R"(C:\scty.txt)"));
  EXPECT_TRUE(store.NeedAutoUpdate("OTHER", R"(C:\scty.txt)")) << "each table for itself";
  std::filesystem::last_write_time(
      home.Path() / "drive_c/scty.txt",
      std::filesystem::file_time_type::clock::now() - std::chrono::hours(48));
  EXPECT_TRUE(store.NeedAutoUpdate("SCTYTAB", R"(C:\scty.txt)")) << "an older time differs too";
  EXPECT_THAT(UserText(R"(\SYSTEMTABLE\SCTYTAB)", R"(C:\scty.txt)"),
              testing::MatchesRegex("[0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}"));
}

TEST_F(SettingsStore, AStoreThatCannotBeUsedGivesDefaultsInSilence) {
  std::filesystem::create_directories(home.Path() / "registry.db");
  store.WriteRegistryString("", "Default", "X", "1");
  EXPECT_EQ(store.ReadRegistryString("", "Default", "X", "d"), "d");
  TStringList list = ListOf({"kept"});
  store.WriteRegistryStringList("", "", "Search", list);
  store.ReadRegistryStringList("", "", "Search", list);
  EXPECT_THAT(Lines(list), ElementsAre("kept"));
  TForm form(nullptr, "Ledger");
  TWinControl bar(&form, "TBarMain");
  store.SaveFormPosition(form);
  store.SetFormPosition(form);
  store.SaveLocation(bar);
  EXPECT_EQ(store.SetLocation(bar, 1, 2), 2 + 0 + 2);
  store.ClearLocation("Ledger");
  WriteFileBytes(R"(C:\scty.txt)", "1");
  EXPECT_TRUE(store.NeedAutoUpdate("SCTYTAB", R"(C:\scty.txt)"));
}

TEST_F(SettingsStore, HelpersAroundTheStore) {
  TStringList list = ListOf({" aB ", "ก็c"_th});
  TKovraRegistry::UpperCaseAll(list);
  EXPECT_THAT(Lines(list), ElementsAre("AB", "ก็C"_th));
  TKovraRegistry::LowerCaseAll(list);
  EXPECT_THAT(Lines(list), ElementsAre("ab", "ก็c"_th));

  EXPECT_TRUE(TKovraRegistry::Empty(Null));
  EXPECT_TRUE(TKovraRegistry::Empty("  "));
  EXPECT_FALSE(TKovraRegistry::Empty(0));

  store.BdeSetup();
  constexpr std::string_view kEngine = R"(Software\Borland\Database Engine\Settings)";
  EXPECT_EQ(store.ReadShareRegistryString(kEngine, R"(DRIVERS\DBASE\INIT)", "LANGDRIVER", ""),
            "DB874TH0");
  EXPECT_EQ(store.ReadShareRegistryString(kEngine, R"(SYSTEM\INIT)", "LANGDRIVER", ""), "thai");

  constexpr std::string_view kExcel = R"(Software\Classes\Excel.Application\CLSID)";
  EXPECT_FALSE(store.IsExcelInstall());
  store.WriteShareRegistryString(kExcel, "", "", "no identifier");
  EXPECT_FALSE(store.IsExcelInstall());
  store.WriteShareRegistryString(kExcel, "", "", "{00024500-0000-0000-C000-000000000046}");
  EXPECT_TRUE(store.IsExcelInstall());
}

TEST_F(SettingsStore, RunsPrograms) {
  EXPECT_EQ(TKovraRegistry::RunAndWait("sh", "-c \"exit 3\""), 3);
  EXPECT_EQ(TKovraRegistry::RunAndWait(R"(Z:\bin\sh)", "-c \"exit 0\""), 0);
  EXPECT_EQ(TKovraRegistry::RunAndWait("no-such-program", ""), 259);
  const std::string done = (home.Path() / "done").string();
  TKovraRegistry::RunNoWait("sh", "-c \"echo > '" + done + "'\"");
  for (int i = 0; i < 500 && !std::filesystem::exists(done); ++i) {
    const timespec pause{0, 10'000'000};
    nanosleep(&pause, nullptr);
  }
  EXPECT_TRUE(std::filesystem::exists(done));
}

}  // namespace
}  // namespace kvshare
