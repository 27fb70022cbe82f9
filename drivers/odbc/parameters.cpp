#include "drivers/odbc/parameters.h"

#include <algorithm>

#include "drivers/common/statements.h"
#include "drivers/odbc/utf16.h"
#include "kvshare/rtl/ascii.h"

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
                           const void* value, std::size_t bytes, SQLSMALLINT decimals) {
  SQLLEN& size = sizes_.emplace_back(value == nullptr ? SQL_NULL_DATA : static_cast<SQLLEN>(bytes));
  void* read = const_cast<void*>(value);  // NOLINT: the client only reads it
  statement_.Check(SQLBindParameter(statement_.Get(), number_, SQL_PARAM_INPUT, valueType, type,
                                    std::max<SQLULEN>(characters, 1), decimals, read,
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

// With its own digits: else the server would round it, or compare it as a text.
void BoundParameters::operator()(const data::Decimal& value) {
  const std::string& digits = value.digits;
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const auto count = [&](std::size_t from) {
    return std::ranges::count_if(digits.begin() + static_cast<std::ptrdiff_t>(from), digits.end(),
                                 IsDigit);
  };
  Bind(SQL_C_CHAR, SQL_DECIMAL, static_cast<SQLULEN>(count(0)), digits.data(), digits.size(),
       static_cast<SQLSMALLINT>(count(point)));
}

// A day goes as its midnight: MariaDB misses rows between a day and a moment where it uses an
// index. A time goes as a text: its type has no fractions.
void BoundParameters::operator()(const data::Moment& value) {
  constexpr SQLULEN kMoment = 23;
  constexpr SQLSMALLINT kMilliseconds = 3;
  if (value.kind == data::ColumnKind::Time) return (*this)(value.text);
  std::string& text = moments_.emplace_back(value.text);
  if (value.kind == data::ColumnKind::Date) text += " 00:00:00";
  Bind(SQL_C_CHAR, SQL_TYPE_TIMESTAMP, kMoment, text.data(), text.size(), kMilliseconds);
}

}  // namespace kvshare::odbc
