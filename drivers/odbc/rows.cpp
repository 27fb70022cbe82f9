#include "drivers/odbc/rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "drivers/common/sqlitecolumns.h"
#include "drivers/common/valuetexts.h"
#include "drivers/odbc/utf16.h"

namespace kvshare::odbc {
namespace {

using data::Column;
using data::ColumnKind;

constexpr std::size_t kRowsOfBlock = 64;
constexpr SQLULEN kLongestShort = 1000;       // characters
constexpr SQLSMALLINT kSqlServerTime = -154;  // with fractions of a second

ColumnKind KindOf(SQLSMALLINT type, bool isUnsigned) {
  switch (type) {
    case SQL_BIT:
      return ColumnKind::Boolean;
    case SQL_TINYINT:
    case SQL_SMALLINT:
      return ColumnKind::Integer;
    case SQL_INTEGER:
      return isUnsigned ? ColumnKind::Largeint : ColumnKind::Integer;
    case SQL_BIGINT:
      return isUnsigned ? ColumnKind::Decimal : ColumnKind::Largeint;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return ColumnKind::Float;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return ColumnKind::Decimal;
    case SQL_TYPE_DATE:
      return ColumnKind::Date;
    case SQL_TYPE_TIME:
    case kSqlServerTime:
      return ColumnKind::Time;
    case SQL_TYPE_TIMESTAMP:
      return ColumnKind::TimeStamp;
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
      return ColumnKind::Memo;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
      return ColumnKind::Blob;
    default:
      return ColumnKind::Text;
  }
}

// How a value of that kind is fetched. Moments in their standard text forms: the structure of a
// time has no fractions.
SQLSMALLINT FetchedAs(ColumnKind kind, TextRules rules) {
  if (rules.sqlite && kind != ColumnKind::Blob) return SQL_C_CHAR;
  switch (kind) {
    case ColumnKind::Boolean:
    case ColumnKind::Integer:
    case ColumnKind::Largeint:
      return SQL_C_SBIGINT;
    case ColumnKind::Float:
      return SQL_C_DOUBLE;
    case ColumnKind::Decimal:
    case ColumnKind::Date:
    case ColumnKind::Time:
    case ColumnKind::TimeStamp:
      return SQL_C_CHAR;
    case ColumnKind::Blob:
      return SQL_C_BINARY;
    case ColumnKind::Text:
    case ColumnKind::Memo:
      break;
  }
  return rules.utf8Bytes ? SQL_C_CHAR : SQL_C_WCHAR;
}

// Bytes of a value, 0 for a long one.
std::size_t WidthOf(const Column& column, SQLSMALLINT fetchedAs, SQLULEN size) {
  constexpr std::size_t kShortText = 80;
  switch (column.kind) {
    case ColumnKind::Boolean:
    case ColumnKind::Integer:
    case ColumnKind::Largeint:
    case ColumnKind::Float:
      return fetchedAs == SQL_C_CHAR ? kShortText : 8;
    case ColumnKind::Decimal:
    case ColumnKind::Date:
    case ColumnKind::Time:
    case ColumnKind::TimeStamp:
      return kShortText;
    case ColumnKind::Text:  // the longest characters, and a zero behind them
      if (size == 0 || size > kLongestShort) return 0;
      return fetchedAs == SQL_C_CHAR ? 4 * size + 1 : (2 * size + 1) * sizeof(SQLWCHAR);
    case ColumnKind::Memo:
    case ColumnKind::Blob:
      break;
  }
  return 0;
}

std::u16string_view Wide(std::string_view bytes) {
  return {reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / sizeof(SQLWCHAR)};
}

template <typename Value>
Value Read(std::string_view bytes) {
  Value value{};
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

double FiniteOf(std::string_view text) {
  const double real = drivers::ToFloat(text);
  if (!std::isfinite(real)) throw data::DriverError("Infinity is no number");
  return real;
}

// The whole number that a text has, also as 8.0.
std::int64_t WholeOf(std::string_view text) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  if (text.find_first_of(".eE") == std::string_view::npos) return drivers::ToInteger(text);
  const double real = FiniteOf(text);
  if (std::nearbyint(real) != real || real < -kTwoTo63 || real >= kTwoTo63) {
    throw data::DriverError("\"" + std::string(text) + "\" is no whole number");
  }
  return static_cast<std::int64_t>(real);
}

}  // namespace

Rows::Rows(Handle statement, TextRules rules)
    : statement_(std::move(statement)), sqlite_(rules.sqlite) {
  SQLSMALLINT count = 0;
  statement_.Check(SQLNumResultCols(statement_.Get(), &count));
  for (SQLSMALLINT i = 1; i <= count; ++i) Describe(static_cast<SQLUSMALLINT>(i), rules);
  bound_ = std::ranges::none_of(fields_, [](const Field& field) { return field.width == 0; });
  Bind();
}

void Rows::Describe(SQLUSMALLINT number, TextRules rules) {
  std::array<char16_t, 512> name{};
  SQLSMALLINT length = 0;
  SQLSMALLINT type = 0;
  SQLULEN size = 0;
  SQLSMALLINT decimals = 0;
  SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
  statement_.Check(SQLDescribeColW(statement_.Get(), number, Units(name.data()),
                                   static_cast<SQLSMALLINT>(name.size()), &length, &type, &size,
                                   &decimals, &nullable));
  SQLLEN isUnsigned = SQL_FALSE;
  SQLColAttributeW(statement_.Get(), number, SQL_DESC_UNSIGNED, nullptr, 0, nullptr, &isUnsigned);

  Column& column = columns_.emplace_back();
  AppendUtf8(column.name, {name.data(), std::min<std::size_t>(static_cast<std::size_t>(length),
                                                              name.size() - 1)});
  column.kind = KindOf(type, isUnsigned == SQL_TRUE);
  column.required = nullable == SQL_NO_NULLS;
  if (column.kind == ColumnKind::Text || column.kind == ColumnKind::Decimal) {
    column.size = size > 0x7FFF'FFFF ? 0 : static_cast<std::int32_t>(size);
  }
  if (column.kind == ColumnKind::Decimal) column.decimals = decimals;
  if (rules.sqlite) {
    DescribeForSqlite(number, rules.compound, column);
    size = 0;  // says nothing of the values
  }

  Field& field = fields_.emplace_back();
  field.type = FetchedAs(column.kind, rules);
  field.width = WidthOf(column, field.type, size);
  field.trimmed = rules.trimCharacters && (type == SQL_CHAR || type == SQL_WCHAR);
}

std::string Rows::Attribute(SQLUSMALLINT number, SQLUSMALLINT attribute) const {
  std::array<char16_t, 256> text{};
  SQLSMALLINT bytes = 0;
  SQLColAttributeW(statement_.Get(), number, attribute, text.data(),
                   static_cast<SQLSMALLINT>(sizeof text), &bytes, nullptr);
  std::string utf8;
  AppendUtf8(utf8, text.data());
  return utf8;
}

// A column of no table has a type that its driver takes from the first row. The digits of a
// declared decimal are not given.
void Rows::DescribeForSqlite(SQLUSMALLINT number, bool compound, Column& column) {
  const std::string declared = Attribute(number, SQL_DESC_TYPE_NAME);
  if (!Attribute(number, SQL_DESC_BASE_TABLE_NAME).empty()) {
    column.kind = drivers::sqlite::ColumnOfType(declared, compound).kind;
  } else if (declared == "integer" || declared == "double") {
    column.kind = ColumnKind::Decimal;
  }
  if (column.kind != ColumnKind::Text) column.size = 0;
  column.decimals = 0;
}

void Rows::Bind() {
  const std::size_t rows = bound_ ? kRowsOfBlock : 1;
  if (bound_) {
    const auto set = [this](SQLINTEGER attribute, SQLPOINTER value) {
      statement_.Check(SQLSetStmtAttrW(statement_.Get(), attribute, value, SQL_IS_UINTEGER));
    };
    set(SQL_ATTR_ROW_ARRAY_SIZE, Number(rows));
    set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched_);
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    Field& field = fields_[i];
    field.values.resize(field.width * rows);
    field.sizes.resize(rows);
    if (!bound_) continue;
    statement_.Check(SQLBindCol(statement_.Get(), static_cast<SQLUSMALLINT>(i + 1), field.type,
                                field.values.data(), static_cast<SQLLEN>(field.width),
                                field.sizes.data()));
  }
}

