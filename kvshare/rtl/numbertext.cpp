// Numbers as plain texts: the half of convert.h that cannot fail.
#include <string>

#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/decimal.h"
#include "kvshare/rtl/digits.h"

namespace kvshare::inline rtl {

std::string IntToStr(std::int64_t value) {
  return std::to_string(value);
}

std::string FloatToStr(double value, const TFormatSettings& settings) {
  if (const std::string_view name = NameOfNonFinite(value); !name.empty()) return std::string(name);
  char text[kNumberRoom];
  return {text, PutGeneral(text, Decimal(value), kGeneralDigits, {settings.DecimalSeparator})};
}

std::string CurrToStr(Currency value, const TFormatSettings& settings) {
  std::string out;
  AppendCurrToStr(out, value, settings);
  return out;
}

void AppendCurrToStr(std::string& out, Currency value, const TFormatSettings& settings) {
  char text[kNumberRoom];
  out.append(text, PutShortest(text, Decimal(value), {settings.DecimalSeparator}));
}

std::string BoolToStr(bool value, bool useWords) {
  if (useWords) return value ? "True" : "False";
  return value ? "-1" : "0";
}

}  // namespace kvshare::inline rtl
