#include "drivers/firebird/rows.h"

#include <cstring>
#include <ctime>

#include "drivers/common/valuetexts.h"

namespace kvshare::firebird {
namespace {

using data::Column;
using data::ColumnKind;

constexpr unsigned kTimeUnits = 10'000;  // of a second

int TypeOf(const XSQLVAR& variable) {
  return variable.sqltype & ~1;
}

int CharacterSet(const XSQLVAR& variable) {
  return variable.sqlsubtype & 0xFF;
}

int Characters(const XSQLVAR& variable) {
  return variable.sqllen / (CharacterSet(variable) == kUtf8 ? 4 : 1);
}

ColumnKind KindOf(const XSQLVAR& variable) {
  const bool scaled = variable.sqlscale < 0;
  switch (TypeOf(variable)) {
    case SQL_SHORT:
    case SQL_LONG:
      return scaled ? ColumnKind::Decimal : ColumnKind::Integer;
    case SQL_INT64:
      return scaled ? ColumnKind::Decimal : ColumnKind::Largeint;
    case SQL_BOOLEAN:
      return ColumnKind::Boolean;
    case SQL_FLOAT:
    case SQL_DOUBLE:
    case SQL_D_FLOAT:
      return ColumnKind::Float;
    case SQL_TYPE_DATE:
      return ColumnKind::Date;
    case SQL_TYPE_TIME:
      return ColumnKind::Time;
    case SQL_TIMESTAMP:
      return ColumnKind::TimeStamp;
    case SQL_BLOB:
      return variable.sqlsubtype == isc_blob_text ? ColumnKind::Memo : ColumnKind::Blob;
    default:
      return CharacterSet(variable) == kOctets ? ColumnKind::Blob : ColumnKind::Text;
  }
}

Column ColumnOf(const XSQLVAR& variable) {
  Column column;
  column.name.assign(variable.aliasname, static_cast<std::size_t>(variable.aliasname_length));
  column.kind = KindOf(variable);
  column.required = (variable.sqltype & 1) == 0;
  if (column.kind == ColumnKind::Text) column.size = Characters(variable);
  if (column.kind == ColumnKind::Decimal) {
    column.decimals = -variable.sqlscale;
    // The digits that all values of the type can have; the server does not give the declared
    // number.
    const int type = TypeOf(variable);
    column.size = type == SQL_SHORT ? 4 : type == SQL_LONG ? 9 : 18;
  }
  return column;
}

template <typename Value>
Value Read(const XSQLVAR& variable) {
  Value value{};
  std::memcpy(&value, variable.sqldata, sizeof value);
  return value;
}

std::int64_t ReadInteger(const XSQLVAR& variable) {
  switch (TypeOf(variable)) {
    case SQL_SHORT:
      return Read<ISC_SHORT>(variable);
    case SQL_LONG:
      return Read<ISC_LONG>(variable);
    case SQL_BOOLEAN:
      return Read<ISC_UCHAR>(variable) != 0 ? 1 : 0;
    default:
      return Read<ISC_INT64>(variable);
  }
}

void AppendDate(std::string& out, ISC_DATE date) {
  std::tm parts{};
  isc_decode_sql_date(&date, &parts);
  drivers::AppendDate(out, parts.tm_year + 1900, static_cast<unsigned>(parts.tm_mon + 1),
                      static_cast<unsigned>(parts.tm_mday));
}

void AppendTime(std::string& out, ISC_TIME time) {
  const unsigned seconds = time / kTimeUnits;
  drivers::AppendTime(out, seconds / 3600, seconds / 60 % 60, seconds % 60,
                      time % kTimeUnits / (kTimeUnits / 1000));
}

}  // namespace

void PrepareColumns(Descriptor& columns) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(columns.Needed()); ++i) {
    XSQLVAR& variable = columns[i];
    const auto length = static_cast<std::size_t>(static_cast<unsigned short>(variable.sqllen));
    columns.Allocate(i, length + sizeof(ISC_SHORT));  // a length stands before a varying text
  }
}

