// Dates as the dialogs show them and read them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"

namespace kvshare::companion {

// The years of the texts: 543 or 0. Mode 1 asks for Christian years, every other one for years of
// the Buddhist era.
Word EraOfMode(std::int32_t mode);

// The day of a moment that a dialog can begin with: today for 0, which programs keep where there is
// no date, and for a moment that has none.
TDateTime DayToShow(TDateTime moment);

// The day with the time of day of `moment`, where that is one.
TDateTime WithTimeOf(TDateTime moment, TDateTime day);

std::string DateText(TDateTime day, Word era);  // 25/11/2569

// วันพุธที่ 25 พฤศจิกายน 2569 (ค.ศ. 2026): so that whoever types sees which era was understood.
std::string FullDateText(TDateTime day);

// A typed date of the years 1 .. 9999: day, month and year with `/`, the era as
// TKovraDate::ForceStrToKovraDate guesses it, or what StrToKovraDate reads: dashes, a year of two
// digits, the year first. False, and `day` as it was, for another text.
bool ReadDate(std::string_view text, Word era, TDateTime& day);

}  // namespace kvshare::companion
