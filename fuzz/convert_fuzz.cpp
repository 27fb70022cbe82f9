// Every strict conversion of one text: nothing but acceptance or refusal, and what is accepted
// reads back from its own text.
#include "kvshare/rtl/convert.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using namespace kvshare;

void Expect(bool holds) {
  if (!holds) std::abort();
}

TFormatSettings FormatsToTheMillisecond() {
  TFormatSettings formats = TFormatSettings::UsEnglish();
  formats.ShortDateFormat = "dd/mm/yyyy";
  formats.LongTimeFormat = "hh:nn:ss.zzz";
  return formats;
}

void Integers(std::string_view text) {
  std::int32_t narrow = 0;
  std::int64_t wide = 0;
  const bool fits = TryStrToInt(text, narrow);
  if (!TryStrToInt64(text, wide)) return Expect(!fits);
  Expect(StrToInt64(IntToStr(wide)) == wide);
  if (fits) Expect(static_cast<std::int32_t>(wide) == narrow);
}

void Numbers(std::string_view text, const TFormatSettings& formats) {
  double real = 0;
  Currency amount;
  const bool isAmount = TryStrToCurr(text, amount, formats);
  if (!TryStrToFloat(text, real, formats)) return Expect(!isAmount);
  Expect(std::isfinite(real));
  if (!isAmount) return Expect(std::fabs(real) > 922'337'203'685'477);
  Expect(StrToCurr(CurrToStr(amount, formats), formats) == amount);
  const double slack = 0.000051 + std::fabs(real) * 0x1p-51;
  Expect(std::fabs(CurrencyToFloat(amount) - real) <= slack);
}

void Moments(std::string_view text, const TFormatSettings& formats) {
  TDateTime date;
  TDateTime time;
  TDateTime both;
  if (TryStrToDate(text, date, formats)) {
    Expect(StrToDate(DateToStr(date, formats), formats) == date);
    Expect(StrToDateTime(text, formats) == date);
  }
  if (TryStrToTime(text, time, formats)) {
    Expect(StrToTime(TimeToStr(time, formats), formats) == time);
    Expect(StrToDateTime(text, formats) == time);
  }
  if (TryStrToDateTime(text, both, formats)) {
    const std::string written = DateTimeToStr(both, formats);
    Expect(DecodeTime(both).MilliSecond != 0 || StrToDateTime(written, formats) == both);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TFormatSettings formats = FormatsToTheMillisecond();
  const std::string text(data, data + size);
  Integers(text);
  Numbers(text, formats);
  Moments(text, formats);

  std::int64_t raw = 0;
  std::memcpy(&raw, data, std::min(size, sizeof raw));
  const Currency amount = Currency::FromRaw(raw);
  Expect(StrToCurr(CurrToStr(amount, formats), formats) == amount);
  return 0;
}
