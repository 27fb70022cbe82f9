// The event log with its monthly archives, as files to read.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/rtl/datetime.h"

namespace kvshare::app {

// The files of the log at a system's name: the archives beside it (YYYYMMNN.log), months in order
// and numbers in order, then the log itself. Those that exist.
std::vector<std::string> LogFiles(const std::string& log);

struct LogLine {
  std::string_view text;  // code page 874, without its line end
  bool ended = false;     // by CR LF
};

// Takes the first line off a text that is not empty. Only LF ends a line here: what a text's own
// CR does to a reader is not the log's business.
LogLine TakeLogLine(std::string_view& rest);

// The moment at the line's beginning, dd/mm/yyyy hh:mm and a blank, whatever the two separators.
std::optional<TDateTime> StampOf(std::string_view line);

// Which lines to show. A line without a stamp belongs to the one before it.
class LogFilter {
 public:
  std::optional<TDateTime> day;
  std::string user;      // ignoring letter case, "" for all
  std::string computer;  // likewise

  bool Shows(std::string_view line);

 private:
  bool Matches(std::string_view line, TDateTime moment) const;

  bool shown_ = true;
};

struct LogProblem {
  std::string file;  // a system's name; "" for one of the log as a whole
  int line = 0;      // from 1; 0 for one of the file as a whole
  std::string text;  // UTF-8
};

// Lines that are not whole (no CR LF, no stamp, fewer than seven fields, bytes that are no letters)
// and months between the first and the last line that have none.
std::vector<LogProblem> VerifyLog(const std::string& log);

// All bytes of a file by its system's name. Throws StreamError.
std::string ReadLogFile(const std::string& path);

}  // namespace kvshare::app
