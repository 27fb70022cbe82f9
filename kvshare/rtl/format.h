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

// One argument of Format; holds views, so it lives no longer than the call.
class TVarRec {
 public:
  enum class Kind : std::uint8_t { Int32, Int64, Real, Money, Text, Letter, Var, Pointer, Bool };

  // Integers of up to 32 bits count as 32-bit, unsigned 32-bit ones as 64-bit to keep their value.
  template <std::integral T>
  requires(!std::same_as<T, bool> && !std::same_as<T, char>) constexpr TVarRec(
      T value)  // NOLINT(google-explicit-constructor): an argument list reads plainly
      : kind_(sizeof(T) < 4 || (sizeof(T) == 4 && std::signed_integral<T>) ? Kind::Int32
                                                                           : Kind::Int64),
        integer_(static_cast<std::int64_t>(value)) {}
  constexpr TVarRec(bool value) : kind_(Kind::Bool), integer_(value) {}             // NOLINT
  constexpr TVarRec(double value) : kind_(Kind::Real), real_(value) {}              // NOLINT
  constexpr TVarRec(Currency value) : kind_(Kind::Money), integer_(value.Raw()) {}  // NOLINT
  constexpr TVarRec(char value) : kind_(Kind::Letter), integer_(value) {}           // NOLINT
  constexpr TVarRec(std::string_view value) : kind_(Kind::Text), text_(value) {}    // NOLINT
  constexpr TVarRec(const char* value) : kind_(Kind::Text), text_(value) {}         // NOLINT
  TVarRec(const std::string& value) : kind_(Kind::Text), text_(value) {}            // NOLINT
  TVarRec(const Variant& value) : kind_(Kind::Var), pointer_(&value) {}             // NOLINT
  constexpr TVarRec(const void* value) : kind_(Kind::Pointer), pointer_(value) {}   // NOLINT

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

// "%" [index ":"] ["-"] [width] ["." prec] type, type one of d u x e f n m g s p in either case;
// `%%` prints `%`; index, width and prec are decimal digits or `*`, which takes the next argument.
// Width pads with blanks and never cuts. A text that ends inside a directive ends the output there.
// Arguments left over are no error.
//
// Reals and amounts round half away from zero on their decimal digits, an amount by its exact
// digits: `%.2f` of 2.345 is 2.35. A value that rounds to zero loses its minus sign. Width and prec
// of more than 9 digits count as their greatest value that fits; see docs/rtl.md for all limits.
//
// Throws EConvertError: `No argument for format '%s'`, `Format '%s' invalid or incompatible with
// argument`, with the first 31 bytes of the format text.
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

}  // namespace kvshare::inline rtl
