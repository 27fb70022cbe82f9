// The bridge with companion libraries of its own making.
#include "kvshare/platform/kovrawin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/ui/application.h"
#include "kvshare/ui/backend.h"
#include "tests/platform/kovrawin_fixture.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using fixture::Mode;
using testing::ElementsAre;

const std::string kLong(70, 'x');
const std::string kCut(64, 'x');
constexpr TDateTime kDate(37817.25);

class MainWindow : public TFormWindow {
 public:
  void ControlChanged(const TControl& /*control*/) override {}
  void ControlsChanged() override {}
  void Show() override {}
  void Hide() override {}
  std::uintptr_t Handle() const override { return 77; }
};

class KovraWin : public testing::Test {
 protected:
  KovraWin() {
    main_.SetWindow(std::make_unique<MainWindow>());
    Application.MainForm = &main_;
  }

  // The library that is found first.
  void Install(const std::string& bytes) const {
    WriteFileBytes(folder_.File("libKovraWin.so"), bytes);
  }
  // What was shown since: an error box as it is, another as its text.
  std::vector<std::string> Shown() {
    std::vector<std::string> texts;
    for (const TMessageBox& box : screen_.messages) {
      EXPECT_EQ(box.buttons, TMsgDlgButtons{TMsgDlgBtn::mbOK});
      texts.push_back(box.type == TMsgDlgType::mtError ? box.Caption() + ": " + box.text
                                                       : box.text);
    }
    screen_.messages.clear();
    return texts;
  }

  const TemporaryFolder folder_;
  const WithVariable path_{"KVSHARE_LIBRARY_PATH", folder_.Path().c_str()};
  THeadlessInterface screen_;
  const TUseInterface use_{screen_};
  TForm main_{nullptr};
};

// A wrapper, and what it gives back: its result and by reference.
struct Dialog {
  const char* title;
  std::string (*run)(std::int32_t mode);
  std::string got;      // by the entry
  std::string given;    // by it
  std::string missing;  // without it
  std::string thrown;   // when it throws behind what it gives by reference
};

const Dialog kDialogs[] = {
    {"ExecCalculator", [](std::int32_t mode) { return Format("%g", {ExecCalculator(mode, 2.5)}); },
     "ExecCalculator 77 %d 2.5", "5", "0", "0"},
    {"Calendar", [](std::int32_t mode) { return Format("%g", {ExecCalendar(mode, kDate).Days()}); },
     "ExecCalendar 77 %d 37817.25", "37818.25", "37817.25", "37817.25"},
    {"ReadSQLCmd", [](std::int32_t mode) { return ExecReadSQLCmd(mode, kLong); },
     "ExecReadSQLCmd 77 %d " + kLong, kLong + "!", kLong, kLong},
    {"AboutBox",
     [](std::int32_t mode) {
       ExecAboutBox(mode);
       return std::string();
     },
     "ExecAboutBox 77 %d", "", "", ""},
    {"GetUserName",
     [](std::int32_t mode) {
       std::string name = kLong, second = "old";
       const std::int32_t result = ExecGetUserName(mode, name, second);
       return Format("%d %s,%s", {result, name, second});
     },
     "ExecGetUserName 77 %d " + kCut + ",",
     "5 " + std::string(64, 'n') + "," + std::string(64, 's'), "0 " + kCut + ",",
     "0 " + kCut + ","},
    {"GetGroupName",
     [](std::int32_t mode) {
       std::string first = kLong, second("b\0c", 3);
       const bool result = ExecGetGroupName(mode, kLong, first, second);
       return Format("%d %s,%s", {int{result}, first, second});
     },
     "ExecGetGroupName 77 %d " + kLong + " " + kCut + ",b",
     "1 " + std::string(64, 'f') + "," + std::string(64, 's'), "0 " + kCut + ",b",
     "0 " + kCut + ",b"},
    {"GetDate",
     [](std::int32_t mode) {
       TDateTime date = kDate;
       const std::int32_t result = ExecGetDate(mode, kLong, date);
       return Format("%d %g", {result, date.Days()});
     },
     "ExecGetDate 77 %d " + kCut + " 37817.25", "6 37818.25", "0 37817.25", "0 37818.25"},
    {"PickDate",
     [](std::int32_t mode) {
       TDateTime date = kDate;
       const std::int32_t result = ExecPickDate(mode, kLong, date);
       return Format("%d %g", {result, date.Days()});
     },
     "ExecPickDate 77 %d " + kCut + " 37817.25", "7 37819.25", "0 37817.25", "0 37819.25"},
    {"GetDateRange",
     [](std::int32_t mode) {
       TDateTime from = kDate, to(8);
       const bool result = ExecGetDateRange(mode, kLong, "", from, to);
       return Format("%d %g %g", {int{result}, from.Days(), to.Days()});
     },
     "ExecGetDateRange 77 %d " + kCut + "  37817.25 8", "1 37818.25 10", "0 37817.25 8",
     "0 37818.25 10"},
    {"GetYear",
     [](std::int32_t mode) {
       std::int32_t year = 2569;
       const std::int32_t result = ExecGetYear(mode, kLong, year);
       return Format("%d %d", {result, year});
     },
     "ExecGetYear 77 %d " + kCut + " 2569", "8 2570", "0 2569", "0 2570"},
};

