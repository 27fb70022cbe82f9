#include "kvshare/database/dblog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/lines.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/backend.h"
#include "tests/os/childprocess.h"
#include "tests/support.h"

namespace kvshare {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFolder = R"(C:\Logs\)";

std::string ThisMonth() {
  return FormatDateTime("YYYYMM", Now());
}

class EventLog : public testing::Test {
 protected:
  EventLog() {
    Initialize();
    KovraAliasName = "LEDGER";
    KovraLogDatabaseName = kFolder;
    KovraLogTableName = "events.log";
    SetMonth(ThisMonth());
  }
  ~EventLog() override {
    Finalize();
    for (std::string* text : TextGlobals()) text->clear();
  }

  static void SetMonth(std::string_view month) {
    MyKovraRegistry->WriteRegistryString("", R"(LogFile\LEDGER)", "CurrentLog", month);
  }
  static std::string Month() {
    return MyKovraRegistry->ReadRegistryString("", R"(LogFile\LEDGER)", "CurrentLog", "none");
  }
  static std::string Log(std::string_view name = "events.log") {
    const std::string file = std::string(kFolder).append(name);
    return FileExists(file) ? ReadFileBytes(file) : "no file";
  }
  static void Put(std::string_view name, std::string_view bytes) {
    os::ForceDirectories(kFolder);
    WriteFileBytes(std::string(kFolder).append(name), bytes);
  }
  // The lines without their stamps, which are checked here.
  static std::vector<std::string> Texts(const std::string& bytes) {
    std::vector<std::string> texts;
    for (std::string_view rest = bytes; !rest.empty();) {
      constexpr std::size_t kStamp = 16;
      const std::string_view line = TakeLine(rest);
      EXPECT_EQ(line.substr(0, 10), FormatDateTime("dd/mm/yyyy", Now()));
      EXPECT_TRUE(line.size() > kStamp && line[13] == ':' && line[kStamp] == ' ') << line;
      texts.emplace_back(line.substr(std::min(line.size(), kStamp + 1)));
    }
    return texts;
  }

