#include "kvshare/data/sqlparams.h"

#include <algorithm>
#include <cmath>

#include "kvshare/data/errors.h"
#include "kvshare/data/field.h"
#include "kvshare/data/record.h"
#include "kvshare/data/wireforms.h"
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
  return params_[static_cast<std::size_t>(index)];
}

TParam* TParams::FindParam(std::string_view name) {
  const auto found = std::ranges::find_if(
      params_, [name](const TParam& param) { return SameText(param.Name(), name); });
  return found == params_.end() ? nullptr : &*found;
}

TParam& TParams::ParamByName(std::string_view name) {
  TParam* param = FindParam(name);
  if (param == nullptr) throw EDatabaseError(Format("Parameter '%s' not found", {name}));
  return *param;
}

namespace data {

namespace {

constexpr bool BeginsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool ContinuesName(char c) {
  return BeginsName(c) || (c >= '0' && c <= '9');
}

// The end of the text that starts at `at` and that `end` closes; all the rest without it.
std::size_t Behind(std::string_view sql, std::size_t at, std::string_view end) {
  const std::size_t found = sql.find(end, at);
  return found == std::string_view::npos ? sql.size() : found + end.size();
}

}  // namespace

std::size_t SkipQuoted(std::string_view sql, std::size_t at) {
  const char c = sql[at];
  if (c == '\'' || c == '"' || c == '`') return Behind(sql, at + 1, sql.substr(at, 1));
  if (sql.substr(at, 2) == "--") return Behind(sql, at + 2, "\n");
  if (sql.substr(at, 2) == "/*") return Behind(sql, at + 2, "*/");
  return at;
}

namespace {

std::size_t EndOfName(std::string_view sql, std::size_t at) {
  while (at < sql.size() && ContinuesName(sql[at])) ++at;
  return at;
}

}  // namespace

ParsedStatement ParseStatement(std::string_view sql, const Lexis& /*lexis*/) {
  ParsedStatement parsed;
  parsed.texts.emplace_back();
  for (std::size_t at = 0; at < sql.size();) {
    std::size_t end = SkipQuoted(sql, at);
    if (end == at) {
      const bool named = sql[at] == ':' && at + 1 < sql.size() && BeginsName(sql[at + 1]);
      if (named || sql[at] == '?') {
        end = named ? EndOfName(sql, at + 1) : at + 1;
        parsed.names.emplace_back(sql.substr(at + 1, end - at - 1));
        parsed.texts.emplace_back();
        at = end;
        continue;
      }
      end = at + (sql.substr(at, 2) == "::" ? 2 : 1);
    }
    parsed.texts.back().append(sql.substr(at, end - at));
    at = end;
  }
  return parsed;
}

}  // namespace data
}  // namespace kvshare