TEST_F(KovraWin, EveryEntryGetsAndGives) {
  Install(ReadFileBytes(EVERY_ENTRY_LIBRARY));
  for (const Dialog& dialog : kDialogs) {
    SCOPED_TRACE(dialog.title);
    EXPECT_EQ(dialog.run(Mode::kEcho), dialog.given);
    EXPECT_THAT(Shown(), ElementsAre(Format(dialog.got, {std::int32_t{Mode::kEcho}})));
  }
  TStringList list;
  list.Add("first");
  ExecReadKovraSysInfo(list);
  EXPECT_EQ(list.Text(), "first\r\nmemory\r\n");
  EXPECT_NE(hKovraWin, 0u) << "not reset";
  Application.MainForm = nullptr;
  EXPECT_EQ(ExecCalculator(-7, 1), 2);
  EXPECT_THAT(Shown(), ElementsAre("ExecCalculator 0 -7 1"));
}

TEST_F(KovraWin, WhatAnEntryThrowsIsShown) {
  Install(ReadFileBytes(EVERY_ENTRY_LIBRARY));
  struct Case {
    std::int32_t mode;
    std::string shown;
  };
  constexpr std::string_view kWhat = "รหัสผิด"_th;
  const Case cases[] = {
      {Mode::kThrow, "Error: 'x' is not a valid date"},
      {Mode::kAbort, ""},
      {Mode::kThrowStandard, "Error: Program %s Failed in KovraWin.DLL\r\n" + std::string(kWhat)},
      {Mode::kThrowOther, "Error: Program %s Failed in KovraWin.DLL"},
  };
  for (const Dialog& dialog : kDialogs) {
    for (const Case& c : cases) {
      SCOPED_TRACE(dialog.title);
      EXPECT_EQ(dialog.run(c.mode), dialog.thrown);
      std::vector<std::string> want = {Format(dialog.got, {c.mode})};
      if (!c.shown.empty()) want.push_back(Format(c.shown, {dialog.title}));
      EXPECT_EQ(Shown(), want);
    }
  }
}

TEST_F(KovraWin, PointersOfTheLibrarysOwn) {
  Install(ReadFileBytes(EVERY_ENTRY_LIBRARY));
  std::string name = "a", second;
  EXPECT_EQ(ExecGetUserName(Mode::kNull, name, second), 5);
  EXPECT_EQ(name + "," + second, ",");
  ExecGetUserName(Mode::kReplace, name, second);
  EXPECT_EQ(name, "a text of the library's own, and longer than any buffer of the i");
  EXPECT_EQ(second, name);
  EXPECT_EQ(ExecReadSQLCmd(Mode::kNull, "SELECT"), "");
}

