// Lists of lines taken apart into statements.
//
// Each line is trimmed of bytes <= 32; an empty one is skipped; one with a `;` is cut before its
// first `;`, wherever that stands: in a quoted text and in a comment too.
// Internal header.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

// `text` before its first `;`, or all of it.
inline std::string_view BeforeSemicolon(std::string_view text) {
  return text.substr(0, text.find(';'));
}

// One line by the rule above.
struct SqlLine {
  std::string_view text;
  bool ends = false;     // it had a `;`
  bool skipped = false;  // it was empty

  explicit SqlLine(std::string_view line) {
    const std::string_view trimmed = Trim(line);
    text = BeforeSemicolon(trimmed);
    ends = text.size() != trimmed.size();
    skipped = trimmed.empty();
  }
};

// A statement of a list: its lines, each followed by CR LF, with the place where it stands.
struct SqlStatement {
  std::string text;
  int number = 0;     // from 1
  int firstLine = 0;  // from 1, of the list; the first that is not empty
};

// Calls `run` with every statement of the list in order. Lines that contain `;` end one, and so
// does the last line when it leaves something. A line that is nothing but `;` is an empty line of
// the statement, or an empty statement.
template <typename Run>
void ForEachSqlStatement(const TStrings& lines, Run run) {
  SqlStatement statement;
  const int count = lines.Count();
  for (int i = 0; i < count; ++i) {
    const SqlLine line(lines[i]);
    if (line.skipped) continue;
    if (statement.firstLine == 0) statement.firstLine = i + 1;
    statement.text.append(line.text).append("\r\n");
    if (!line.ends) continue;
    ++statement.number;
    run(statement);
    statement.text.clear();
    statement.firstLine = 0;
  }
  if (statement.firstLine == 0) return;
  ++statement.number;
  run(statement);
}

// All lines as one statement, CR LF between them.
KVSHARE_API std::string OneSqlStatement(const TStrings& lines);

}  // namespace kvshare
