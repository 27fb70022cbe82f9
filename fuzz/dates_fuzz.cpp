// Typed dates of any bytes: what a reader accepts shows and reads back as the same date; a refusal
// leaves the date as it was, and its explanation knows the rule. The first byte chooses the era.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "apps/kvshare/commands/explain.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"

namespace {

using kvshare::TDateTime;
using kvshare::TKovraDate;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckTyped(std::string_view text, kvshare::Word offset) {
  const TDateTime untouched(-1);
  TDateTime date = untouched;
  if (!TKovraDate::StrToKovraDate(text, offset, date)) {
    Require(date == untouched && !TKovraDate::IsDate(text, offset));
    return;
  }
  const int year = kvshare::DecodeDate(date).Year + offset;
  TDateTime again;
  const bool read = TKovraDate::StrToKovraDate(TKovraDate::ShowDate(date, offset), offset, again);
  Require(read && (year < 100 || again == date));
}

void CheckForced(std::string_view text) {
  const TDateTime untouched(-1);
  TDateTime date = untouched;
  if (!TKovraDate::ForceStrToKovraDateAsOf(text, 2026, date)) Require(date == untouched);
}

void CheckStamp(std::string_view text) {
  try {
    const TDateTime moment = TKovraDate::KovraStrToDateTime(text);
    const std::string stamp = TKovraDate::KovraDateTimeToStr(moment);
    Require(TKovraDate::KovraStrToDateTime(stamp) == moment);
  } catch (const kvshare::EConvertError&) {
    return;
  }
}

void CheckExplained(std::string_view text) {
  for (const auto& reading : kvshare::app::ExplainDate(text, kvshare::EncodeDate(2026, 11, 25))) {
    Require(!reading.why.empty() && reading.why != kvshare::app::kUnexplained);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  kvshare::FormatSettings = kvshare::TFormatSettings::UsEnglish();
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  CheckTyped(text, (data[0] & 1) != 0 ? 543 : 0);
  CheckForced(text);
  CheckStamp(text);
  CheckExplained(text);
  return 0;
}
