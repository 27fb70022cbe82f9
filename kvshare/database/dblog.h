// The event log of the open company, and the trace files beside a program (docs/log.md).
#pragma once

#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/controls.h"

namespace kvshare {

// Stateless; every operation is static. The library never creates an instance.
//
// The log is the file KovraLogTableName in the folder KovraLogDatabaseName; where both are blank
// nothing is written. Each line is
//   dd/mm/yyyy hh:mm A B COMPUTER LOGIN C D
// with the local time and CR LF. Line breaks in D become blanks; the other texts stay as they are.
//
// A write first looks whether the month has changed since the one stored for KovraAliasName in the
// user's settings ("CurrentLog" in LogFile\alias). Then it renames the log to the stored month and
// the first free number in the log's folder, 20040300.log, and stores the new month.
//
// Any number of processes may write at once: lines stay whole, and one of them renames the log.
// What keeps a line from being written is shown in an error box, and the call returns. A log that
// cannot be renamed throws EInOutError, and the line is not written. Needs MyKovraRegistry.
class KVSHARE_API TKovraDbLog {
 public:
  static void WriteLogFile(TComponent* Sender, std::string_view A, std::string_view B,
                           std::string_view C, std::string_view D);

  // One line for each item, which takes the place of D as it stands. All of them are written in one
  // piece; an empty list writes none.
  static void WriteLogFile(TComponent* Sender, std::string_view A, std::string_view B,
                           std::string_view C, const TStrings& Lines);

  // Writes `dd/mm/yyyy hh:mm COMPUTER LOGIN B C` to the file in ExePath, line breaks in C as
  // blanks; nothing where both names are blank. Whether to trace at all (BTrace) is the caller's
  // business. Failures are shown likewise.
  static void WriteTraceFile(std::string_view FileName, std::string_view B, std::string_view C);
};

}  // namespace kvshare
