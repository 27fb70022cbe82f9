// How a field takes a value.
#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>
#include <optional>
#include <utility>
#include <variant>

#include "kvshare/data/contract/decimals.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/data/contract/wireforms.h"
#include "kvshare/data/fields/dataset.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/data/records/record.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/decimal.h"
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

// Of whole numbers: what their type holds, and of that what the field allows.
Range RangeOf(const TField& field) {
  const TWholeRange whole = WholeRangeOf(field.DataType());
  Range range{static_cast<double>(whole.Least), static_cast<double>(whole.Most)};
  if (field.MinValue == 0 && field.MaxValue == 0) return range;
  range.least = std::max(range.least, field.MinValue);
  range.most = std::min(range.most, field.MaxValue);
  return range;
}

bool IsOutOf(double least, double most, std::string_view digits) {
  return std::is_lt(data::CompareDecimals(digits, data::DigitsOfReal(least))) ||
         std::is_gt(data::CompareDecimals(digits, data::DigitsOfReal(most)));
}

// A column of such decimals on a server rounds into them.
bool HasDeclaredDecimals(const TFieldDef& def) {
  return def.DataType != TFieldType::ftCurrency && (def.Size > 0 || def.Precision > 0);
}

// A whole number, or else its digits; nothing for a value that is no number.
std::optional<Cell> WholeOrDigits(const Variant& value, std::string& digits) {
  if (const auto* real = std::get_if<double>(&value.Value()); real != nullptr) {
    if (!std::isfinite(*real)) return std::nullopt;
    const bool isWhole = std::fabs(*real) < kTwoTo63 && std::nearbyint(*real) == *real;
    if (isWhole) return Cell::Of(static_cast<std::int64_t>(*real));
    digits = data::DigitsOfReal(*real);
  } else if (const auto* amount = std::get_if<Currency>(&value.Value()); amount != nullptr) {
    data::AppendShortest(digits, data::DigitsOfCurrency(*amount), '.');
  } else if (const auto* text = std::get_if<std::string>(&value.Value()); text != nullptr) {
    digits = data::DigitsOfTyped(*text).value_or("");
  }
  if (digits.empty()) return std::nullopt;
  const auto whole = data::WholeOfDigits(digits);
  const bool isWhole = whole && digits.find('.') == std::string::npos;
  return isWhole ? Cell::Of(*whole) : Cell::Of(std::string_view{digits});
}

}  // namespace

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
  const bool cut = IsSized(def_.DataType) && room != 0 && converted_ == nullptr;
  Store(Cell::Of(cut ? text.substr(0, room) : text));
}

void TField::StoreInteger(std::int64_t value) {
  const Range range = RangeOf(*this);
  const auto real = static_cast<double>(value);
  const bool out = real < range.least || real > range.most;
  if (out && converted_ == nullptr) RefuseRange(real, range.least, range.most);
  Store(Cell::Of(value));
}

void TField::StoreReal(double value) {
  if (converted_ == nullptr) {
    if (!std::isfinite(value)) RefuseText(FloatToStr(value), "floating point");
    const bool out = value < MinValue || value > MaxValue;
    if (out && IsBounded()) RefuseRange(value, MinValue, MaxValue);
  }
  Store(Cell::Of(value));
}

void TField::StoreDecimal(std::string_view digits) {
  std::string shortest;
  data::AppendShortest(shortest, digits, '.');
  StoreShortest(std::move(shortest));
}

// Without zeros that say nothing: of two equal amounts the texts are equal.
void TField::StoreShortest(std::string digits) {
  if (converted_ == nullptr) {
    if (HasDeclaredDecimals(def_)) data::RoundDigits(digits, def_.Size);
    if (IsBounded() && IsOutOf(MinValue, MaxValue, digits)) {
      RefuseRange(data::FloatOfDigits(digits).value_or(std::numeric_limits<double>::infinity()),
                  MinValue, MaxValue);
    }
  }
  Store(Cell::Of(std::string_view{digits}));
}

