#include "drivers/postgres/rows.h"

#include <algorithm>

#include "drivers/common/valuetexts.h"
#include "kvshare/rtl/ascii.h"

namespace kvshare::postgres {
namespace {

using data::Column;
using data::ColumnKind;

// Numbers of the built-in types, the same in every database.
enum : Oid {
  kBool = 16,
  kBytea = 17,
  kChar = 18,
  kName = 19,
  kInt8 = 20,
  kInt2 = 21,
  kInt4 = 23,
  kText = 25,
  kOid = 26,
  kJson = 114,
  kXml = 142,
  kFloat4 = 700,
  kFloat8 = 701,
  kBpchar = 1042,
  kVarchar = 1043,
  kDate = 1082,
  kTime = 1083,
  kTimestamp = 1114,
  kTimestampTz = 1184,
  kTimeTz = 1266,
  kNumeric = 1700,
  kUuid = 2950,
  kJsonb = 3802,
};

struct TypeRow {
  Oid type;
  ColumnKind kind;
  std::int32_t size;
};
constexpr TypeRow kTypes[] = {
    {kBool, ColumnKind::Boolean, 0},
    {kBytea, ColumnKind::Blob, 0},
    {kChar, ColumnKind::Text, 1},
    {kName, ColumnKind::Text, 63},
    {kInt8, ColumnKind::Largeint, 0},
    {kInt2, ColumnKind::Integer, 0},
    {kInt4, ColumnKind::Integer, 0},
    {kText, ColumnKind::Memo, 0},
    {kOid, ColumnKind::Largeint, 0},
    {kJson, ColumnKind::Memo, 0},
    {kXml, ColumnKind::Memo, 0},
    {kFloat4, ColumnKind::Float, 0},
    {kFloat8, ColumnKind::Float, 0},
    {kDate, ColumnKind::Date, 0},
    {kTime, ColumnKind::Time, 0},
    {kTimestamp, ColumnKind::TimeStamp, 0},
    {kTimestampTz, ColumnKind::TimeStamp, 0},
    {kTimeTz, ColumnKind::Time, 0},
    {kNumeric, ColumnKind::Decimal, 0},
    {kUuid, ColumnKind::Text, 36},
    {kJsonb, ColumnKind::Memo, 0},
};

// The modifier of a type holds its lengths, plus 4 that it began with.
void SetSizes(Column& column, Oid type, int modifier) {
  if (modifier < 4) return;
  const int value = modifier - 4;
  if (type == kBpchar || type == kVarchar) column.size = value;
  if (type == kNumeric) {
    column.size = value >> 16;
    column.decimals = std::max(0, ((value & 0x7FF) ^ 0x400) - 0x400);
  }
}

Column ColumnOf(const PGresult* result, int i) {
  const Oid type = PQftype(result, i);
  Column column;
  column.name = PQfname(result, i);
  const auto* known = std::ranges::find(kTypes, type, &TypeRow::type);
  if (known != std::end(kTypes)) {
    column.kind = known->kind;
    column.size = known->size;
  }
  // What a query computes is `text` too where others give characters; only a table's is a memo.
  if (type == kText && PQftable(result, i) == InvalidOid) column.kind = ColumnKind::Text;
  SetSizes(column, type, PQfmod(result, i));
  return column;
}

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  return (c | 0x20) - 'a' + 10;
}

}  // namespace

Rows::Rows(PGconn* connection, Result first, bool trimCharacters)
    : connection_(connection), row_(std::move(first)) {
  const int count = PQnfields(row_.get());
  for (int i = 0; i < count; ++i) {
    columns_.push_back(ColumnOf(row_.get(), i));
    trimmed_.push_back(trimCharacters && PQftype(row_.get(), i) == kBpchar);
  }
  scratch_.resize(columns_.size());
}

bool Rows::Next() {
  if (!std::exchange(first_, false)) {
    row_.reset();  // its memory serves the next one
    row_.reset(PQgetResult(connection_));
  }
  const ExecStatusType status = PQresultStatus(row_.get());
  if (status == PGRES_SINGLE_TUPLE) return true;
  open_ = false;
  Drain(connection_);
  if (status != PGRES_TUPLES_OK) Fail(connection_, row_.get());
  return false;
}

std::string_view Rows::Raw(int column) const {
  return {PQgetvalue(row_.get(), 0, column),
          static_cast<std::size_t>(PQgetlength(row_.get(), 0, column))};
}

std::int64_t Rows::Integer(int column) const {
  const std::string_view text = Raw(column);
  if (columns_[static_cast<std::size_t>(column)].kind == ColumnKind::Boolean)
    return text == "t" ? 1 : 0;
  return drivers::ToInteger(text);
}

double Rows::Float(int column) const {
  return drivers::ToFloat(Raw(column));
}

std::string_view Rows::Text(int column) const {
  const std::string_view text = Raw(column);
  const auto index = static_cast<std::size_t>(column);
  switch (columns_[index].kind) {
    case ColumnKind::Date:
    case ColumnKind::Time:
    case ColumnKind::TimeStamp:
      return Moment(column, text);
    case ColumnKind::Blob:
      return Unescaped(column, text);
    case ColumnKind::Decimal:
      if (!IsDigit(text.back())) Refuse(column, text, "decimal");  // NaN, Infinity
      return text;
    case ColumnKind::Text:
    case ColumnKind::Memo:
    case ColumnKind::Integer:
    case ColumnKind::Largeint:
    case ColumnKind::Boolean:
    case ColumnKind::Float:
      break;
  }
  return trimmed_[index] ? drivers::TrimmedRight(text) : text;
}

// Without the zone that some types end in. Eras before ours and `infinity` have no form.
std::string_view Rows::Moment(int column, std::string_view text) const {
  const auto index = static_cast<std::size_t>(column);
  const bool dated = columns_[index].kind != ColumnKind::Time;
  const bool fits = text.size() >= 8 && IsDigit(text.front()) && IsDigit(text.back()) &&
                    (!dated || (text.size() >= 10 && text[4] == '-')) &&
                    (dated || text.substr(0, 2) < "24");
  if (!fits) Refuse(column, text, dated ? "date of the years 1 to 9999" : "time of day");
  const std::size_t zone = text.find_first_of("+-", 8);
  return drivers::ToMilliseconds(text.substr(0, zone), scratch_[index]);
}

std::string_view Rows::Unescaped(int column, std::string_view hex) const {
  std::string& bytes = scratch_[static_cast<std::size_t>(column)];
  hex.remove_prefix(std::min<std::size_t>(2, hex.size()));  // \x
  bytes.resize(hex.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<char>(HexDigit(hex[2 * i]) * 16 + HexDigit(hex[2 * i + 1]));
  }
  return bytes;
}

void Rows::Refuse(int column, std::string_view text, const char* what) const {
  throw data::DriverError(columns_[static_cast<std::size_t>(column)].name + ": " +
                          std::string(text) + " is no " + what);
}

void Rows::Close() noexcept {
  if (std::exchange(open_, false)) Drain(connection_);
}

void Drain(PGconn* connection) noexcept {
  while (const Result rest{PQgetResult(connection)}) {
    const ExecStatusType status = PQresultStatus(rest.get());
    if (status == PGRES_COPY_IN) PQputCopyEnd(connection, "no data is sent by this program");
    if (status == PGRES_COPY_OUT) {
      char* line = nullptr;
      while (PQgetCopyData(connection, &line, 0) > 0) PQfreemem(line);
    }
    if (PQstatus(connection) == CONNECTION_BAD) return;
  }
}

}  // namespace kvshare::postgres