bool Rows::Next() {
  if (++row_ < fetched_) return true;
  row_ = 0;
  fetched_ = 0;
  if (!statement_) return false;
  try {
    return FetchBlock();
  } catch (const data::DriverError&) {
    Close();
    throw;
  }
}

bool Rows::FetchBlock() {
  const SQLRETURN result = SQLFetch(statement_.Get());
  statement_.Check(result);
  if (result == SQL_NO_DATA) {
    Close();
    return false;
  }
  if (!bound_) {
    fetched_ = 1;
    for (std::size_t i = 0; i < fields_.size(); ++i) Get(i);
  }
  return fetched_ > 0;
}

void Rows::Get(std::size_t column) {
  Field& field = fields_[column];
  if (field.width == 0) {
    GetLong(column);
    return;
  }
  statement_.Check(SQLGetData(statement_.Get(), static_cast<SQLUSMALLINT>(column + 1), field.type,
                              field.values.data(), static_cast<SQLLEN>(field.width),
                              field.sizes.data()));
}

void Rows::GetLong(std::size_t column) {
  Field& field = fields_[column];
  const bool wide = field.type == SQL_C_WCHAR;
  std::string bytes;
  std::array<char, 16'384> part;  // NOLINT: filled by the client
  // A zero ends each part of a text.
  const std::size_t zero = wide ? sizeof(SQLWCHAR) : field.type == SQL_C_CHAR ? 1 : 0;
  const std::size_t room = part.size() - zero;
  for (;;) {
    SQLLEN rest = 0;
    const SQLRETURN result = SQLGetData(statement_.Get(), static_cast<SQLUSMALLINT>(column + 1),
                                        field.type, part.data(), part.size(), &rest);
    statement_.Check(result);
    field.sizes[0] = rest == SQL_NULL_DATA ? SQL_NULL_DATA : 0;
    if (result == SQL_NO_DATA || rest == SQL_NULL_DATA) break;
    const bool last = rest != SQL_NO_TOTAL && static_cast<std::size_t>(rest) <= room;
    bytes.append(part.data(), last ? static_cast<std::size_t>(rest) : room);
    if (last) break;
  }
  field.text.clear();
  if (wide) {
    AppendUtf8(field.text, Wide(bytes));
  } else {
    field.text = std::move(bytes);
  }
}

