#include "drivers/sqlite/columns.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace kvshare::drivers::sqlite {

namespace {

using data::Column;
using data::ColumnKind;

struct TypeRow {
  std::string_view name;
  ColumnKind kind;
};

constexpr TypeRow kTypes[] = {
    {"INT", ColumnKind::Integer},
    {"INTEGER", ColumnKind::Integer},
    {"SMALLINT", ColumnKind::Integer},
    {"TINYINT", ColumnKind::Integer},
    {"MEDIUMINT", ColumnKind::Integer},
    {"AUTOINC", ColumnKind::Integer},
    {"INT2", ColumnKind::Integer},
    {"INT4", ColumnKind::Integer},
    {"BIGINT", ColumnKind::Largeint},
    {"INT8", ColumnKind::Largeint},
    {"LARGEINT", ColumnKind::Largeint},
    {"BOOLEAN", ColumnKind::Boolean},
    {"BOOL", ColumnKind::Boolean},
    {"BIT", ColumnKind::Boolean},
    {"LOGICAL", ColumnKind::Boolean},
    {"REAL", ColumnKind::Float},
    {"DOUBLE", ColumnKind::Float},
    {"FLOAT", ColumnKind::Float},
    {"DECIMAL", ColumnKind::Decimal},
    {"NUMERIC", ColumnKind::Decimal},
    {"NUMBER", ColumnKind::Decimal},
    {"MONEY", ColumnKind::Decimal},
    {"SMALLMONEY", ColumnKind::Decimal},
    {"CURRENCY", ColumnKind::Decimal},
    {"DATE", ColumnKind::Date},
    {"TIME", ColumnKind::Time},
    {"DATETIME", ColumnKind::TimeStamp},
    {"TIMESTAMP", ColumnKind::TimeStamp},
    {"SMALLDATETIME", ColumnKind::TimeStamp},
    {"TEXT", ColumnKind::Memo},
    {"CLOB", ColumnKind::Memo},
    {"MEMO", ColumnKind::Memo},
    {"NTEXT", ColumnKind::Memo},
    {"LONGTEXT", ColumnKind::Memo},
    {"BLOB", ColumnKind::Blob},
    {"IMAGE", ColumnKind::Blob},
    {"BINARY", ColumnKind::Blob},
    {"VARBINARY", ColumnKind::Blob},
    {"BYTEA", ColumnKind::Blob},
    {"GRAPHIC", ColumnKind::Blob},
};

constexpr char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

std::string FirstWord(std::string_view declared) {
  std::string word(declared.substr(0, declared.find_first_of(" _(")));
  std::ranges::transform(word, word.begin(), Upper);
  return word;
}

// The number after `from`; -1 without one. `from` moves behind it.
std::int32_t NumberIn(std::string_view text, std::size_t& from) {
  from = std::min(text.find_first_of("0123456789", from), text.size());
  std::int32_t value = -1;
  const char* end = std::from_chars(text.data() + from, text.data() + text.size(), value).ptr;
  from = static_cast<std::size_t>(end - text.data());
  return value;
}

}  // namespace

Column ColumnOfType(std::string_view declared) {
  constexpr std::int32_t kMoneyDigits = 19;
  constexpr std::int32_t kMoneyDecimals = 4;
  Column column;
  const std::string word = FirstWord(declared);
  const auto* row = std::ranges::find(kTypes, word, &TypeRow::name);
  if (row != std::end(kTypes)) column.kind = row->kind;
  std::size_t at = std::min(declared.find('('), declared.size());
  const std::int32_t size = NumberIn(declared, at);
  const std::int32_t decimals = NumberIn(declared, at);
  if (column.kind == ColumnKind::Decimal) {
    column.size = size >= 0 ? size : kMoneyDigits;
    column.decimals = decimals >= 0 ? decimals : size >= 0 ? 0 : kMoneyDecimals;
  } else if (column.kind == ColumnKind::Text) {
    column.size = std::max(size, 0);
  }
  return column;
}

}  // namespace kvshare::drivers::sqlite
