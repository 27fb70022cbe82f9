// Texts from patterns: Format("%12.2n of %s", {amount, name}).
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

class Variant;

namespace detail {

template <typename T>
concept FormatInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

}  // namespace detail

// One argument of Format; holds views, so it lives no longer than the call.
class TVarRec {
 public:
  enum class Kind : std::uint8_t { Int32, Int64, Real, Money, Text, Letter, Var, Pointer, Bool };

  // Integers of up to 32 bits count as 32-bit, unsigned 32-bit ones as 64-bit to keep their value.
  template <detail::FormatInteger T>
  constexpr TVarRec(T value)  // NOLINT(google-explicit-constructor): an argument list reads plainly
      : kind_(sizeof(T) < 4 || (sizeof(T) == 4 && std::signed_integral<T>) ? Kind::Int32
                                                                           : Kind::Int64),
        integer_(static_cast<std::int64_t>(value)) {}
  constexpr TVarRec(bool value) : kind_(Kind::Bool), integer_(value) {}             // NOLINT
  constexpr TVarRec(double value) : kind_(Kind::Real), real_(value) {}              // NOLINT
  constexpr TVarRec(Currency value) : kind_(Kind::Money), integer_(value.Raw()) {}  // NOLINT
  constexpr TVarRec(char value) : kind_(Kind::Letter), integer_(value) {}           // NOLINT
  constexpr TVarRec(std::string_view value) : kind_(Kind::Text), text_(value) {}    // NOLINT
  constexpr TVarRec(const char* value)  // NOLINT: a null pointer is the empty text
      : kind_(Kind::Text), text_(value != nullptr ? std::string_view(value) : "") {}
  TVarRec(const std::string& value) : kind_(Kind::Text), text_(value) {}           // NOLINT
  TVarRec(const Variant& value) : kind_(Kind::Var), pointer_(&value) {}            // NOLINT
  constexpr TVarRec(const void* value) : kind_(Kind::Pointer), pointer_(value) {}  // NOLINT

  constexpr Kind GetKind() const { return kind_; }
  constexpr std::int64_t AsInt() const { return integer_; }                   // Int32, Int64
  constexpr double AsReal() const { return real_; }                           // Real
  constexpr Currency AsMoney() const { return Currency::FromRaw(integer_); }  // Money
  constexpr std::string_view AsText() const { return text_; }                 // Text
  constexpr char AsLetter() const { return static_cast<char>(integer_); }     // Letter
  const Variant& AsVariant() const { return *static_cast<const Variant*>(pointer_); }  // Var
  constexpr const void* AsPointer() const { return pointer_; }                         // Pointer

 private:
  Kind kind_;
  union {
    std::int64_t integer_;
    double real_;
    std::string_view text_;
    const void* pointer_;
  };
};

// "%" [index ":"] ["-"] [width] ["." prec] type; type is a letter of this table in either case.
// `%%` prints `%`. Index, width and prec are decimal digits, or `*`, which takes the next argument,
// a 32-bit integer. `index:` chooses the argument (from 0), and the following directives go on
// after it. Width pads with blanks on the left, after `-` on the right, and never cuts. A text that
// ends inside a directive ends the output there. Arguments left over are no error.
//
//   type  argument        text                                  prec, its default
//   d     int32, int64    decimal                               least digits, filled with zeros
//   u     int32, int64    the same bits without a sign          least digits
//   x     int32, int64    those bits, upper-case hexadecimal    least digits
//   f     real, Currency  1234.50                               decimals, 2
//   n     real, Currency  1,234.50                              decimals, 2
//   m     real, Currency  as n, with CurrencyString placed by   decimals, CurrencyDecimals
//                         CurrencyFormat or NegCurrFormat
//   e     real, Currency  1.2345E+003                           all digits, 15
//   g     real, Currency  shortest: fixed from 0.0001 to below  significant digits, 15
//                         10^prec, else 1E20; an amount always
//                         fixed and exact
//   s     text, char      as it is                              most bytes
//         Variant         as VarToStr                           most bytes
//   p     pointer         hexadecimal, all digits of an address
//
// Reals and amounts round half away from zero on their decimal digits: `%.2f` of 2.345 is 2.35. An
// amount has all its digits, a real 18 significant ones; a real of more than 18 digits before the
// point prints as `%g` under f, n and m. What rounds to zero loses its minus sign. NaN and infinity
// print `NAN`, `INF` and `-INF`.
//
// Limits: prec above 16 (int32) or 32 (int64) is ignored; above 18 under f, n, m, e and g it counts
// as not given. A point without digits is prec 0, which counts as 1 under e and g. Width above
// 32767 counts as 32767. A negative `*` is no width, no prec, or an argument that does not exist.
// CurrencyFormat and NegCurrFormat out of range count as 0, CurrencyDecimals is held in 0 .. 18.
//
// Throws EConvertError: `No argument for format '%s'`, else `Format '%s' invalid or incompatible
// with argument` for every other type letter and argument (Booleans fit none), with the first 31
// bytes of the format text.
KVSHARE_API std::string Format(std::string_view format, std::initializer_list<TVarRec> args,
                               const TFormatSettings& settings = FormatSettings);
KVSHARE_API std::string Format(std::string_view format, std::span<const TVarRec> args,
                               const TFormatSettings& settings = FormatSettings);

// The same into the caller's text; on an error `out` is as it was.
KVSHARE_API void AppendFormat(std::string& out, std::string_view format,
                              std::initializer_list<TVarRec> args,
                              const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormat(std::string& out, std::string_view format,
                              std::span<const TVarRec> args,
                              const TFormatSettings& settings = FormatSettings);

// As AppendFormat, but the pattern must have a placeholder for every argument as well: fewer throw
// the second error. `%%` is not a placeholder; `index:` and `*` placeholders count like any other.
KVSHARE_API void AppendFormatAll(std::string& out, std::string_view format,
                                 std::initializer_list<TVarRec> args,
                                 const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