Rows::Rows(isc_db_handle& database, Transaction& transaction, std::optional<Transaction> own,
           Statement statement, bool trimCharacters)
    : database_(&database),
      transaction_(&transaction),
      own_(std::move(own)),
      statement_(std::move(statement)) {
  Descriptor& described = statement_.Columns();
  const auto count = static_cast<std::size_t>(described.Needed());
  for (std::size_t i = 0; i < count; ++i) {
    columns_.push_back(ColumnOf(described[i]));
    trimmed_.push_back(trimCharacters && TypeOf(described[i]) == SQL_TEXT);
  }
  texts_.resize(count);
  made_.resize(count);
}

Rows::Rows(isc_db_handle& database, Transaction& transaction, Statement statement,
           bool trimCharacters)
    : Rows(database, transaction, std::nullopt, std::move(statement), trimCharacters) {
  single_ = true;
  MakeTexts();
}

bool Rows::Next() {
  if (ended_) return false;
  if (single_) {
    ended_ = true;
    return true;
  }
  Status status;
  const ISC_STATUS got = isc_dsql_fetch(status.Vector(), statement_.Handle(), SQLDA_VERSION1,
                                        statement_.Columns().Get());
  constexpr ISC_STATUS kNoMore = 100;
  if (got == 0) {
    MakeTexts();
    return true;
  }
  Close();
  if (got != kNoMore) status.Fail();
  return false;
}

bool Rows::IsNull(int column) const {
  const XSQLVAR& variable = Variable(column);
  return (variable.sqltype & 1) != 0 && *variable.sqlind < 0;
}

std::int64_t Rows::Integer(int column) const {
  return ReadInteger(Variable(column));
}

double Rows::Float(int column) const {
  const XSQLVAR& variable = Variable(column);
  if (TypeOf(variable) != SQL_FLOAT) return Read<double>(variable);
  return static_cast<double>(Read<float>(variable));
}

void Rows::MakeTexts() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (!IsNull(static_cast<int>(i))) MakeText(i);
  }
}

void Rows::MakeText(std::size_t column) {
  const XSQLVAR& variable = statement_.Columns()[column];
  std::string& made = made_[column];
  made.clear();
  switch (TypeOf(variable)) {
    case SQL_TEXT: {
      // Padded to the bytes that n of the longest characters would take.
      const std::string_view padded(variable.sqldata, static_cast<std::size_t>(variable.sqllen));
      const bool bytes = columns_[column].kind == ColumnKind::Blob;
      const std::string_view text =
          bytes ? padded
                : drivers::FirstCharacters(padded, static_cast<std::size_t>(Characters(variable)));
      texts_[column] = trimmed_[column] ? drivers::TrimmedRight(text) : text;
      return;
    }
    case SQL_VARYING:
      texts_[column] = {variable.sqldata + sizeof(ISC_SHORT),
                        static_cast<std::size_t>(Read<unsigned short>(variable))};
      return;
    case SQL_SHORT:
    case SQL_LONG:
    case SQL_INT64:
      if (variable.sqlscale >= 0) return;
      drivers::AppendScaled(made, ReadInteger(variable), -variable.sqlscale);
      break;
    case SQL_TYPE_DATE:
      AppendDate(made, Read<ISC_DATE>(variable));
      break;
    case SQL_TYPE_TIME:
      AppendTime(made, Read<ISC_TIME>(variable));
      break;
    case SQL_TIMESTAMP: {
      const auto moment = Read<ISC_TIMESTAMP>(variable);
      AppendDate(made, moment.timestamp_date);
      made += ' ';
      AppendTime(made, moment.timestamp_time);
      break;
    }
    case SQL_BLOB:
      made = ReadBlob(*database_, own_ ? *own_ : *transaction_, Read<ISC_QUAD>(variable));
      break;
    default:
      return;
  }
  texts_[column] = made;
}

void Rows::Close() noexcept {
  ended_ = true;
  statement_.Free();
  if (!own_) return;
  try {
    own_->Commit();
  } catch (const data::DriverError&) {
    // It has only read.
  }
  own_->Abandon();
}

}  // namespace kvshare::firebird