std::string_view Rows::Raw(int column) const {
  const Field& field = At(column);
  const auto size = static_cast<std::size_t>(field.sizes[row_]);
  const bool text = field.type == SQL_C_CHAR || field.type == SQL_C_WCHAR;
  if (text && (field.sizes[row_] < 0 || size >= field.width)) {
    throw data::DriverError(columns_[static_cast<std::size_t>(column)].name +
                            ": a value is longer than the server said");
  }
  return {field.values.data() + row_ * field.width, text ? size : field.width};
}

std::int64_t Rows::Integer(int column) const {
  const std::string_view raw = Raw(column);
  if (At(column).type != SQL_C_CHAR) return Read<std::int64_t>(raw);
  const std::int64_t whole = WholeOf(raw);
  const bool out = columns_[static_cast<std::size_t>(column)].kind == ColumnKind::Boolean &&
                   whole != 0 && whole != 1;
  if (out) throw data::DriverError(std::string(raw) + " is neither 0 nor 1");
  return whole;
}

double Rows::Float(int column) const {
  const std::string_view raw = Raw(column);
  return At(column).type == SQL_C_CHAR ? FiniteOf(raw) : Read<double>(raw);
}

std::string_view Rows::Text(int column) const {
  const Field& field = At(column);
  std::string_view text = field.text;
  if (field.width != 0) text = ShortText(column);
  return field.trimmed ? drivers::TrimmedRight(text) : text;
}

std::string_view Rows::ShortText(int column) const {
  const std::string_view raw = Raw(column);
  const Field& field = At(column);
  switch (columns_[static_cast<std::size_t>(column)].kind) {
    case ColumnKind::Date:
    case ColumnKind::Time:
    case ColumnKind::TimeStamp:
      return Moment(column, raw);
    case ColumnKind::Decimal:
      return Decimal(column, raw);
    case ColumnKind::Text:
    case ColumnKind::Memo:
    case ColumnKind::Integer:
    case ColumnKind::Largeint:
    case ColumnKind::Boolean:
    case ColumnKind::Float:
    case ColumnKind::Blob:
      break;
  }
  if (field.type == SQL_C_CHAR) return raw;
  field.text.clear();
  AppendUtf8(field.text, Wide(raw));
  return field.text;
}

// Some drivers begin with the point, and one writes large reals with an exponent.
std::string_view Rows::Decimal(int column, std::string_view text) const {
  std::string& scratch = At(column).text;
  if (text.find('e') != std::string_view::npos) {
    return scratch = drivers::DecimalOf(drivers::ToFloat(text));
  }
  return sqlite_
             ? drivers::sqlite::DecimalIn(columns_[static_cast<std::size_t>(column)], text, scratch)
             : drivers::ToDecimal(text, scratch);
}

std::string_view Rows::Moment(int column, std::string_view text) const {
  const Column& described = columns_[static_cast<std::size_t>(column)];
  const bool time = described.kind == ColumnKind::Time;
  const bool fits = time ? text.size() >= 8 && text[2] == ':' && text.substr(0, 2) < "24"
                         : text.size() >= 10 && text[4] == '-' && text[7] == '-';
  if (!fits) {
    throw data::DriverError(described.name + ": " + std::string(text) +
                            (time ? " is no time of day" : " is no date of the years 1 to 9999"));
  }
  if (described.kind == ColumnKind::Date) return text.substr(0, 10);
  return drivers::ToMilliseconds(text, At(column).text);
}

void Rows::Close() noexcept {
  statement_.Reset();
}

}  // namespace kvshare::odbc
