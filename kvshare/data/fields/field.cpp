#include "kvshare/data/fields/field.h"

#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "kvshare/data/contract/decimals.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/data/contract/wireforms.h"
#include "kvshare/data/contract/wiretexts.h"
#include "kvshare/data/fields/dataset.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare {

namespace {

// What a text of another form is not.
std::string_view KindOf(TFieldForm form) {
  switch (form) {
    case TFieldForm::Date:
      return "date";
    case TFieldForm::Time:
      return "time";
    case TFieldForm::Moment:
      return "date and time";
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Integer:
    case TFieldForm::Real:
    case TFieldForm::Decimal:
    case TFieldForm::Boolean:
    case TFieldForm::Bytes:
      break;
  }
  return "floating point";
}

constexpr double kLeastAmount = -922337203685477.5808;
constexpr double kMostAmount = 922337203685477.5807;

}  // namespace

TField::TField(TDataSet& dataset, const TRecordReader& record, int index, int column, TFieldDef def)
    : TComponent(&dataset),
      dataset_(dataset),
      record_(&record),
      index_(index),
      column_(column),
      form_(FormOf(def.DataType)),
      def_(std::move(def)) {}

TField::~TField() = default;

void TField::RefuseType(std::string_view type) const {
  DatabaseError(Format("Cannot access field '%s' as type %s", {DisplayName(), type}), &dataset_);
}

void TField::RefuseRange(double value, double least, double most) const {
  DatabaseError(Format("%g is not a valid value for field '%s'. The allowed range is %g to %g",
                       {value, DisplayName(), least, most}),
                &dataset_);
}

void TField::RefuseText(std::string_view text, std::string_view kind) const {
  DatabaseError(Format("'%s' is not a valid %s value for field '%s'", {text, kind, DisplayName()}),
                &dataset_);
}

// A text of the record that is no value of the type, in the server's letters.
void TField::RefuseRead(std::string_view text) const {
  RefuseText(data::ServerText(text), KindOf(form_));
}

void TField::RefuseValue() const {
  DatabaseError(Format("Invalid value for field '%s'", {DisplayName()}), &dataset_);
}

std::string TField::Characters() const {
  std::string text;
  AppendString(text);
  return text;
}

std::string TField::AsString() const {
  std::string text;
  AppendString(text);
  return text;
}

void TField::AppendString(std::string& out) const {
  if (IsNull()) return;
  switch (form_) {
    case TFieldForm::Text:
      try {
        Record().AppendCharacters(out, column_);
      } catch (const EConvertError& e) {
        DatabaseError(Format("Field '%s': %s", {DisplayName(), e.Message()}), &dataset_);
      }
      return;
    case TFieldForm::Integer:
      out += IntToStr(Record().Integer(column_));
      return;
    case TFieldForm::Real:
      out += FloatToStr(Record().Float(column_));
      return;
    case TFieldForm::Decimal:
      if (const std::string_view digits = Record().Text(column_);
          !data::AppendShortest(out, digits, FormatSettings.DecimalSeparator)) {
        RefuseRead(digits);
      }
      return;
    case TFieldForm::Boolean:
      out += BoolToStr(Record().Integer(column_) != 0, true);
      return;
    case TFieldForm::Date:
      out += DateToStr(AsDateTime());
      return;
    case TFieldForm::Time:
      out += TimeToStr(AsDateTime());
      return;
    case TFieldForm::Moment:
      out += DateTimeToStr(AsDateTime());
      return;
    case TFieldForm::Bytes:
      out += Record().Text(column_);
      return;
    case TFieldForm::None:
      RefuseType("String");
  }
}

// The digits of a decimal that is not Null.
std::string_view TField::Digits() const {
  const std::string_view digits = Record().Text(column_);
  if (!data::DigitsOf(digits)) RefuseRead(digits);
  return digits;
}

// `least` and `most` stand in the error's text; they lie within 64 bits.
std::int64_t TField::WholeOfReal(double value, double least, double most) const {
  const double whole = std::nearbyint(value);
  if (!(whole >= -kTwoTo63 && whole < kTwoTo63)) RefuseRange(value, least, most);
  return static_cast<std::int64_t>(whole);
}

std::int64_t TField::WholeNumber(std::string_view type) const {
  if (form_ == TFieldForm::Text) return StrToInt64(Characters());
  const bool number =
      form_ == TFieldForm::Integer || form_ == TFieldForm::Real || form_ == TFieldForm::Decimal;
  if (!number) RefuseType(type);
  if (IsNull()) return 0;
  if (form_ == TFieldForm::Integer) return Record().Integer(column_);
  if (form_ == TFieldForm::Decimal) {
    if (const auto whole = data::WholeOfDigits(Record().Text(column_))) return *whole;
  }
  return WholeOfReal(AsFloat(), -kTwoTo63, kTwoTo63);
}

