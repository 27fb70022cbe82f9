#include "drivers/sqlite/rows.h"

#include <array>
#include <charconv>
#include <new>

#include "drivers/sqlite/columns.h"

namespace kvshare::drivers::sqlite {

namespace {

data::ColumnKind KindOfValue(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
      return data::ColumnKind::Largeint;
    case SQLITE_FLOAT:
      return data::ColumnKind::Float;
    case SQLITE_BLOB:
      return data::ColumnKind::Blob;
    default:
      return data::ColumnKind::Text;
  }
}

bool IsRequired(sqlite3* database, sqlite3_stmt* statement, int column) {
  const char* table = sqlite3_column_table_name(statement, column);
  const char* name = sqlite3_column_origin_name(statement, column);
  int required = 0;
  if (table == nullptr || name == nullptr) return false;
  sqlite3_table_column_metadata(database, sqlite3_column_database_name(statement, column), table,
                                name, nullptr, nullptr, &required, nullptr, nullptr);
  return required != 0;
}

}  // namespace

Rows::Rows(sqlite3* database, Statement statement, OpenRows& open)
    : database_(database), statement_(std::move(statement)), open_(open) {
  done_ = !Step();
  ahead_ = !done_;
  const int count = sqlite3_column_count(statement_.get());
  columns_.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) Describe(i, ahead_);
  open_.push_back(this);
}

Rows::~Rows() {
  std::erase(open_, this);
}

void Rows::Keep() {
  std::vector<Value>& row = kept_.emplace_back();
  for (int i = 0; i < static_cast<int>(columns_.size()); ++i) {
    row.emplace_back(sqlite3_value_dup(sqlite3_column_value(statement_.get(), i)));
    if (!row.back()) throw std::bad_alloc();
  }
}

bool Rows::Detach() {
  if (detached_ || done_) return false;
  do Keep();
  while (Step());
  detached_ = true;
  sqlite3_reset(statement_.get());
  return true;
}

void Rows::Describe(int column, bool row) {
  const char* declared = sqlite3_column_decltype(statement_.get(), column);
  data::Column described;
  if (declared != nullptr && *declared != '\0') {
    described = ColumnOfType(declared);
  } else if (row) {
    described.kind = KindOfValue(statement_.get(), column);
  }
  described.name = sqlite3_column_name(statement_.get(), column);
  described.required = IsRequired(database_, statement_.get(), column);
  columns_.push_back(std::move(described));
}

bool Rows::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) Refuse(database_);
  return code == SQLITE_ROW;
}

bool Rows::Next() {
  if (done_) return false;
  if (ahead_) {
    ahead_ = false;
    return true;
  }
  if (detached_) {
    kept_.pop_front();
    done_ = kept_.empty();
    return !done_;
  }
  done_ = !Step();
  if (done_) sqlite3_reset(statement_.get());  // lets go of what it holds locked
  return !done_;
}

// Asked for as a value, a column costs one look into the statement, however it is read then.
sqlite3_value* Rows::Current(int column) const {
  return detached_ ? kept_.front()[static_cast<std::size_t>(column)].get()
                   : sqlite3_column_value(statement_.get(), column);
}

bool Rows::IsNull(int column) const {
  return sqlite3_value_type(Current(column)) == SQLITE_NULL;
}

std::int64_t Rows::Integer(int column) const {
  return sqlite3_value_int64(Current(column));
}

double Rows::Float(int column) const {
  return sqlite3_value_double(Current(column));
}

std::string_view Rows::DigitsOf(double value) const {
  std::array<char, 400> text;  // 309 digits before the point at most
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  digits_.assign(text.data(), end.ptr);
  return digits_;
}

std::string_view Rows::Text(int column) const {
  sqlite3_value* value = Current(column);
  const data::ColumnKind kind = columns_[static_cast<std::size_t>(column)].kind;
  if (kind == data::ColumnKind::Decimal && sqlite3_value_type(value) == SQLITE_FLOAT) {
    return DigitsOf(sqlite3_value_double(value));
  }
  // As bytes where it is a text or bytes already: both are UTF-8 then. The length comes last.
  const void* bytes = sqlite3_value_blob(value);
  const int size = sqlite3_value_bytes(value);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

}  // namespace kvshare::drivers::sqlite
