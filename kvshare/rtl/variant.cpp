#include "kvshare/rtl/variant.h"

#include <cmath>
#include <compare>
#include <iterator>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

template <typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

// A value's type as error messages name it.
std::string_view TypeName(const Variant& value) {
  constexpr std::string_view kNames[] = {"Unassigned", "Null",     "Boolean", "Integer",
                                         "Double",     "Currency", "Date",    "String"};
  static_assert(std::size(kNames) == std::variant_size_v<Variant::Storage>);
  return kNames[value.Value().index()];
}

[[noreturn]] void ThrowNoConversion(const Variant& value, std::string_view wanted) {
  std::string message = "Could not convert variant of type (";
  message.append(TypeName(value)).append(") into type (").append(wanted).append(")");
  throw EVariantTypeCastError(message);
}

// A date counts as its number of days.
constexpr double RealOf(double value) {
  return value;
}
constexpr double RealOf(TDateTime value) {
  return value.Days();
}
constexpr std::int64_t IntegerOf(std::int64_t value) {
  return value;
}
// A Boolean counts as BoolToStr writes it.
constexpr std::int64_t IntegerOf(bool value) {
  return value ? -1 : 0;
}

std::int64_t RoundHalfEven(double value) {
  const double rounded = value - std::remainder(value, 1.0);
  if (!(rounded >= -kTwoTo63 && rounded < kTwoTo63)) throw EInvalidOp();  // NaN too
  return static_cast<std::int64_t>(rounded);
}

template <typename T>
concept Whole = std::same_as<T, bool> || std::same_as<T, std::int64_t>;
template <typename T>
concept Real = std::same_as<T, double> || std::same_as<T, TDateTime>;

bool TryWords(std::string_view text, bool& value) {
  if (!SameText(text, "True") && !SameText(text, "False")) return false;
  value = UpCase(text.front()) == 'T';
  return true;
}

}  // namespace

bool Variant::AsBoolean() const {
  const auto fromText = [this](const std::string& text) {
    bool value = false;
    double number = 0;
    if (TryWords(text, value)) return value;
    if (!TryStrToFloat(text, number)) ThrowNoConversion(*this, "Boolean");
    return number != 0;
  };
  return std::visit(Overloaded{[](TUnassigned) { return false; },
                               [this](TNull) -> bool { ThrowNoConversion(*this, "Boolean"); },
                               [](Whole auto value) { return value != 0; },
                               [](Real auto value) { return RealOf(value) != 0; },
                               [](Currency value) { return value != Currency(); }, fromText},
                    value_);
}

std::int64_t Variant::AsInteger() const {
  const auto fromText = [this](const std::string& text) {
    std::int64_t value = 0;
    if (!TryStrToInt64(text, value)) ThrowNoConversion(*this, "Integer");
    return value;
  };
  return std::visit(
      Overloaded{[](TUnassigned) { return std::int64_t{0}; },
                 [this](TNull) -> std::int64_t { ThrowNoConversion(*this, "Integer"); },
                 [](Whole auto value) { return IntegerOf(value); },
                 [](Real auto value) { return RoundHalfEven(RealOf(value)); },
                 [](Currency value) { return Round(value); }, fromText},
      value_);
}

double Variant::AsFloat() const {
  const auto fromText = [this](const std::string& text) {
    double value = 0;
    if (!TryStrToFloat(text, value)) ThrowNoConversion(*this, "Double");
    return value;
  };
  return std::visit(
      Overloaded{[](TUnassigned) { return 0.0; },
                 [this](TNull) -> double { ThrowNoConversion(*this, "Double"); },
                 [](Whole auto value) { return static_cast<double>(IntegerOf(value)); },
                 [](Real auto value) { return RealOf(value); },
                 [](Currency value) { return CurrencyToFloat(value); }, fromText},
      value_);
}

Currency Variant::AsCurrency() const {
  const auto fromText = [this](const std::string& text) {
    Currency value;
    if (!TryStrToCurr(text, value)) ThrowNoConversion(*this, "Currency");
    return value;
  };
  return std::visit(Overloaded{[](TUnassigned) { return Currency(); },
                               [this](TNull) -> Currency { ThrowNoConversion(*this, "Currency"); },
                               [](Whole auto value) { return Currency::FromInt(IntegerOf(value)); },
                               [](Real auto value) { return FloatToCurrency(RealOf(value)); },
                               [](Currency value) { return value; }, fromText},
                    value_);
}

TDateTime Variant::AsDateTime() const {
  if (const auto* text = std::get_if<std::string>(&value_)) {
    TDateTime value;
    if (!TryStrToDateTime(*text, value)) ThrowNoConversion(*this, "Date");
    return value;
  }
  if (IsNull()) ThrowNoConversion(*this, "Date");
  return TDateTime(AsFloat());
}