// A date or moment that has four digits of a year can be read again.
void TField::StoreMoment(TDateTime moment) {
  constexpr double kFarthest = 3'000'000;  // days, past both ends of the calendar
  if (!(std::fabs(moment.Days()) < kFarthest)) RefuseValue();
  if (form_ == TFieldForm::Time) return Store(Cell::Of(data::DateText::OfTime(moment).View()));
  const auto text =
      form_ == TFieldForm::Date ? data::DateText::OfDate(moment) : data::DateText::OfMoment(moment);
  constexpr std::size_t kYear = 4;
  const bool readable = text.View()[kYear] == '-' && !text.View().starts_with("0000");
  if (!readable) RefuseValue();
  Store(Cell::Of(text.View()));
}

void TField::StoreTypedDecimal(std::string_view text) {
  std::optional<std::string> digits = data::DigitsOfTyped(text);
  if (!digits) RefuseText(text, "floating point");
  StoreShortest(*std::move(digits));
}

void TField::StoreTypedMoment(std::string_view text) {
  if (form_ == TFieldForm::Date) return StoreMoment(StrToDate(text));
  if (form_ == TFieldForm::Time) return StoreMoment(StrToTime(text));
  if (def_.DataType != ftTimeStamp) return StoreMoment(StrToDateTime(text));
  TDateTime moment;
  if (!TryStrToDateTime(text, moment)) {
    throw EConvertError("Could not parse SQL TimeStamp string");
  }
  StoreMoment(moment);
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
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
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
    case TFieldForm::None:
    case TFieldForm::Boolean:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
      RefuseType("Integer");
  }
}

void TField::SetAsFloat(double value) {
  switch (form_) {
    case TFieldForm::Integer:
      return StoreInteger(WholeOfReal(value, RangeOf(*this).least, RangeOf(*this).most));
    case TFieldForm::Real:
      return StoreReal(value);
    case TFieldForm::Decimal:
      if (!std::isfinite(value)) RefuseText(FloatToStr(value), "floating point");
      return StoreDecimal(data::DigitsOfReal(value));
    case TFieldForm::Text:
      return StoreText(FloatToStr(value));
    case TFieldForm::None:
    case TFieldForm::Boolean:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
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
    case TFieldForm::None:
    case TFieldForm::Boolean:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
    case TFieldForm::Bytes:
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

// What the value is in another type. Only the conversion's own errors are meant: handlers that are
// told of the storing have theirs.
template <typename Type>
Type TField::Fit(const Variant& value, Type (Variant::*convert)() const) const {
  try {
    return (value.*convert)();
  } catch (const EVariantError&) {
    RefuseValue();
  } catch (const EExternal&) {
    RefuseValue();
  }
}

void TField::StoreVariant(const Variant& value) {
  switch (form_) {
    case TFieldForm::Integer:
      return StoreInteger(Fit(value, &Variant::AsInteger));
    case TFieldForm::Real:
      return StoreReal(Fit(value, &Variant::AsFloat));
    case TFieldForm::Decimal:
      return StoreVariantDecimal(value);
    case TFieldForm::Boolean:
      return SetAsBoolean(Fit(value, &Variant::AsBoolean));
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      return StoreMoment(Fit(value, &Variant::AsDateTime));
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Bytes:
      return SetAsString(value.AsString());
  }
}

// In the type that the value has, so that it loses nothing.
void TField::StoreVariantDecimal(const Variant& value) {
  if (const auto* text = std::get_if<std::string>(&value.Value()); text != nullptr) {
    std::optional<std::string> digits = data::DigitsOfTyped(*text);
    if (!digits) RefuseValue();
    return StoreShortest(*std::move(digits));
  }
  if (const auto* amount = std::get_if<Currency>(&value.Value()); amount != nullptr) {
    return StoreDecimal(data::DigitsOfCurrency(*amount));
  }
  if (const auto* whole = std::get_if<std::int64_t>(&value.Value()); whole != nullptr) {
    return StoreShortest(IntToStr(*whole));
  }
  const double real = Fit(value, &Variant::AsFloat);
  if (!std::isfinite(real)) RefuseValue();
  StoreDecimal(data::DigitsOfReal(real));
}

void TField::SetValue(const Variant& value) {
  if (value.IsEmpty() || value.IsNull()) return Clear();
  StoreVariant(value);
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

data::OwnedCell TField::Sought(const Variant& value) {
  std::string digits;
  const auto cell = form_ == TFieldForm::Integer ? WholeOrDigits(value, digits) : std::nullopt;
  return cell ? data::OwnedCell(*cell) : Converted(value);
}

}  // namespace kvshare