TEST_F(KovraWin, WithoutTheEntryOrTheLibrary) {
  const std::string every = ReadFileBytes(EVERY_ENTRY_LIBRARY);
  std::string foreign = every;
  foreign[18] = '\x02';  // the machine of an ELF file: another processor
  constexpr const char* kNotLoaded = "Error: Error: 193.On Load Library KovraWin.DLL";
  struct Case {
    std::string bytes;
    const char* first;  // message
    const char* why;
  };
  const Case cases[] = {
      {ReadFileBytes(NO_ENTRY_LIBRARY), nullptr, "no entry"},
      {foreign, kNotLoaded, "another machine's"},
      {every.substr(0, 4096), kNotLoaded, "a copy that broke off"},
      {"a text", kNotLoaded, "no library"},
      {"", kNotLoaded, "an empty file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    Install(c.bytes);
    for (const Dialog& dialog : kDialogs) {
      SCOPED_TRACE(dialog.title);
      std::vector<std::string> want;
      if (c.first != nullptr) want.emplace_back(c.first);
      want.push_back(Format("Error: Program %s Not Found in KovraWin.DLL", {dialog.title}));
      EXPECT_EQ(dialog.run(Mode::kEcho), dialog.missing);
      EXPECT_EQ(Shown(), want);
      EXPECT_EQ(hKovraWin == 0, c.first != nullptr);
    }
    TStringList list;
    ExecReadKovraSysInfo(list);
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(Shown().size(), c.first != nullptr ? 1u : 0u) << "nothing of the entry";
  }
}

TEST_F(KovraWin, ProceduresByName) {
  Install(ReadFileBytes(EVERY_ENTRY_LIBRARY));
  const auto NotFound = [](const char* name) {
    return Format("Error: Program %s Not Found in KovraWin.DLL", {name});
  };
  FreeKovraWin();
  DoProcedure();
  EXPECT_THAT(Shown(), ElementsAre(NotFound("DoProcedure"))) << "it does not load the library";

  LoadKovraWin();
  DoProcedure();
  EXPECT_THAT(Shown(), ElementsAre("DoProcedure 77"));
  EXPECT_NE(pExecuteProcedure, nullptr);
  ExecuteProcedure(std::string_view("DoProcedure\0x", 13));
  ExecuteProcedure("doprocedure");
  EXPECT_EQ(pExecuteProcedure, nullptr);
  ExecuteProcedure("exit");
  ExecuteProcedure("");
  EXPECT_THAT(Shown(), ElementsAre("DoProcedure 77", NotFound("doprocedure"), NotFound("exit"),
                                   NotFound("")));
  ExecuteProcedure("Thrower");
  EXPECT_THAT(Shown(), ElementsAre("Error: Program Thrower Failed in KovraWin.DLL"));

  FreeKovraWin();
  DoProcedure();
  EXPECT_THAT(Shown(), ElementsAre(NotFound("DoProcedure"))) << "it is unloaded";
  FreeKovraWin();
}

TEST_F(KovraWin, LoadsNest) {
  Install(ReadFileBytes(EVERY_ENTRY_LIBRARY));
  EXPECT_EQ(ExecCalculator(Mode::kNest, 2), 8);
  EXPECT_EQ(Shown().size(), 3u);

  LoadKovraWin();
  LoadKovraWin();
  EXPECT_EQ(ExecCalculator(Mode::kNest, 2), 8);
  FreeKovraWin();
  Shown();
  DoProcedure();
  EXPECT_THAT(Shown(), ElementsAre("DoProcedure 77")) << "one load is left";
  ExecuteProcedure("Freer");
  EXPECT_THAT(Shown(), ElementsAre("still here"));
  DoProcedure();
  EXPECT_THAT(Shown(), ElementsAre("Error: Program DoProcedure Not Found in KovraWin.DLL"));
}

}  // namespace
}  // namespace kvshare