std::string Variant::AsString() const {
  if (IsNull()) ThrowNoConversion(*this, "String");
  return VarToStr(*this);
}

std::string VarToStr(const Variant& value) {
  return std::visit(
      Overloaded{
          [](TUnassigned) { return std::string(); }, [](TNull) { return std::string(); },
          [](bool v) { return BoolToStr(v, true); }, [](std::int64_t v) { return IntToStr(v); },
          [](double v) { return FloatToStr(v); }, [](Currency v) { return CurrToStr(v); },
          [](TDateTime v) { return DateTimeToStr(v); }, [](const std::string& v) { return v; }},
      value.Value());
}

bool VarIsNull(const Variant& value) {
  return value.IsNull();
}

bool VarIsEmpty(const Variant& value) {
  return value.IsEmpty();
}

namespace {

using Ordering = std::partial_ordering;

// Numbers in their own types, so that nothing is lost on the way to a comparison.
Ordering Order(std::int64_t a, std::int64_t b) {
  return a <=> b;
}
Ordering Order(double a, double b) {
  return a <=> b;
}
Ordering Order(Currency a, Currency b) {
  return a.Raw() <=> b.Raw();
}
Ordering Order(Currency a, std::int64_t b) {
  return Int128{a.Raw()} <=> Int128{b} * Currency::kScale;
}
// As reals, so that an amount of 0.1 equals a real of 0.1.
Ordering Order(Currency a, double b) {
  return CurrencyToFloat(a) <=> b;
}
Ordering Order(std::int64_t a, double b) {
  if (!(b >= -kTwoTo63)) return std::isnan(b) ? Ordering::unordered : Ordering::greater;
  if (b >= kTwoTo63) return Ordering::less;
  const auto whole = static_cast<std::int64_t>(b);
  return a != whole ? a <=> whole : 0.0 <=> b - static_cast<double>(whole);
}
Ordering Reversed(Ordering order) {
  if (std::is_lt(order)) return Ordering::greater;
  return std::is_gt(order) ? Ordering::less : order;
}
template <typename A, typename B>
Ordering Order(A a, B b) {
  return Reversed(Order(b, a));
}

using Number = std::variant<std::int64_t, double, Currency>;

// The number that a value other than Null and text counts as.
Number NumberOf(const Variant& value) {
  if (const auto* amount = std::get_if<Currency>(&value.Value())) return *amount;
  const bool real = std::holds_alternative<double>(value.Value()) ||
                    std::holds_alternative<TDateTime>(value.Value());
  return real ? Number(value.AsFloat()) : Number(value.AsInteger());
}

Ordering Order(const Number& a, const Number& b) {
  return std::visit([](auto x, auto y) { return Order(x, y); }, a, b);
}

// Text as the number that it reads as.
Number NumberOfText(const Variant& text) {
  std::int64_t whole = 0;
  if (TryStrToInt64(std::get<std::string>(text.Value()), whole)) return whole;
  return text.AsFloat();
}

Ordering OrderTextAndAmount(const Variant& text, Currency amount) {
  const Ordering order = Order(NumberOfText(text), Number(amount));
  // Past 2^53 ten-thousandths several amounts share one real.
  Currency exact;
  const bool tie = std::is_eq(order) && TryStrToCurr(std::get<std::string>(text.Value()), exact);
  return tie ? Order(exact, amount) : order;
}

Ordering OrderTextAnd(const Variant& text, const Variant& other) {
  const auto& value = other.Value();
  if (other.IsEmpty()) return VarToStr(text) <=> std::string();
  if (const auto* v = std::get_if<std::string>(&value)) return VarToStr(text) <=> *v;
  if (const auto* v = std::get_if<bool>(&value)) {
    return Order(IntegerOf(text.AsBoolean()), IntegerOf(*v));
  }
  if (const auto* v = std::get_if<Currency>(&value)) return OrderTextAndAmount(text, *v);
  if (const auto* v = std::get_if<TDateTime>(&value)) return text.AsDateTime().Days() <=> v->Days();
  return Order(NumberOfText(text), NumberOf(other));
}

Ordering Compare(const Variant& a, const Variant& b) {
  if (a.IsNull() || b.IsNull()) return int{b.IsNull()} <=> int{a.IsNull()};
  if (std::holds_alternative<std::string>(a.Value())) return OrderTextAnd(a, b);
  if (std::holds_alternative<std::string>(b.Value())) return Reversed(OrderTextAnd(b, a));
  return Order(NumberOf(a), NumberOf(b));
}

}  // namespace

bool operator==(const Variant& a, const Variant& b) {
  return std::is_eq(Compare(a, b));
}

bool operator<(const Variant& a, const Variant& b) {
  return std::is_lt(Compare(a, b));
}

}  // namespace kvshare::inline rtl
