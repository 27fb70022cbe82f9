// A value of a type known at run time.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare::inline rtl {

struct TUnassigned {
  bool operator==(const TUnassigned&) const = default;
};
struct TNull {
  bool operator==(const TNull&) const = default;
};
inline constexpr TUnassigned Unassigned{};
inline constexpr TNull Null{};

namespace detail {

template <typename T>
concept Number = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

}  // namespace detail

// Unassigned (the default), Null, Boolean, integer, double, Currency, date-time or text.
class KVSHARE_API Variant {
 public:
  Variant() = default;
  Variant(TUnassigned) {}                 // NOLINT(google-explicit-constructor)
  Variant(TNull) : value_(Null) {}        // NOLINT
  Variant(bool value) : value_(value) {}  // NOLINT
  // Throws EIntOverflow past 2^63 - 1.
  template <detail::Number T>
  Variant(T value) : value_(ToInt64(value)) {}                     // NOLINT
  Variant(double value) : value_(value) {}                         // NOLINT
  Variant(Currency value) : value_(value) {}                       // NOLINT
  Variant(TDateTime value) : value_(value) {}                      // NOLINT
  Variant(std::string value) : value_(std::move(value)) {}         // NOLINT
  Variant(std::string_view value) : value_(std::string(value)) {}  // NOLINT
  Variant(const char* value) : value_(std::string(value)) {}       // NOLINT

  bool IsEmpty() const { return std::holds_alternative<TUnassigned>(value_); }
  bool IsNull() const { return std::holds_alternative<TNull>(value_); }

  // The value in the type asked for. Unassigned is 0, false, "". Text is converted as StrToInt64,
  // StrToFloat, StrToCurr and StrToDateTime do, into a Boolean from `True`, `False` (any letter
  // case) or a number. A Boolean as a number is -1 or 0, a date its days. A real and an amount
  // round half to even into an integer. Throws EVariantTypeCastError `Could not convert variant of
  // type (X) into type (Y)` for Null and for text that is no such value (X and Y are Null, Boolean,
  // Integer, Double, Currency, Date, String), EIntOverflow for an integer and EInvalidOp for a real
  // out of the asked type's range.
  bool AsBoolean() const;
  std::int64_t AsInteger() const;
  double AsFloat() const;
  Currency AsCurrency() const;
  TDateTime AsDateTime() const;
  std::string AsString() const;  // VarToStr, but Null throws

  using Storage = std::variant<TUnassigned, TNull, bool, std::int64_t, double, Currency, TDateTime,
                               std::string>;
  const Storage& Value() const { return value_; }

 private:
  template <detail::Number T>
  static std::int64_t ToInt64(T value) {
    if (!std::in_range<std::int64_t>(value)) throw EIntOverflow();
    return static_cast<std::int64_t>(value);
  }

  Storage value_;
};

// Null and Unassigned give ''; integers plain, reals as FloatToStr, amounts as CurrToStr, Booleans
// `True`/`False`, dates as DateTimeToStr, text itself.
KVSHARE_API std::string VarToStr(const Variant& value);
KVSHARE_API bool VarIsNull(const Variant& value);
KVSHARE_API bool VarIsEmpty(const Variant& value);

// Null equals Null and nothing else, and is less than every other value. Numbers compare exactly,
// an amount against a real as reals. Text against a number compares as numbers, against a Boolean
// or a date as AsBoolean and AsDateTime read it, against text by bytes. Unassigned counts as 0
// against numbers and '' against text. Throws EVariantTypeCastError for text that is no such value.
KVSHARE_API bool operator==(const Variant& a, const Variant& b);
KVSHARE_API bool operator<(const Variant& a, const Variant& b);
inline bool operator!=(const Variant& a, const Variant& b) {
  return !(a == b);
}
inline bool operator>(const Variant& a, const Variant& b) {
  return b < a;
}
inline bool operator<=(const Variant& a, const Variant& b) {
  return !(b < a);
}
inline bool operator>=(const Variant& a, const Variant& b) {
  return !(a < b);
}

}  // namespace kvshare::inline rtl