std::int64_t TField::AsLargeInt() const {
  return WholeNumber("Largeint");
}

std::int32_t TField::AsInteger() const {
  if (form_ == TFieldForm::Text) return StrToInt(Characters());
  const std::int64_t value = WholeNumber("Integer");
  if (!std::in_range<std::int32_t>(value)) {
    RefuseRange(static_cast<double>(value), std::numeric_limits<std::int32_t>::min(),
                std::numeric_limits<std::int32_t>::max());
  }
  return static_cast<std::int32_t>(value);
}

double TField::AsFloat() const {
  if (form_ == TFieldForm::Text) return StrToFloat(Characters());
  switch (form_) {
    case TFieldForm::Integer:
      return IsNull() ? 0 : static_cast<double>(Record().Integer(column_));
    case TFieldForm::Real:
      return IsNull() ? 0 : Record().Float(column_);
    case TFieldForm::Decimal:
      if (IsNull()) return 0;
      if (const auto value = data::FloatOfDigits(Record().Text(column_))) return *value;
      RefuseRead(Record().Text(column_));
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      return AsDateTime().Days();
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Boolean:
    case TFieldForm::Bytes:
      break;
  }
  RefuseType("Float");
}

Currency TField::DecimalAsCurrency(std::string_view digits) const {
  const auto amount = data::CurrencyOfDigits(digits);
  if (!amount) RefuseRange(AsFloat(), kLeastAmount, kMostAmount);
  return *amount;
}

Currency TField::AsCurrency() const {
  if (form_ == TFieldForm::Text) return StrToCurr(Characters());
  if (form_ == TFieldForm::Decimal) {
    return IsNull() ? Currency() : DecimalAsCurrency(Record().Text(column_));
  }
  try {
    if (form_ == TFieldForm::Integer) {
      return IsNull() ? Currency() : Currency::FromInt(Record().Integer(column_));
    }
    return FloatToCurrency(AsFloat());
  } catch (const EExternal&) {
    RefuseRange(AsFloat(), kLeastAmount, kMostAmount);
  }
}

TDateTime TField::AsDateTime() const {
  if (form_ == TFieldForm::Text) {
    const std::string text = Characters();
    const auto moment = data::MomentOfText(text);
    return moment ? *moment : StrToDateTime(text);
  }
  if (!IsDate()) RefuseType("DateTime");
  if (IsNull()) return {};
  const std::string_view text = Record().Text(column_);
  const auto moment = form_ == TFieldForm::Time ? data::TimeOfText(text) : data::MomentOfText(text);
  if (!moment) RefuseRead(text);
  return *moment;
}

TDateTime TField::AsSQLTimeStamp() const {
  if (!IsDate()) RefuseType("SQLTimeStamp");
  return AsDateTime();
}

bool TField::AsBoolean() const {
  if (form_ == TFieldForm::Text) {
    constexpr std::string_view kTrue = "TtYy";
    const std::string text = Characters();
    return !text.empty() && kTrue.find(text[0]) != std::string_view::npos;
  }
  if (form_ != TFieldForm::Boolean) RefuseType("Boolean");
  return !IsNull() && Record().Integer(column_) != 0;
}

Variant TField::Value() const {
  if (IsNull()) return Null;
  switch (form_) {
    case TFieldForm::Text:
    case TFieldForm::Bytes:
      return AsString();
    case TFieldForm::Integer:
      return Record().Integer(column_);
    case TFieldForm::Real:
      return Record().Float(column_);
    case TFieldForm::Decimal: {
      constexpr std::size_t kPlaces = 4;
      const auto digits = data::DigitsOf(Record().Text(column_));
      const bool fits = digits && digits->decimals.size() <= kPlaces;
      const auto amount = fits ? data::CurrencyOfDigits(Record().Text(column_)) : std::nullopt;
      if (amount) return *amount;
      return AsString();
    }
    case TFieldForm::Boolean:
      return Record().Integer(column_) != 0;
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      return AsDateTime();
    case TFieldForm::None:
      break;
  }
  RefuseType("Variant");
}

Variant TField::ImageValue(TFieldImage image) const {
  const TRecordReader* record = dataset_.Image(image, *this, column_);
  return record == nullptr ? Variant(Unassigned) : ValueIn(*record);
}

Variant TField::ValueIn(const TRecordReader& record) const {
  return Showing(record, [this] { return Value(); });
}

}  // namespace kvshare
