#include "drivers/firebird/parameters.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

#include "drivers/common/statements.h"

namespace kvshare::firebird {
namespace {

// The digits of an amount without the zeros that say nothing.
struct Digits {
  std::string_view whole;
  std::string_view decimals;
};

Digits DigitsOf(std::string_view amount) {
  if (amount.starts_with('-')) amount.remove_prefix(1);
  const std::size_t point = std::min(amount.find('.'), amount.size());
  std::string_view whole = amount.substr(0, point);
  std::string_view decimals = amount.substr(std::min(point + 1, amount.size()));
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  decimals = decimals.substr(0, decimals.find_last_not_of('0') + 1);
  return {whole, decimals};
}

// Whether the amount fits 64 bits as a whole number of its last decimal.
bool Fits(const Digits& digits, std::size_t decimals) {
  constexpr std::string_view kMost = "9223372036854775807";
  std::string scaled(digits.whole);
  scaled.append(digits.decimals).append(decimals - digits.decimals.size(), '0');
  return scaled.size() < kMost.size() || (scaled.size() == kMost.size() && scaled <= kMost);
}

// So many that a division by it keeps four; nothing where no decimal of the server has room.
std::optional<std::size_t> DecimalsFor(std::string_view amount) {
  constexpr std::size_t kUsual = 4;
  constexpr std::size_t kMost = 18;
  const Digits digits = DigitsOf(amount);
  const std::size_t least = digits.decimals.size();
  if (least > kMost) return std::nullopt;
  for (const std::size_t decimals : {std::max(least, kUsual), least}) {
    if (Fits(digits, decimals)) return decimals;
  }
  return std::nullopt;
}

// The type that a value is given; "" where the server chooses.
std::string TypeFor(const data::ParameterValue& value) {
  if (const auto* amount = std::get_if<data::Decimal>(&value)) {
    const auto decimals = DecimalsFor(amount->digits);
    return decimals ? "DECIMAL(18, " + std::to_string(*decimals) + ")" : "";
  }
  if (const auto* moment = std::get_if<data::Moment>(&value)) {
    if (moment->kind == data::ColumnKind::Date) return "DATE";
    if (moment->kind == data::ColumnKind::TimeStamp) return "TIMESTAMP";
  }
  return "";
}

// Its parameters are variables with types of their own.
bool IsBlock(std::string_view sql) {
  constexpr std::string_view kBegins = "EXECUTE";
  constexpr std::string_view kBlock = "BLOCK";
  static constexpr std::string_view kBlanks = " \t\r\n";
  const auto takes = [&sql](std::string_view word) {
    const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
    sql.remove_prefix(std::min(sql.find_first_not_of(kBlanks), sql.size()));
    const bool is = std::ranges::equal(sql.substr(0, word.size()), word, {}, upper);
    sql.remove_prefix(std::min(word.size(), sql.size()));
    return is;
  };
  return takes(kBegins) && takes(kBlock);
}

// Puts a value into variable `i`, in the type that it has or that the server wants.
struct Bind {
  isc_db_handle& database;
  Transaction& transaction;
  Descriptor& values;
  std::size_t i;

  void operator()(std::monostate) const {
    values.Allocate(i, 0);
    Variable().sqltype = SQL_TEXT | 1;
    Variable().sqllen = 0;
    *Variable().sqlind = -1;
  }
  void operator()(std::int64_t value) const {
    if (Wanted() == SQL_BOOLEAN) {
      Put(SQL_BOOLEAN, static_cast<ISC_UCHAR>(value != 0 ? 1 : 0));
    } else {
      Put(SQL_INT64, ISC_INT64{value});
    }
  }
  void operator()(double value) const { Put(SQL_DOUBLE, value); }
  void operator()(const std::string& text) const { PutText(text, kUtf8); }
  void operator()(const data::Bytes& value) const { PutText(value.bytes, kOctets); }
  void operator()(const data::Decimal& value) const {
    const int type = Wanted();
    const bool scaled = type == SQL_SHORT || type == SQL_LONG || type == SQL_INT64;
    const auto room = static_cast<std::size_t>(-Variable().sqlscale);
    if (scaled && DigitsOf(value.digits).decimals.size() > room) {
      throw data::DriverError(value.digits + " would be rounded: its place takes " +
                              std::to_string(room) + " decimals");
    }
    PutText(value.digits, kUtf8);
  }
  void operator()(const data::Moment& value) const { PutText(value.text, kUtf8); }

 private:
  XSQLVAR& Variable() const { return values[i]; }
  int Wanted() const { return Variable().sqltype & ~1; }

  template <typename Value>
  void Put(int type, const Value& value) const {
    values.Allocate(i, sizeof value);
    std::memcpy(Variable().sqldata, &value, sizeof value);
    Variable().sqltype = static_cast<ISC_SHORT>(type | 1);
    Variable().sqllen = sizeof value;
    Variable().sqlscale = 0;
    Variable().sqlsubtype = 0;
  }

  void PutText(const std::string& text, int characterSet) const {
    if (Wanted() == SQL_BLOB) {
      const short subtype = Variable().sqlsubtype;
      Put(SQL_BLOB, WriteBlob(database, transaction, text,
                              characterSet == kUtf8 && subtype == isc_blob_text));
      Variable().sqlsubtype = subtype;
      return;
    }
    constexpr std::size_t kLongest = 32'767;
    if (text.size() > kLongest) {
      throw data::DriverError("A text of " + std::to_string(text.size()) +
                              " bytes is too long for a parameter that is no blob");
    }
    values.Allocate(i, text.size());
    std::memcpy(Variable().sqldata, text.data(), text.size());
    Variable().sqltype = SQL_TEXT | 1;
    Variable().sqllen = static_cast<ISC_SHORT>(text.size());
    Variable().sqlsubtype = static_cast<ISC_SHORT>(characterSet);
    Variable().sqlscale = 0;
  }
};

}  // namespace

drivers::TypedStatement TypedFor(const data::StatementParts& statement,
                                 std::span<const data::ParameterValue> parameters) {
  if (IsBlock(statement.texts.front())) return drivers::TypedByQuestions(statement);
  return drivers::TypedByQuestions(statement, parameters, TypeFor);
}

Descriptor BoundParameters(isc_db_handle& database, Transaction& transaction, Statement& statement,
                           std::span<const data::ParameterValue> parameters) {
  Status status;
  Descriptor values(static_cast<ISC_SHORT>(parameters.size()));
  isc_dsql_describe_bind(status.Vector(), statement.Handle(), SQLDA_VERSION1, values.Get());
  status.Check();
  drivers::CheckParameters(static_cast<std::size_t>(values.Needed()), parameters.size());
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    std::visit(Bind{database, transaction, values, i}, parameters[i]);
  }
  return values;
}

}  // namespace kvshare::firebird
