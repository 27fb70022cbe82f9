// The parameters of a statement.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/data/contract/driver.h"
#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {

class TField;

// A parameter's value; Null until it is set. Amounts and dates go to the server exactly, as what
// they are.
class KVSHARE_API TParam {
 public:
  explicit TParam(std::string_view name) : name_(name) {}

  const std::string& Name() const { return name_; }
  bool IsNull() const { return value_.index() == 0; }
  bool IsGiven() const { return given_; }  // a value has been set, Null too
  void Clear() { SetWireValue({}); }

  // Characters of code page 874. Throws EConvertError for a byte that is no letter.
  void SetAsString(std::string_view text);
  void SetAsInteger(std::int64_t value) { SetWireValue(value); }
  void SetAsFloat(double value) { SetWireValue(value); }
  void SetAsBoolean(bool value) { SetWireValue(std::int64_t{value}); }
  void SetAsCurrency(Currency amount);
  // Throw EDatabaseError for a date that is not of the years 1 to 9999.
  void SetAsDate(TDateTime moment);
  void SetAsDateTime(TDateTime moment);
  void SetAsTime(TDateTime moment);
  void SetAsBlob(std::string_view bytes) { SetWireValue(data::Bytes{std::string(bytes)}); }
  // A field's value with all its digits, Null too. Throws as SetAsString does.
  void AssignField(const TField& field);

  // As it crosses the driver contract.
  const data::ParameterValue& WireValue() const { return value_; }
  void SetWireValue(data::ParameterValue value) {
    value_ = std::move(value);
    given_ = true;
  }

 private:
  std::string name_;
  data::ParameterValue value_;
  bool given_ = false;
};

// In the order of their first appearance in the statement. A parameter lives as long as the query's
// statement has it.
class KVSHARE_API TParams {
 public:
  int Count() const { return static_cast<int>(params_.size()); }
  // Throws EListError `List index out of bounds (%d)`.
  TParam& operator[](int index);
  // Letter case ignored. nullptr; EDatabaseError `Parameter '%s' not found`.
  TParam* FindParam(std::string_view name);
  TParam& ParamByName(std::string_view name);

 private:
  friend class TSQLQuery;
  std::vector<std::unique_ptr<TParam>> params_;
};

}  // namespace kvshare
