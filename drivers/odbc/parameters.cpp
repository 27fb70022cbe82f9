#include "drivers/odbc/parameters.h"

#include <algorithm>

#include "drivers/common/statements.h"
#include "drivers/odbc/utf16.h"

namespace kvshare::odbc {
namespace {

constexpr std::size_t kLongestShort = 4000;  // of a parameter that is no long text

}  // namespace

BoundParameters::BoundParameters(const Handle& statement,
                                 std::span<const data::ParameterValue> parameters)
    : statement_(statement) {
  SQLSMALLINT wanted = 0;
  statement.Check(SQLNumParams(statement.Get(), &wanted));
  drivers::CheckParameters(static_cast<std::size_t>(wanted), parameters.size());
  for (const data::ParameterValue& value : parameters) {
    ++number_;
    std::visit(*this, value);
  }
}

void BoundParameters::Bind(SQLSMALLINT valueType, SQLSMALLINT type, SQLULEN characters,
                           const void* value, std::size_t bytes) {
  SQLLEN& size = sizes_.emplace_back(value == nullptr ? SQL_NULL_DATA : static_cast<SQLLEN>(bytes));
  void* read = const_cast<void*>(value);  // NOLINT: the client only reads it
  statement_.Check(SQLBindParameter(statement_.Get(), number_, SQL_PARAM_INPUT, valueType, type,
                                    std::max<SQLULEN>(characters, 1), 0, read,
                                    static_cast<SQLLEN>(bytes), &size));
}

// Some servers convert no text into bytes, not even a null one: its type is asked for.
void BoundParameters::operator()(std::monostate) {
  SQLSMALLINT type = SQL_VARCHAR;
  SQLULEN size = 1;
  SQLSMALLINT decimals = 0;
  SQLSMALLINT nullable = 0;
  if (!SQL_SUCCEEDED(
          SQLDescribeParam(statement_.Get(), number_, &type, &size, &decimals, &nullable))) {
    type = SQL_VARCHAR;
  }
  Bind(SQL_C_CHAR, type, size, nullptr, 0);
}

void BoundParameters::operator()(const std::int64_t& value) {
  Bind(SQL_C_SBIGINT, SQL_BIGINT, 19, &value, sizeof value);
}

void BoundParameters::operator()(const double& value) {
  Bind(SQL_C_DOUBLE, SQL_DOUBLE, 15, &value, sizeof value);
}

void BoundParameters::operator()(const std::string& text) {
  const std::u16string& wide = texts_.emplace_back(ToUtf16(text));
  Bind(SQL_C_WCHAR, wide.size() > kLongestShort ? SQL_WLONGVARCHAR : SQL_WVARCHAR, wide.size(),
       wide.data(), wide.size() * sizeof(char16_t));
}

void BoundParameters::operator()(const data::Bytes& value) {
  const std::string& bytes = value.bytes;
  Bind(SQL_C_BINARY, bytes.size() > kLongestShort ? SQL_LONGVARBINARY : SQL_VARBINARY, bytes.size(),
       bytes.data(), bytes.size());
}

}  // namespace kvshare::odbc
