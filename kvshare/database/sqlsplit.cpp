#include "kvshare/database/sqlsplit.h"

namespace kvshare {

std::string OneSqlStatement(const TStrings& lines) {
  std::string text;
  bool first = true;
  const int count = lines.Count();
  for (int i = 0; i < count; ++i) {
    const SqlLine line(lines[i]);
    if (line.skipped) continue;
    if (!first) text.append("\r\n");
    first = false;
    text.append(line.text);
  }
  return text;
}

}  // namespace kvshare