  TemporaryHome home;
  WithVariable computer{"KVSHARE_COMPUTER", "till1"};
  WithVariable user{"KVSHARE_USER", "somchai"};
  THeadlessInterface screen;
  TUseInterface use{screen};
};

using Lines = std::vector<std::string>;

TEST_F(EventLog, WritesLines) {
  TComponent sender(nullptr);
  TKovraDbLog::WriteLogFile(&sender, "a", "b b", "c", "d\r\nd\rd\nd");
  TKovraDbLog::WriteLogFile(nullptr, "", "", "บาท"_th, "");
  TStringList items;
  items.Add("first");
  items.Add("as\nit stands");
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", items);
  constexpr std::string_view kThai = "  TILL1 somchai บาท "_th;
  const Lines want = {"a b b TILL1 somchai c d  d d d", std::string(kThai),
                      "a b TILL1 somchai c first"};
  const std::string bytes = Log();
  constexpr std::string_view kLast = " a b TILL1 somchai c as\nit stands\r\n";
  constexpr std::size_t kStamp = 16;
  ASSERT_TRUE(bytes.ends_with(kLast));
  EXPECT_EQ(Texts(bytes.substr(0, bytes.size() - kLast.size() - kStamp)), want);
  EXPECT_TRUE(bytes.find(" d\r\n") != std::string::npos) << "CR LF";
  EXPECT_TRUE(screen.messages.empty());
}

TEST_F(EventLog, AppendsWithoutARenameInTheStoredMonth) {
  Put("events.log", "earlier\r\n");
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d");
  EXPECT_TRUE(Log().starts_with("earlier\r\n"));
  EXPECT_EQ(Texts(Log().substr(9)), Lines{"a b TILL1 somchai c d"});
}

TEST_F(EventLog, ANewMonthArchivesTheLog) {
  struct Case {
    std::string_view stored;
    std::vector<std::string_view> taken;
    std::string_view archive;
    const char* why;
  };
  const Case cases[] = {
      {"", {}, "00000000.log", "a fresh installation"},
      {"200403", {"20040300.log", "20040301.log"}, "20040302.log", "the first free number"},
      {"299901", {}, "29990100.log", "a later month is another one too"},
      {"200405", {"20040501.log"}, "20040500.log", "a gap is free"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    SetMonth(c.stored);
    for (const std::string_view name : c.taken) Put(name, "kept");
    Put("events.log", "old");
    TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d");
    EXPECT_EQ(Log(c.archive), "old");
    EXPECT_EQ(Texts(Log()).size(), 1u);
    EXPECT_EQ(Month(), ThisMonth());
    for (const std::string_view name : c.taken) EXPECT_EQ(Log(name), "kept");
  }
}

TEST_F(EventLog, WithoutALogTheMonthIsStoredAlone) {
  SetMonth("200403");
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", TStringList());
  EXPECT_EQ(Month(), ThisMonth());
  EXPECT_EQ(Log("20040300.log"), "no file");
  EXPECT_EQ(Log(), "no file") << "an empty list writes nothing";
}

TEST_F(EventLog, BlankNamesWriteNothing) {
  SetMonth("200403");
  KovraLogDatabaseName = "";
  KovraLogTableName = "  ";
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d");
  TKovraDbLog::WriteTraceFile("", "b", "c");
  EXPECT_EQ(Month(), "200403");
  EXPECT_TRUE(screen.messages.empty());
}

TEST_F(EventLog, WhatCannotBeWrittenIsShown) {
  os::ForceDirectories(std::string(kFolder) + "events.log");  // a folder in its place
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d");
  TStringList items;
  items.Add("x");
  TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", items);
  ExePath = R"(C:\Logs\events.log\)";
  TKovraDbLog::WriteTraceFile("", "b", "c");
  ASSERT_EQ(screen.messages.size(), 3u);
  constexpr std::string_view kText =
      "ไม่สามารถสร้างแฟ้มสำหรับบันทึกเหตุการณ์\r\nC:\\Logs\\events.log\r\nFile access denied"_th;
  const TMessageBox want{std::string(kText), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0};
  EXPECT_EQ(screen.messages[0], want);
  EXPECT_EQ(screen.messages[1], want);
}

TEST_F(EventLog, ALogThatCannotBeRenamedReachesTheCaller) {
  SetMonth("200403");
  Put("events.log", "old");
  os::ForceDirectories(std::string(kFolder) + "20040300.log");
  EXPECT_EQ(MessageOf<EInOutError>([] { TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d"); }),
            "File access denied");
  EXPECT_EQ(Log(), "old");
  EXPECT_EQ(Month(), "200403") << "tried again by the next write";
}

// Else each line would leave an archive of its own behind.
TEST_F(EventLog, NothingIsRenamedWhenTheMonthCannotBeStored) {
  const TemporaryHome unusable;
  fs::create_directories(os::RegistryFile());
  Put("events.log", "old");
  EXPECT_THROW(TKovraDbLog::WriteLogFile(nullptr, "a", "b", "c", "d"), ERegistryException);
  EXPECT_EQ(Log(), "old");
  EXPECT_EQ(Log("00000000.log"), "no file");
}

TEST_F(EventLog, TraceLines) {
  ExePath = kFolder;
  TKovraDbLog::WriteTraceFile("trace.txt", "b", "c\r\nc");
  TKovraDbLog::WriteTraceFile("trace.txt", "", "");
  EXPECT_EQ(Texts(Log("trace.txt")), (Lines{"TILL1 somchai b c  c", "TILL1 somchai  "}));
}

// Eight programs find the new month at the same moment.
TEST_F(EventLog, ManyProcessesRollOverOnce) {
  constexpr int kProcesses = 8;
  const int lines = Asked("KVSHARE_TEST_LINES", 40);  // of each
  const auto text = [](int i) { return std::string(static_cast<std::size_t>(i % 40 * 50), '.'); };
  for (int round = 0; round < 5; ++round) {
    Put("events.log", "old\r\n");
    SetMonth("200403");
    Pipe start;
    std::vector<ChildProcess> writers;
    for (int process = 0; process < kProcesses; ++process) {
      writers.emplace_back([&, process] {
        start.CloseWriter();
        for (int go = 0; start.Read(go);) continue;  // until the parent closes its end
        for (int i = 0; i < lines; ++i) {
          TKovraDbLog::WriteLogFile(nullptr, std::to_string(process), std::to_string(i), "c",
                                    text(i));
        }
        return screen.messages.empty();
      });
    }
    start.CloseWriter();
    for (ChildProcess& writer : writers) EXPECT_TRUE(writer.Held());

    EXPECT_EQ(Log("20040300.log").substr(0, 5), "old\r\n");
    EXPECT_FALSE(FileExists(std::string(kFolder) + "20040301.log")) << "one archive";
    EXPECT_EQ(Month(), ThisMonth());
    Lines found = Texts(Log("20040300.log").substr(5));
    for (std::string& line : Texts(Log())) found.push_back(std::move(line));
    Lines want;
    for (int process = 0; process < kProcesses; ++process) {
      for (int i = 0; i < lines; ++i) {
        want.push_back(std::to_string(process) + " " + std::to_string(i) + " TILL1 somchai c " +
                       text(i));
      }
    }
    std::ranges::sort(found);
    std::ranges::sort(want);
    EXPECT_TRUE(found == want) << "every line whole, none lost";
    fs::remove_all(os::NativePath(kFolder));
  }
}

}  // namespace
}  // namespace kvshare
