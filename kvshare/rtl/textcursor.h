// A place in a text that is read from left to right, for the strict conversions.
// Internal header.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

class TextCursor {
 public:
  explicit constexpr TextCursor(std::string_view text) : text_(text) {}

  constexpr bool AtEnd() const { return at_ == text_.size(); }
  constexpr std::string_view Rest() const { return text_.substr(at_); }

  // Only byte 32 is a blank; a tab or a no-break space is foreign to a number.
  constexpr void SkipBlanks() {
    while (!AtEnd() && text_[at_] == ' ') ++at_;
  }
  constexpr void Skip(std::size_t count) { at_ += count; }  // at most Rest().size()

  // A separator of '\0' stands for none and matches nothing.
  constexpr bool Take(char wanted) {
    if (AtEnd() || wanted == '\0' || text_[at_] != wanted) return false;
    ++at_;
    return true;
  }
  constexpr bool TakeEither(char one, char other) { return Take(one) || Take(other); }

  // One optional sign; true for minus.
  constexpr bool TakeSign() { return !Take('+') && Take('-'); }

  constexpr std::string_view TakeDigits() {
    const std::size_t start = at_;
    while (!AtEnd() && IsDigit(text_[at_])) ++at_;
    return text_.substr(start, at_ - start);
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

// EConvertError `'text' is not a valid kind`.
[[noreturn]] inline void ThrowNotValid(std::string_view text, std::string_view kind) {
  std::string message = "'";
  message.append(text).append("' is not a valid ").append(kind);
  throw EConvertError(message);
}

}  // namespace kvshare::inline rtl
