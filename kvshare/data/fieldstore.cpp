// How a field takes a value.
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "kvshare/data/dataset.h"
#include "kvshare/data/errors.h"
#include "kvshare/data/field.h"
#include "kvshare/data/record.h"
#include "kvshare/data/wireforms.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

using data::Cell;

struct Range {
  double least;
  double most;
};

std::optional<Range> RangeOf(TFieldType type) {
  switch (type) {
    case TFieldType::ftSmallint:
      return Range{std::numeric_limits<std::int16_t>::min(),
                   std::numeric_limits<std::int16_t>::max()};
    case TFieldType::ftWord:
      return Range{0, std::numeric_limits<std::uint16_t>::max()};
    case TFieldType::ftInteger:
    case TFieldType::ftAutoInc:
      return Range{std::numeric_limits<std::int32_t>::min(),
                   std::numeric_limits<std::int32_t>::max()};
    default:
      return std::nullopt;
  }
}

// [-]digits[.digits] of a real that is one, all its digits.
std::string DigitsOfReal(double value) {
  constexpr std::size_t kLongest = 400;
  std::string digits(kLongest, '\0');
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed)
          .ptr;
  digits.resize(static_cast<std::size_t>(end - digits.data()));
  return digits;
}

// A decimal as people type it, in the contract's form; nothing for another text.
std::optional<std::string> DigitsOfTyped(std::string_view text) {
  std::string digits(Trim(text));
  if (!digits.empty() && digits.front() == '+') digits.erase(0, 1);
  for (char& c : digits) {
    if (c == FormatSettings.DecimalSeparator) c = '.';
  }
  if (!data::WholeOfDigits(digits) && !data::CurrencyOfDigits(digits)) return std::nullopt;
  if (digits.front() == '.') digits.insert(0, 1, '0');
  if (digits.starts_with("-.")) digits.insert(1, 1, '0');
  return digits;
}

}  // namespace

void TField::RefuseText(std::string_view text, std::string_view kind) const {
  DatabaseError(Format("'%s' is not a valid %s value for field '%s'", {text, kind, DisplayName()}),
                &dataset_);
}

bool TField::IsDate() const {
  return form_ == TFieldForm::Date || form_ == TFieldForm::Time || form_ == TFieldForm::Moment;
}

// While its handler runs the field reads as `value`, until the handler stores one itself: then it
// reads as that one, and yet `value` is stored afterwards.
void TField::Validate(const Cell& value) {
  const data::CellReader reader(value);
  shown_ = &reader;
  try {
    OnValidate(*this);
  } catch (...) {
    shown_ = nullptr;
    throw;
  }
  shown_ = nullptr;
}

void TField::Store(const Cell& value) {
  if (converted_ != nullptr) {
    *converted_ = data::OwnedCell(value);
    return;
  }
  dataset_.CheckStorable(*this);
  if (ReadOnly) DatabaseError(Format("Field '%s' cannot be modified", {DisplayName()}), &dataset_);
  if (OnValidate) Validate(value);
  dataset_.StoreCell(*this, column_, value);
  shown_ = nullptr;
  if (OnChange) OnChange(*this);
}

void TField::Clear() {
  Store(Cell());
}

void TField::StoreText(std::string_view text) {
  const auto room = static_cast<std::size_t>(def_.Size);
  const bool whole = room == 0 || converted_ != nullptr;  // a cut one would find others
  Store(Cell::Of(whole ? text : text.substr(0, room)));
}

void TField::StoreInteger(std::int64_t value) {
  std::optional<Range> range = RangeOf(def_.DataType);
  if (MinValue != 0 || MaxValue != 0) range = Range{MinValue, MaxValue};
  const auto real = static_cast<double>(value);
  if (range && (real < range->least || real > range->most)) {
    RefuseRange(real, range->least, range->most);
  }
  Store(Cell::Of(value));
}

void TField::StoreReal(double value) {
  const bool bounded = MinValue != 0 || MaxValue != 0;
  if (bounded && !(value >= MinValue && value <= MaxValue)) RefuseRange(value, MinValue, MaxValue);
  Store(Cell::Of(value));
}

// Without zeros at the end: of two equal amounts the texts are equal.
void TField::StoreDecimal(std::string_view digits) {
  std::string shortest;
  data::AppendShortest(shortest, digits, '.');
  const std::string_view value = shortest;
  Store(Cell::Of(value));
}

void TField::StoreMoment(TDateTime moment) {
  switch (form_) {
    case TFieldForm::Date:
      return Store(Cell::Of(data::DateText::OfDate(moment).View()));
    case TFieldForm::Time:
      return Store(Cell::Of(data::DateText::OfTime(moment).View()));
    default:
      return Store(Cell::Of(data::DateText::OfMoment(moment).View()));
  }
}

void TField::StoreTypedDecimal(std::string_view text) {
  const std::optional<std::string> digits = DigitsOfTyped(text);
  if (!digits) RefuseText(text, "floating point");
  StoreDecimal(*digits);
}

