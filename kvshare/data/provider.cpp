#include "kvshare/data/provider.h"

#include "kvshare/data/errors.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

// The word at the beginning of `text`, which loses it and the blanks in front; a quoted name is
// one.
std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  std::size_t end = text.find_first_of(" \t\r\n,;()");
  if (text.starts_with('"') || text.starts_with('`') || text.starts_with('[')) {
    const char close = text.front() == '[' ? ']' : text.front();
    end = text.find(close, 1);
    if (end != std::string_view::npos) ++end;
  }
  if (end == 0) end = 1;
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(word.size());
  return word;
}

// The table behind the first FROM, where no second one follows; "" else.
std::string_view OnlyTableOf(std::string_view sql) {
  for (std::string_view word = TakeWord(sql); !SameText(word, "FROM"); word = TakeWord(sql)) {
    if (word.empty()) return {};
  }
  const std::string_view table = TakeWord(sql);
  if (table == "(") return {};
  for (std::string_view word = TakeWord(sql); !word.empty(); word = TakeWord(sql)) {
    if (word == "," || SameText(word, "JOIN")) return {};
    if (SameText(word, "WHERE") || SameText(word, "ORDER")) break;
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

std::string TDataSetProvider::ResolvedTable() const {
  std::string table = TableName;
  if (table.empty()) table = OnlyTableOf(query_.SQL().Text());
  if (table.empty()) DatabaseError("Unable to resolve records.  Table name not found.", this);
  return table;
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
