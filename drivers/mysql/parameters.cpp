// A prepared statement executed with its values, each bound as what its column compares with.
#include <algorithm>
#include <charconv>
#include <string_view>
#include <vector>

#include "drivers/common/statements.h"
#include "drivers/mysql/errors.h"
#include "drivers/mysql/rows.h"

namespace kvshare::mysql {
namespace {

// yyyy-mm-dd[ hh:mm:ss[.fff]]
MYSQL_TIME TimeOf(std::string_view text) {
  const auto number = [text](std::size_t at, std::size_t size) {
    unsigned value = 0;
    const std::string_view digits = text.substr(std::min(at, text.size()), size);
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
  };
  constexpr std::size_t kFraction = 20;
  constexpr unsigned long kMicroseconds = 1000;
  MYSQL_TIME time{};
  time.time_type = MYSQL_TIMESTAMP_DATETIME;
  time.year = number(0, 4);
  time.month = number(5, 2);
  time.day = number(8, 2);
  time.hour = number(11, 2);
  time.minute = number(14, 2);
  time.second = number(17, 2);
  time.second_part = number(kFraction, 3) * kMicroseconds;
  return time;
}

// Points `bind` at the value, which outlives the execution, or at `time`.
struct BindValue {
  MYSQL_BIND& bind;
  MYSQL_TIME& time;

  void operator()(std::monostate) const { bind.buffer_type = MYSQL_TYPE_NULL; }
  void operator()(const std::int64_t& value) const {
    Set(MYSQL_TYPE_LONGLONG, &value, sizeof value);
  }
  void operator()(const double& value) const { Set(MYSQL_TYPE_DOUBLE, &value, sizeof value); }
  void operator()(const std::string& text) const {
    Set(MYSQL_TYPE_STRING, text.data(), text.size());
  }
  void operator()(const data::Decimal& value) const {
    Set(MYSQL_TYPE_NEWDECIMAL, value.digits.data(), value.digits.size());
  }
  // A day as its midnight: beside a text, or one bound of a range a day and the other a moment, the
  // server misses rows where it uses an index.
  void operator()(const data::Moment& value) const {
    if (value.kind == data::ColumnKind::Time) return (*this)(value.text);
    time = TimeOf(value.text);
    Set(MYSQL_TYPE_DATETIME, &time, sizeof time);
  }
  void operator()(const data::Bytes& value) const {
    Set(MYSQL_TYPE_BLOB, value.bytes.data(), value.bytes.size());
  }

 private:
  void Set(enum_field_types type, const void* value, std::size_t size) const {
    bind.buffer_type = type;
    bind.buffer = const_cast<void*>(value);  // NOLINT: the client only reads it
    bind.buffer_length = size;
  }
};

}  // namespace

void ExecuteWith(MYSQL_STMT* statement, std::span<const data::ParameterValue> parameters) {
  drivers::CheckParameters(mysql_stmt_param_count(statement), parameters.size());
  std::vector<MYSQL_BIND> binds(parameters.size());
  std::vector<MYSQL_TIME> times(parameters.size());
  for (std::size_t i = 0; i < parameters.size(); ++i)
    std::visit(BindValue{binds[i], times[i]}, parameters[i]);
  if (mysql_stmt_bind_param(statement, binds.data()) != 0) Fail(statement);
  if (mysql_stmt_execute(statement) != 0) Fail(statement);
}

}  // namespace kvshare::mysql
