#include "kvshare/data/sql/sqlparams.h"

#include <algorithm>
#include <cmath>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/contract/wireforms.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/data/records/record.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

void TParam::SetAsString(std::string_view text) {
  SetWireValue(Cp874ToUtf8(text));
}

void TParam::SetAsCurrency(Currency amount) {
  SetWireValue(data::Decimal{data::DigitsOfCurrency(amount)});
}

namespace {

// Four digits write the year of every date that a server has.
void CheckYear(TDateTime moment, std::string_view param) {
  constexpr double kFarthest = 3'000'000;  // days, past both ends of the calendar
  constexpr int kLastYear = 9999;
  const bool near = std::fabs(moment.Days()) < kFarthest;
  const int year = near ? DecodeDate(moment).Year : 0;
  if (year < 1 || year > kLastYear) {
    throw EDatabaseError(
        Format("The date of parameter '%s' is not of the years 1 to 9999", {param}));
  }
}

}  // namespace

void TParam::SetAsDate(TDateTime moment) {
  CheckYear(moment, name_);
  SetWireValue(data::Moment{data::ColumnKind::Date, data::TextOfDate(moment)});
}

void TParam::SetAsTime(TDateTime moment) {
  SetWireValue(data::Moment{data::ColumnKind::Time, data::TextOfTime(moment)});
}

void TParam::SetAsDateTime(TDateTime moment) {
  CheckYear(moment, name_);
  SetWireValue(data::Moment{data::ColumnKind::TimeStamp, data::TextOfMoment(moment)});
}

void TParam::AssignField(const TField& field) {
  data::RecordBuffer value;
  value.Resize(1);
  std::string scratch;
  data::PutCell(value, 0, field.Record(), field.column_, field.form_, scratch);
  SetWireValue(data::WireValueOf(value.At(0), field.form_));
}

TParam& TParams::operator[](int index) {
  if (index < 0 || index >= Count()) {
    throw EListError(Format("List index out of bounds (%d)", {index}));
  }
  return *params_[static_cast<std::size_t>(index)];
}

TParam* TParams::FindParam(std::string_view name) {
  const auto found = std::ranges::find_if(
      params_, [name](const auto& param) { return SameText(param->Name(), name); });
  return found == params_.end() ? nullptr : found->get();
}

TParam& TParams::ParamByName(std::string_view name) {
  TParam* param = FindParam(name);
  if (param == nullptr) throw EDatabaseError(Format("Parameter '%s' not found", {name}));
  return *param;
}

}  // namespace kvshare
