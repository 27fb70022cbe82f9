// The text forms in which exact values cross the driver contract.
// Internal header.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare::data {

// [-]digits[.digits] in ten-thousandths, further digits rounded half to even on all of them.
// Nothing for another text or out of Currency's range.
std::optional<Currency> CurrencyOfDigits(std::string_view text);

// The whole number nearest to such a text, a tie to the even one. Nothing out of range.
std::optional<std::int64_t> WholeOfDigits(std::string_view text);

// -1234.5678, always four decimals.
std::string DigitsOfCurrency(Currency amount);

// yyyy-mm-dd, hh:mm:ss[.f..], and both with a blank or `T` between; a date alone is its midnight.
// Digits past the milliseconds are cut off. Nothing for another text and for a day or time that
// does not exist.
std::optional<TDateTime> DateOfText(std::string_view text);
std::optional<TDateTime> TimeOfText(std::string_view text);
std::optional<TDateTime> MomentOfText(std::string_view text);

// The same forms, with milliseconds where there are any.
std::string TextOfDate(TDateTime moment);
std::string TextOfTime(TDateTime moment);
std::string TextOfMoment(TDateTime moment);

// Such a text that needs no memory of its own: fields store a million of them.
class DateText {
 public:
  static DateText OfDate(TDateTime moment);
  static DateText OfTime(TDateTime moment);
  static DateText OfMoment(TDateTime moment);

  std::string_view View() const { return {bytes_.data(), size_}; }

 private:
  void Append(const TDateParts& date);
  void Append(const TTimeParts& time);
  void Append(std::string_view text) {
    text.copy(&bytes_.at(size_), text.size());
    size_ += text.size();
  }

  std::array<char, 32> bytes_;  // a year of five digits and milliseconds take 24
  std::size_t size_ = 0;
};

}  // namespace kvshare::data
