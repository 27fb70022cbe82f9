#include "kvshare/data/field.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "kvshare/data/dataset.h"
#include "kvshare/data/errors.h"
#include "kvshare/data/wireforms.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"

namespace kvshare {

namespace {

double FloatOfDigits(std::string_view digits) {
  double value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

// A moment that the server gave in a form of its own.
TDateTime MomentOrError(std::optional<TDateTime> moment, std::string_view text) {
  if (!moment) {
    throw EConvertError("'" + std::string(text) + "' is not a valid date and time");
  }
  return *moment;
}

std::string Shortest(std::string_view digits) {
  std::string text;
  data::AppendShortest(text, digits, '.');
  return text;
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
      data::AppendShortest(out, Record().Text(column_), FormatSettings.DecimalSeparator);
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

std::int64_t TField::WholeOfReal(double value) const {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63, which a double holds exactly
  const double whole = std::nearbyint(value);
  if (!(whole >= -kLimit && whole < kLimit)) RefuseRange(value, -kLimit, kLimit);
  return static_cast<std::int64_t>(whole);
}

std::int64_t TField::WholeNumber(std::string_view type) const {
  if (form_ == TFieldForm::Text) return StrToInt64(Characters());
  const bool number =
      form_ == TFieldForm::Integer || form_ == TFieldForm::Real || form_ == TFieldForm::Decimal;
  if (!number) RefuseType(type);
  if (IsNull()) return 0;
  if (form_ == TFieldForm::Integer) return Record().Integer(column_);
  if (form_ == TFieldForm::Real) return WholeOfReal(Record().Float(column_));
  const std::string_view digits = Record().Text(column_);
  const auto whole = data::WholeOfDigits(digits);
  return whole ? *whole : WholeOfReal(FloatOfDigits(digits));
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
      return IsNull() ? 0 : FloatOfDigits(Record().Text(column_));
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      return AsDateTime().Days();
    default:
      RefuseType("Float");
  }
}

Currency TField::DecimalAsCurrency(std::string_view digits) const {
  const auto amount = data::CurrencyOfDigits(digits);
  if (!amount) RefuseRange(FloatOfDigits(digits), kLeastAmount, kMostAmount);
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
  const bool date =
      form_ == TFieldForm::Date || form_ == TFieldForm::Time || form_ == TFieldForm::Moment;
  if (!date) RefuseType("DateTime");
  if (IsNull()) return {};
  const std::string_view text = Record().Text(column_);
  if (form_ == TFieldForm::Time) return MomentOrError(data::TimeOfText(text), text);
  return MomentOrError(data::MomentOfText(text), text);
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
      const std::string_view digits = Record().Text(column_);
      const auto amount = data::CurrencyOfDigits(digits);
      if (amount && Shortest(data::DigitsOfCurrency(*amount)) == Shortest(digits)) return *amount;
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
