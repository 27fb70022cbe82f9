#include "drivers/mysql/columns.h"

namespace kvshare::mysql {
namespace {

using data::ColumnKind;

constexpr unsigned kBinaryCharset = 63;
constexpr unsigned long kBytesOfCharacter = 4;  // utf8mb4

bool Has(const MYSQL_FIELD& field, unsigned flag) {
  return (field.flags & flag) != 0;
}

ColumnKind KindOf(const MYSQL_FIELD& field) {
  const bool bytes = field.charsetnr == kBinaryCharset;
  switch (field.type) {
    case MYSQL_TYPE_TINY:
    case MYSQL_TYPE_SHORT:
    case MYSQL_TYPE_INT24:
    case MYSQL_TYPE_YEAR:
      return ColumnKind::Integer;
    case MYSQL_TYPE_LONG:
      return Has(field, UNSIGNED_FLAG) ? ColumnKind::Largeint : ColumnKind::Integer;
    case MYSQL_TYPE_LONGLONG:  // an unsigned one may not fit 64 bits with a sign
      return Has(field, UNSIGNED_FLAG) ? ColumnKind::Decimal : ColumnKind::Largeint;
    case MYSQL_TYPE_BIT:
      if (field.length == 1) return ColumnKind::Boolean;
      return field.length < 64 ? ColumnKind::Largeint : ColumnKind::Blob;
    case MYSQL_TYPE_FLOAT:
    case MYSQL_TYPE_DOUBLE:
      return ColumnKind::Float;
    case MYSQL_TYPE_DECIMAL:
    case MYSQL_TYPE_NEWDECIMAL:
      return ColumnKind::Decimal;
    case MYSQL_TYPE_DATE:
    case MYSQL_TYPE_NEWDATE:
      return ColumnKind::Date;
    case MYSQL_TYPE_TIME:
    case MYSQL_TYPE_TIME2:
      return ColumnKind::Time;
    case MYSQL_TYPE_TIMESTAMP:
    case MYSQL_TYPE_DATETIME:
    case MYSQL_TYPE_TIMESTAMP2:
    case MYSQL_TYPE_DATETIME2:
      return ColumnKind::TimeStamp;
    case MYSQL_TYPE_TINY_BLOB:
    case MYSQL_TYPE_MEDIUM_BLOB:
    case MYSQL_TYPE_LONG_BLOB:
    case MYSQL_TYPE_BLOB:
      return bytes ? ColumnKind::Blob : ColumnKind::Memo;
    case MYSQL_TYPE_GEOMETRY:
      return ColumnKind::Blob;
    case MYSQL_TYPE_JSON:
      return ColumnKind::Memo;
    default:
      return bytes && field.type != MYSQL_TYPE_NULL ? ColumnKind::Blob : ColumnKind::Text;
  }
}

std::int32_t SizeOf(const MYSQL_FIELD& field, ColumnKind kind) {
  unsigned long size = 0;
  if (kind == ColumnKind::Text) size = field.length / kBytesOfCharacter;
  if (kind == ColumnKind::Decimal) {
    // The server tells the longest text.
    const unsigned long sign = Has(field, UNSIGNED_FLAG) ? 0 : 1;
    size = field.length - sign - (field.decimals > 0 ? 1 : 0);
  }
  return static_cast<std::int32_t>(size);
}

}  // namespace

std::vector<ServerColumn> ColumnsOf(MYSQL_RES* result) {
  std::vector<ServerColumn> columns;
  const MYSQL_FIELD* fields = mysql_fetch_fields(result);
  for (unsigned i = 0; i < mysql_num_fields(result); ++i) {
    const MYSQL_FIELD& field = fields[i];
    ServerColumn& added = columns.emplace_back();
    added.bits = field.type == MYSQL_TYPE_BIT;
    added.column.name.assign(field.name, field.name_length);
    added.column.kind = KindOf(field);
    added.column.size = SizeOf(field, added.column.kind);
    added.column.required = Has(field, NOT_NULL_FLAG);
    if (added.column.kind == ColumnKind::Decimal) {
      added.column.decimals = static_cast<std::int32_t>(field.decimals);
    }
  }
  return columns;
}

}  // namespace kvshare::mysql
