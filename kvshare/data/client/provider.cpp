#include "kvshare/data/client/provider.h"

#include <algorithm>
#include <initializer_list>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/sql/statement.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
  return std::ranges::any_of(words, [word](std::string_view one) { return SameText(word, one); });
}

// The table of a statement that reads records of one table alone; "" of any other.
std::string_view OnlyTableOf(std::string_view sql, const data::Lexis& lexis) {
  int depth = 0;
  bool conditions = false;  // behind WHERE, where tables are named for other purposes
  std::string_view table;
  std::string_view before;
  std::size_t at = 0;
  const auto next = [&] { return data::TakeWord(sql, at, lexis); };
  for (std::string_view word = next(); !word.empty(); word = next()) {
    depth += word == "(" ? 1 : word == ")" ? -1 : 0;
    const bool from = table.empty() && SameText(before, "FROM");
    if (from && word == "(") return {};
    if (from) table = word;
    before = depth == 0 ? word : std::string_view{};
    if (depth != 0 || table.empty()) continue;
    conditions = conditions || IsOneOf(word, {"WHERE", "ORDER"});
    const bool another = !conditions && (word == "," || SameText(word, "JOIN"));
    if (another || IsOneOf(word, {"GROUP", "UNION", "EXCEPT", "INTERSECT"})) return {};
  }
  return table;
}

}  // namespace

TDataSetProvider::TDataSetProvider(TSQLConnection& connection, TComponent* owner,
                                   std::string_view name)
    : TComponent(owner, name), connection_(connection) {
  query_.SetSQLConnection(&connection_);
}

TDataSetProvider::~TDataSetProvider() = default;

std::string TDataSetProvider::KnownTable() const {
  if (!TableName.empty()) return TableName;
  return std::string(OnlyTableOf(query_.SQL().Text(), connection_.StatementLexis()));
}

std::string TDataSetProvider::ResolvedTable() const {
  std::string table = KnownTable();
  if (table.empty()) DatabaseError("Unable to resolve records.  Table name not found.", this);
  return table;
}

std::vector<std::string> TDataSetProvider::FilledColumns() const {
  connection_.Open();
  const std::string table = KnownTable();
  return table.empty() ? std::vector<std::string>() : connection_.FilledColumns(table);
}

void TDataSetProvider::OpenQuery() {
  query_.Close();
  const bool own = query_.SQL().Count() == 0 || query_.SQL().Text() == ownStatement_;
  if (own && !TableName.empty()) {
    query_.SQL().Clear();
    query_.SQL().Add("select * from " + TableName);
    ownStatement_ = query_.SQL().Text();
  }
  query_.Open();
}

}  // namespace kvshare
