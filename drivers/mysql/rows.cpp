#include "drivers/mysql/rows.h"

#include <algorithm>
#include <cstring>

#include "drivers/common/valuetexts.h"
#include "drivers/mysql/errors.h"

namespace kvshare::mysql {
namespace {

using data::ColumnKind;

std::int64_t FromBits(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8U | static_cast<unsigned char>(byte);
  return static_cast<std::int64_t>(value);
}

}  // namespace

Rows::Rows(MYSQL_RES* result) {
  for (ServerColumn& column : ColumnsOf(result)) {
    columns_.push_back(std::move(column.column));
    bits_.push_back(column.bits);
  }
  scratch_.resize(columns_.size());
}

std::int64_t Rows::Integer(int column) const {
  const std::string_view text = Raw(column);
  return bits_[Index(column)] ? FromBits(text) : drivers::ToInteger(text);
}

std::string_view Rows::Text(int column) const {
  switch (columns_[Index(column)].kind) {
    case ColumnKind::Time:
    case ColumnKind::TimeStamp:
      return Moment(column);
    case ColumnKind::Text:
    case ColumnKind::Memo:
    case ColumnKind::Integer:
    case ColumnKind::Largeint:
    case ColumnKind::Boolean:
    case ColumnKind::Float:
    case ColumnKind::Decimal:
    case ColumnKind::Date:
    case ColumnKind::Blob:
      break;
  }
  return Raw(column);
}

// The server's times of day reach from -838 to 838 hours.
std::string_view Rows::Moment(int column) const {
  const std::string_view text = Raw(column);
  const bool time = columns_[Index(column)].kind == ColumnKind::Time;
  if (time && (text.size() < 8 || text[2] != ':' || text.substr(0, 2) > "23")) {
    throw data::DriverError(columns_[Index(column)].name + ": " + std::string(text) +
                            " is no time of day");
  }
  return drivers::ToMilliseconds(text, scratch_[Index(column)]);
}

bool TextRows::Next() {
  cells_ = mysql_fetch_row(result_.get());
  if (cells_ != nullptr) {
    sizes_ = mysql_fetch_lengths(result_.get());
    return true;
  }
  if (mysql_errno(connection_) != 0) {
    result_.reset();
    Fail(connection_);
  }
  result_.reset();
  DrainResults(connection_);
  return false;
}

double TextRows::Float(int column) const {
  return drivers::ToFloat(Raw(column));
}

void TextRows::Close() noexcept {
  if (!result_) return;
  result_.reset();  // reads what is still on its way
  try {
    DrainResults(connection_);
  } catch (const data::DriverError&) {
    // The next statement on this connection meets the same.
  }
}

StatementRows::StatementRows(Statement statement, Result description)
    : Rows(description.get()), statement_(std::move(statement)) {
  const std::size_t count = Columns().size();
  constexpr unsigned long kFirstBuffer = 1024;  // longer values are fetched again, whole
  const MYSQL_FIELD* fields = mysql_fetch_fields(description.get());
  for (std::size_t i = 0; i < count; ++i) {
    buffers_.emplace_back(std::clamp<unsigned long>(fields[i].length + 1, 64, kFirstBuffer));
  }
  binds_.resize(count);
  pointers_.resize(count);
  lengths_.resize(count);
  nulls_ = std::make_unique<my_bool[]>(count);
  cells_ = pointers_.data();
  sizes_ = lengths_.data();
  Bind();
}

void StatementRows::Bind() {
  for (std::size_t i = 0; i < binds_.size(); ++i) {
    MYSQL_BIND& bind = binds_[i];
    const bool real = Columns()[i].kind == ColumnKind::Float;
    bind.buffer_type = real ? MYSQL_TYPE_DOUBLE : MYSQL_TYPE_STRING;
    bind.buffer = buffers_[i].data();
    bind.buffer_length = buffers_[i].size();
    bind.length = &lengths_[i];
    bind.is_null = &nulls_[i];
  }
  if (mysql_stmt_bind_result(statement_.get(), binds_.data()) != 0) Fail(statement_.get());
}

bool StatementRows::Next() {
  const int got = mysql_stmt_fetch(statement_.get());
  if (got == 1) {
    try {
      Fail(statement_.get());
    } catch (const data::DriverError&) {
      Close();
      throw;
    }
  }
  if (got == MYSQL_NO_DATA) {
    Close();
    return false;
  }
  bool grown = false;
  for (std::size_t i = 0; i < binds_.size(); ++i) {
    if (nulls_[i] == 0 && lengths_[i] > buffers_[i].size()) {
      FetchLong(i);
      grown = true;
    }
    pointers_[i] = nulls_[i] != 0 ? nullptr : buffers_[i].data();
  }
  if (grown) Bind();
  return true;
}

void StatementRows::FetchLong(std::size_t column) {
  buffers_[column].resize(lengths_[column]);
  MYSQL_BIND bind = binds_[column];
  bind.buffer = buffers_[column].data();
  bind.buffer_length = buffers_[column].size();
  if (mysql_stmt_fetch_column(statement_.get(), &bind, static_cast<unsigned>(column), 0) != 0) {
    Fail(statement_.get());
  }
}

double StatementRows::Float(int column) const {
  double value = 0;
  std::memcpy(&value, pointers_[Index(column)], sizeof value);
  return value;
}

void StatementRows::Close() noexcept {
  statement_.reset();
}

std::int64_t DrainResults(MYSQL* connection) {
  std::int64_t changed = 0;
  for (;;) {
    Result rows(mysql_use_result(connection));
    if (!rows && mysql_field_count(connection) == 0) {
      const my_ulonglong affected = mysql_affected_rows(connection);
      if (affected != static_cast<my_ulonglong>(-1)) changed += static_cast<std::int64_t>(affected);
    }
    rows.reset();
    const int next = mysql_next_result(connection);
    if (next > 0) Fail(connection);
    if (next < 0) return changed;
  }
}

}  // namespace kvshare::mysql
