#include "drivers/firebird/parameters.h"

#include <cstring>

#include "drivers/common/statements.h"

namespace kvshare::firebird {
namespace {

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
  void operator()(const data::Decimal& value) const { PutText(value.digits, kUtf8); }
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
