// Statements of a list: taken apart again one byte at a time, without lines, and compared. A batch
// that the command takes loses nothing but remarks.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "apps/kvshare/data/sqltext.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/rtl/stringlist.h"

namespace {

struct Told {
  std::vector<std::string> statements;
  std::vector<int> lines;
  std::string one;  // all as one statement
};

Told TellAgain(const kvshare::TStringList& list) {
  Told told;
  std::string statement;
  int first = 0;
  const auto end = [&] {
    told.statements.push_back(statement);
    told.lines.push_back(first);
    statement.clear();
    first = 0;
  };
  bool any = false;
  for (int i = 0; i < list.Count(); ++i) {
    const std::string& line = list[i];
    std::size_t from = 0;
    std::size_t to = line.size();
    while (from < to && static_cast<unsigned char>(line[from]) <= ' ') ++from;
    while (from < to && static_cast<unsigned char>(line[to - 1]) <= ' ') --to;
    if (from == to) continue;
    if (first == 0) first = i + 1;
    if (any) told.one += "\r\n";
    any = true;
    bool ended = false;
    for (; from < to && !ended; ++from) {
      ended = line[from] == ';';
      if (ended) break;
      statement += line[from];
      told.one += line[from];
    }
    statement += "\r\n";
    if (ended) end();
  }
  if (first != 0) end();
  return told;
}

// Behind blanks and `;`.
bool BeginsAsRemark(std::string_view text) {
  while (!text.empty() && (text[0] == ';' || static_cast<unsigned char>(text[0]) <= ' ')) {
    text.remove_prefix(1);
  }
  return text.empty() || text.starts_with("--") || text.starts_with("/*") || text[0] == '#';
}

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kvshare::TStringList list;
  list.SetText(std::string(reinterpret_cast<const char*>(data), size));
  const Told told = TellAgain(list);
  std::size_t count = 0;
  kvshare::ForEachSqlStatement(list, [&](const kvshare::SqlStatement& statement) {
    Require(count < told.statements.size());
    Require(statement.text == told.statements[count]);
    Require(statement.firstLine == told.lines[count]);
    ++count;
    Require(statement.number == static_cast<int>(count));
  });
  Require(count == told.statements.size());
  Require(kvshare::OneSqlStatement(list) == told.one);

  kvshare::app::KindOfSql(told.one);
  kvshare::app::LossInStatement(told.one);
  if (kvshare::app::PrepareBatch(list)) return 0;
  for (const std::string& line : list) {
    const std::size_t end = line.find(';');
    if (end != std::string::npos) Require(BeginsAsRemark(line.substr(end)));
  }
  return 0;
}