void TField::StoreTypedMoment(std::string_view text) {
  switch (def_.DataType) {
    case TFieldType::ftDate:
      return StoreMoment(StrToDate(text));
    case TFieldType::ftTime:
      return StoreMoment(StrToTime(text));
    case TFieldType::ftTimeStamp: {
      TDateTime moment;
      if (!TryStrToDateTime(text, moment)) {
        throw EConvertError("Could not parse SQL TimeStamp string");
      }
      return StoreMoment(moment);
    }
    default:
      return StoreMoment(StrToDateTime(text));
  }
}

void TField::SetAsString(std::string_view text) {
  if (form_ == TFieldForm::Text || form_ == TFieldForm::Bytes) return StoreText(text);
  if (form_ == TFieldForm::None) RefuseType("String");
  if (text.empty()) return Clear();
  switch (form_) {
    case TFieldForm::Integer: {
      std::int64_t value = 0;
      if (!TryStrToInt64(text, value)) RefuseText(text, "integer");
      return StoreInteger(value);
    }
    case TFieldForm::Real: {
      double value = 0;
      if (!TryStrToFloat(text, value)) RefuseText(text, "floating point");
      return StoreReal(value);
    }
    case TFieldForm::Decimal:
      return StoreTypedDecimal(text);
    case TFieldForm::Boolean:
      if (!SameText(text, "True") && !SameText(text, "False")) RefuseText(text, "boolean");
      return Store(Cell::Of(std::int64_t{SameText(text, "True")}));
    default:
      return StoreTypedMoment(text);
  }
}

void TField::SetAsInteger(std::int64_t value) {
  switch (form_) {
    case TFieldForm::Integer:
      return StoreInteger(value);
    case TFieldForm::Real:
      return StoreReal(static_cast<double>(value));
    case TFieldForm::Decimal:
      return StoreDecimal(IntToStr(value));
    case TFieldForm::Text:
      return StoreText(IntToStr(value));
    default:
      RefuseType("Integer");
  }
}

void TField::SetAsFloat(double value) {
  switch (form_) {
    case TFieldForm::Integer:
      return StoreInteger(WholeOfReal(value));
    case TFieldForm::Real:
      return StoreReal(value);
    case TFieldForm::Decimal:
      if (!std::isfinite(value)) RefuseText(FloatToStr(value), "floating point");
      return StoreDecimal(DigitsOfReal(value));
    case TFieldForm::Text:
      return StoreText(FloatToStr(value));
    default:
      RefuseType("Float");
  }
}

void TField::SetAsCurrency(Currency amount) {
  switch (form_) {
    case TFieldForm::Integer: {
      const auto whole = data::WholeOfDigits(data::DigitsOfCurrency(amount));
      return StoreInteger(*whole);
    }
    case TFieldForm::Real:
      return StoreReal(CurrencyToFloat(amount));
    case TFieldForm::Decimal:
      return StoreDecimal(data::DigitsOfCurrency(amount));
    case TFieldForm::Text:
      return StoreText(CurrToStr(amount));
    default:
      RefuseType("Currency");
  }
}

void TField::SetAsDateTime(TDateTime moment) {
  if (form_ == TFieldForm::Text) return StoreText(DateTimeToStr(moment));
  if (!IsDate()) RefuseType("DateTime");
  StoreMoment(moment);
}

void TField::SetAsSQLTimeStamp(TDateTime moment) {
  if (!IsDate()) RefuseType("SQLTimeStamp");
  StoreMoment(moment);
}

void TField::SetAsBoolean(bool value) {
  if (form_ == TFieldForm::Text) return StoreText(BoolToStr(value, true));
  if (form_ != TFieldForm::Boolean) RefuseType("Boolean");
  Store(Cell::Of(std::int64_t{value}));
}

void TField::StoreVariant(const Variant& value) {
  const bool text = std::holds_alternative<std::string>(value.Value());
  switch (form_) {
    case TFieldForm::Integer:
      return StoreInteger(value.AsInteger());
    case TFieldForm::Real:
      return StoreReal(value.AsFloat());
    case TFieldForm::Decimal:
      if (text) return StoreTypedDecimal(value.AsString());
      if (std::holds_alternative<double>(value.Value())) return SetAsFloat(value.AsFloat());
      return SetAsCurrency(value.AsCurrency());
    case TFieldForm::Boolean:
      return SetAsBoolean(value.AsBoolean());
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      return StoreMoment(value.AsDateTime());
    default:
      return SetAsString(value.AsString());
  }
}

void TField::SetValue(const Variant& value) {
  if (value.IsEmpty() || value.IsNull()) return Clear();
  try {
    StoreVariant(value);
  } catch (const EVariantError&) {
    DatabaseError(Format("Invalid value for field '%s'", {DisplayName()}), &dataset_);
  }
}

data::OwnedCell TField::Converted(const Variant& value) {
  data::OwnedCell cell;
  converted_ = &cell;
  try {
    SetValue(value);
  } catch (...) {
    converted_ = nullptr;
    throw;
  }
  converted_ = nullptr;
  return cell;
}

}  // namespace kvshare
