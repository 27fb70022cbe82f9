#include <vector>

#include "drivers/common/statements.h"
#include "drivers/mysql/errors.h"
#include "drivers/mysql/rows.h"

namespace kvshare::mysql {
namespace {

// Points `bind` at the value, which outlives the execution.
struct BindValue {
  MYSQL_BIND& bind;

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
  void operator()(const data::Moment& value) const { (*this)(value.text); }
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
  for (std::size_t i = 0; i < parameters.size(); ++i)
    std::visit(BindValue{binds[i]}, parameters[i]);
  if (mysql_stmt_bind_param(statement, binds.data()) != 0) Fail(statement);
  if (mysql_stmt_execute(statement) != 0) Fail(statement);
}

}  // namespace kvshare::mysql
