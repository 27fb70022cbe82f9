#include "kvshare/database/dblog.h"

#include <algorithm>

#include "kvshare/messages/catalogue.h"
#include "kvshare/os/appendfile.h"
#include "kvshare/os/files.h"
#include "kvshare/os/registry/registry.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/messages.h"

namespace kvshare {

namespace {

constexpr std::string_view kMonthValue = "CurrentLog";
constexpr std::string_view kLineEnd = "\r\n";

bool IsBlank(std::string_view text) {
  return Trim(text).empty();
}

std::string MonthSection() {
  return R"(LogFile\)" + KovraAliasName;
}

std::string StoredMonth() {
  return MyKovraRegistry->ReadRegistryString("", MonthSection(), kMonthValue, "000000");
}

std::string MonthOf(TDateTime moment) {
  return FormatDateTime("YYYYMM", moment);
}

void Archive(const std::string& logFile, const std::string& month) {
  for (int number = 0;; ++number) {
    const std::string archive = Format("%s%s%2.2d.log", {KovraLogDatabaseName, month, number});
    if (FileExists(archive)) continue;
    if (os::RenameFile(logFile, archive)) return;
    if (!FileExists(logFile)) return;  // a program that keeps its month elsewhere was first
    constexpr int kAccessDenied = 5;
    if (!FileExists(archive)) throw EInOutError("File access denied", kAccessDenied);
  }
}

// The month is stored before the rename and stands only when the rename does, so that no store that
// cannot be written lets each line make an archive. While one program is in here the user's others
// wait at the transaction, and then see that it is done.
TDateTime BeginMonth(const std::string& logFile) {
  TDateTime moment;
  os::InOneRegistryTransaction([&] {
    moment = Now();
    const std::string stored = StoredMonth();
    const std::string month = MonthOf(moment);
    if (stored == month) return;
    MyKovraRegistry->WriteRegistryString("", MonthSection(), kMonthValue, month);
    if (FileExists(logFile)) Archive(logFile, stored);
  });
  return moment;
}

// Gives the moment of the write, which lies in the log's month.
TDateTime RollOver(const std::string& logFile) {
  const TDateTime moment = Now();
  return StoredMonth() == MonthOf(moment) ? moment : BeginMonth(logFile);
}

std::string InOneLine(std::string_view text) {
  std::string line(text);
  std::ranges::replace_if(
      line, [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return line;
}

std::string Stamp(TDateTime moment) {
  return FormatDateTime("dd/mm/yyyy hh:mm", moment);
}

void AppendOrShow(const std::string& fileName, std::string_view lines) {
  try {
    os::AppendToFile(fileName, lines);
  } catch (const Exception& e) {
    const std::string text = LoadStr(rstrECantCreateLog)
                                 .append(kLineEnd)
                                 .append(fileName)
                                 .append(kLineEnd)
                                 .append(e.Message());
    MessageDlg(text, TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0);
  }
}

// What every line of one call has in common.
struct Event {
  std::string_view a, b, c;
  std::string computer = TKovraWin32::MyComputerName();
  std::string login = TKovraWin32::MyLoginName();

  void AppendLine(std::string& lines, TDateTime moment, std::string_view d) const {
    AppendFormat(lines, "%s %s %s %s %s %s %s", {Stamp(moment), a, b, computer, login, c, d});
    lines += kLineEnd;
  }
};

std::string LogFileName() {
  return KovraLogDatabaseName + KovraLogTableName;
}

}  // namespace

void TKovraDbLog::WriteLogFile(TComponent* /*Sender*/, std::string_view A, std::string_view B,
                               std::string_view C, std::string_view D) {
  const std::string logFile = LogFileName();
  if (IsBlank(logFile)) return;
  const TDateTime moment = RollOver(logFile);
  std::string line;
  Event{A, B, C}.AppendLine(line, moment, InOneLine(D));
  AppendOrShow(logFile, line);
}

void TKovraDbLog::WriteLogFile(TComponent* /*Sender*/, std::string_view A, std::string_view B,
                               std::string_view C, const TStrings& Lines) {
  const std::string logFile = LogFileName();
  if (IsBlank(logFile)) return;
  RollOver(logFile);
  if (Lines.Count() == 0) return;
  const Event event{A, B, C};
  std::string lines;
  for (const std::string& item : Lines) event.AppendLine(lines, Now(), item);
  AppendOrShow(logFile, lines);
}

void TKovraDbLog::WriteTraceFile(std::string_view FileName, std::string_view B,
                                 std::string_view C) {
  const std::string traceFile = std::string(ExePath).append(FileName);
  if (IsBlank(traceFile)) return;
  std::string line = Format("%s %s %s %s %s", {Stamp(Now()), TKovraWin32::MyComputerName(),
                                               TKovraWin32::MyLoginName(), B, InOneLine(C)});
  AppendOrShow(traceFile, line.append(kLineEnd));
}

}  // namespace kvshare
