#include "drivers/common/sqlitecolumns.h"

#include <algorithm>
#include <charconv>

#include "drivers/common/valuetexts.h"

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

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  std::ranges::transform(upper, upper.begin(), Upper);
  return upper;
}

std::string FirstWord(std::string_view declared) {
  return UpperCase(declared.substr(0, declared.find_first_of(" _(")));
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

Column ColumnOfType(std::string_view declared, bool compound) {
  Column column = ColumnOfType(declared);
  const bool number = column.kind == ColumnKind::Integer || column.kind == ColumnKind::Largeint ||
                      column.kind == ColumnKind::Float || column.kind == ColumnKind::Decimal;
  if (!compound || !number) return column;
  column.kind = ColumnKind::Decimal;
  column.size = 0;
  column.decimals = 0;
  return column;
}

bool KeepsTexts(std::string_view declared) {
  const std::string type = UpperCase(declared);
  const auto has = [&type](const char* word) { return type.find(word) != std::string::npos; };
  return !has("INT") && (has("CHAR") || has("CLOB") || has("TEXT"));
}

std::string_view DecimalIn(const data::Column& column, std::string_view text,
                           std::string& scratch) {
  const std::string_view number = text.substr(text.starts_with('-') ? 1 : 0);
  const bool code = number.size() > 1 && number[0] == '0' && number[1] != '.';
  if (column.size == 0 && code) {
    throw data::DriverError("\"" + std::string(text) + "\" is no number of its column's kind");
  }
  return ToDecimal(text, scratch);
}

}  // namespace kvshare::drivers::sqlite
