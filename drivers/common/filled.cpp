#include "drivers/common/filled.h"

#include <array>
#include <span>

#include "drivers/common/valuetexts.h"

namespace kvshare::drivers {

// A single INTEGER PRIMARY KEY is the number of the row.
constexpr FilledQuery kSqliteFilled{
    "SELECT name FROM pragma_table_xinfo(?2, ?1) WHERE dflt_value IS NOT NULL OR hidden > 1"
    " OR (pk = 1 AND upper(type) = 'INTEGER'"
    " AND 1 = (SELECT count(*) FROM pragma_table_xinfo(?2, ?1) WHERE pk > 0))"};

// MariaDB writes the default Null as a word.
constexpr FilledQuery kMariaDbFilled{
    "SELECT COLUMN_NAME FROM information_schema.COLUMNS"
    " WHERE TABLE_SCHEMA = COALESCE(?1, DATABASE()) AND TABLE_NAME = ?2"
    " AND (COALESCE(COLUMN_DEFAULT, 'NULL') <> 'NULL'"
    " OR EXTRA LIKE '%auto_increment%' OR EXTRA LIKE '%GENERATED%')"};

// A trigger before the insert may fill any of them (bits 0 to 2: for each row, before, insert).
constexpr FilledQuery kPostgresFilled{
    "SELECT a.attname FROM pg_catalog.pg_attribute a"
    " JOIN pg_catalog.pg_type t ON t.oid = a.atttypid"
    " WHERE a.attrelid = to_regclass(CAST(?3 AS text)) AND a.attnum > 0 AND NOT a.attisdropped"
    " AND (a.atthasdef OR a.attidentity <> '' OR t.typdefault IS NOT NULL"
    " OR EXISTS (SELECT 1 FROM pg_catalog.pg_trigger g WHERE g.tgrelid = a.attrelid"
    " AND NOT g.tgisinternal AND CAST(g.tgtype AS integer) & 7 = 7))",
    Fold::Lower};

// Triggers are the old way to number records here. A trigger's type has its time in bit 0 and up to
// three events in the bits above, all counted from -1.
constexpr FilledQuery kFirebirdFilled{
    "SELECT f.RDB$FIELD_NAME FROM RDB$RELATION_FIELDS f"
    " JOIN RDB$FIELDS d ON d.RDB$FIELD_NAME = f.RDB$FIELD_SOURCE"
    " WHERE f.RDB$RELATION_NAME = ?2"
    " AND (f.RDB$DEFAULT_SOURCE IS NOT NULL OR d.RDB$DEFAULT_SOURCE IS NOT NULL"
    " OR d.RDB$COMPUTED_SOURCE IS NOT NULL OR f.RDB$IDENTITY_TYPE IS NOT NULL"
    " OR EXISTS (SELECT 1 FROM RDB$TRIGGERS g WHERE g.RDB$RELATION_NAME = f.RDB$RELATION_NAME"
    " AND g.RDB$TRIGGER_TYPE < 8192 AND MOD(g.RDB$TRIGGER_TYPE, 2) = 1"
    " AND 1 IN (BIN_AND(BIN_SHR(g.RDB$TRIGGER_TYPE + 1, 1), 3),"
    " BIN_AND(BIN_SHR(g.RDB$TRIGGER_TYPE + 1, 3), 3),"
    " BIN_AND(BIN_SHR(g.RDB$TRIGGER_TYPE + 1, 5), 3))))",
    Fold::Upper};

namespace {

char Folded(char c, Fold fold) {
  if (fold == Fold::Lower && c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  if (fold == Fold::Upper && c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  return c;
}

// The mark that ends a quoted name; 0 where none begins.
char EndOfQuote(char first) {
  constexpr std::string_view kFirst = "\"`[";
  constexpr std::string_view kLast = "\"`]";
  const std::size_t mark = kFirst.find(first);
  return mark == std::string_view::npos ? '\0' : kLast[mark];
}

// A name with dots, part by part, as the server keeps them.
std::vector<std::string> PartsOfName(std::string_view text, Fold fold) {
  std::vector<std::string> parts(1);
  char quote = '\0';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quote == '\0' && c == '.') {
      parts.emplace_back();
    } else if (quote == '\0' && parts.back().empty() && EndOfQuote(c) != '\0') {
      quote = EndOfQuote(c);
    } else if (c == quote && i + 1 < text.size() && text[i + 1] == quote) {
      parts.back() += text[++i];
    } else if (c == quote) {
      quote = '\0';
    } else {
      parts.back() += quote == '\0' ? Folded(c, fold) : c;
    }
  }
  return parts;
}

data::StatementParts StatementOf(std::string_view sql) {
  data::StatementParts statement;
  for (std::size_t mark = 0; (mark = sql.find('?')) != std::string_view::npos;) {
    statement.texts.emplace_back(sql.substr(0, mark));
    statement.places.push_back(static_cast<std::size_t>(sql[mark + 1] - '1'));
    sql.remove_prefix(mark + 2);
  }
  statement.texts.emplace_back(sql);
  return statement;
}

}  // namespace

std::vector<std::string> FilledColumnsBy(const FilledQuery& query, data::Connection& connection,
                                         std::string_view table) {
  if (query.sql.empty()) return {};
  const data::StatementParts statement = StatementOf(query.sql);
  const std::vector<std::string> parts = PartsOfName(table, query.fold);
  std::array<data::ParameterValue, 3> values{{{}, parts.back(), std::string(table)}};
  if (parts.size() > 1) values[0] = parts[parts.size() - 2];
  const auto rows = connection.Query(statement, std::span(values).first(statement.Parameters()));
  std::vector<std::string> columns;
  while (rows->Next()) columns.emplace_back(TrimmedRight(rows->Text(0)));
  return columns;
}

}  // namespace kvshare::drivers
