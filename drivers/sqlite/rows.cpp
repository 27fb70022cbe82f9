#include "drivers/sqlite/rows.h"

#include <cmath>
#include <new>

#include "drivers/common/sqlitecolumns.h"
#include "drivers/common/sqliteplaces.h"
#include "drivers/common/valuetexts.h"

namespace kvshare::drivers::sqlite {

namespace {

data::ColumnKind KindOfValue(sqlite3_stmt* statement, int column) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return data::ColumnKind::Decimal;
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

// As bytes where it is a text or bytes already: both are UTF-8 then. The length comes last.
std::string_view BytesOf(sqlite3_value* value) {
  const void* bytes = sqlite3_value_blob(value);
  const int size = sqlite3_value_bytes(value);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

[[noreturn]] void Refuse(sqlite3_value* value, const char* is) {
  const bool blob = sqlite3_value_type(value) == SQLITE_BLOB;
  throw data::DriverError((blob ? "A blob" : "\"" + std::string(BytesOf(value)) + "\"") + is);
}

// Of a value that the server keeps as none.
std::int64_t WholeOf(sqlite3_value* value) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  const double real = sqlite3_value_double(value);
  const bool whole = sqlite3_value_type(value) == SQLITE_FLOAT && std::nearbyint(real) == real &&
                     real >= -kTwoTo63 && real < kTwoTo63;
  if (!whole) Refuse(value, " is no whole number");
  return static_cast<std::int64_t>(real);
}

}  // namespace

Rows::Rows(sqlite3* database, Statement statement, OpenRows& open)
    : database_(database), statement_(std::move(statement)), open_(open) {
  done_ = !Step();
  ahead_ = !done_;
  const int count = sqlite3_column_count(statement_.get());
  columns_.reserve(static_cast<std::size_t>(count));
  const bool compound = IsCompound(sqlite3_sql(statement_.get()));
  for (int i = 0; i < count; ++i) Describe(i, compound);
  made_.resize(columns_.size());
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

void Rows::Describe(int column, bool compound) {
  const char* declared = sqlite3_column_decltype(statement_.get(), column);
  data::Column described;
  if (declared != nullptr && *declared != '\0') {
    described = ColumnOfType(declared, compound);
  } else if (ahead_) {
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
  sqlite3_value* value = Current(column);
  const bool kept = sqlite3_value_type(value) == SQLITE_INTEGER;
  const std::int64_t whole = kept ? sqlite3_value_int64(value) : WholeOf(value);
  const bool out = ColumnAt(column).kind == data::ColumnKind::Boolean && whole != 0 && whole != 1;
  if (out) Refuse(value, " is neither 0 nor 1");
  return whole;
}

double Rows::Float(int column) const {
  sqlite3_value* value = Current(column);
  const int type = sqlite3_value_type(value);
  const double real = sqlite3_value_double(value);
  const bool number = type == SQLITE_INTEGER || (type == SQLITE_FLOAT && std::isfinite(real));
  if (!number) Refuse(value, " is no number");
  return real;
}

std::string_view Rows::RealText(double value, int column) const {
  return made_[static_cast<std::size_t>(column)] = DecimalOf(value);
}

std::string_view Rows::DecimalText(sqlite3_value* value, int column) const {
  if (sqlite3_value_type(value) == SQLITE_BLOB) Refuse(value, " is no number");
  return DecimalIn(ColumnAt(column), BytesOf(value), made_[static_cast<std::size_t>(column)]);
}

std::string_view Rows::Text(int column) const {
  sqlite3_value* value = Current(column);
  switch (sqlite3_value_type(value)) {
    case SQLITE_FLOAT:
      return RealText(sqlite3_value_double(value), column);
    case SQLITE_TEXT:
    case SQLITE_BLOB:
      if (ColumnAt(column).kind == data::ColumnKind::Decimal) return DecimalText(value, column);
      break;
    default:
      break;
  }
  return BytesOf(value);
}

}  // namespace kvshare::drivers::sqlite
