#include "kvshare/dates/date.h"

#include <algorithm>

#include "kvshare/os/locale.h"

namespace kvshare {

TKovraDate* KovraDate = nullptr;

void TKovraDate::SetKovraDate(TDateTime D) {
  const TDateParts parts = DecodeDate(D);
  year_ = parts.Year;
  month_ = parts.Month;
  day_ = parts.Day;
}

Word TKovraDate::Year(TDateTime D) {
  SetKovraDate(D);
  return year_;
}

Word TKovraDate::Month(TDateTime D) {
  SetKovraDate(D);
  return month_;
}

Word TKovraDate::Day(TDateTime D) {
  SetKovraDate(D);
  return day_;
}

bool TKovraDate::IsLeapYear(TDateTime D) {
  return kvshare::IsLeapYear(DecodeDate(D).Year);
}

Word TKovraDate::DaysOfMonth(TDateTime D) {
  const TDateParts parts = DecodeDate(D);
  return static_cast<Word>(DaysInMonth(parts.Year, parts.Month));
}

Word TKovraDate::DaysOfYear(TDateTime D) {
  return IsLeapYear(D) ? 366 : 365;
}

TDateTime TKovraDate::ChangeMonth(TDateTime D, std::int8_t Delta) {
  const TDateParts from = DecodeDate(D);
  const int anchorDay = Delta >= 1 ? DaysInMonth(from.Year, from.Month) : 1;
  const TDateParts to = DecodeDate(EncodeDate(from.Year, from.Month, anchorDay) + Delta);
  return Encodedatedd(to.Year, to.Month, from.Day);
}

TDateTime TKovraDate::NextMonth(TDateTime D) {
  return ChangeMonth(D, 1);
}

TDateTime TKovraDate::PrevMonth(TDateTime D) {
  return ChangeMonth(D, -1);
}

TDateTime TKovraDate::Encodedatedd(Word Year, Word Month, Word Day) {
  return EncodeDate(Year, Month, std::min<int>(Day, DaysInMonth(Year, Month)));
}

TDateTime TKovraDate::FirstOfJanThisYear() {
  return EncodeDate(DecodeDate(Date()).Year, 1, 1);
}

TDateTime TKovraDate::EndYearFromFirstOfJan() {
  return EncodeDate(DecodeDate(Date()).Year + 20, 12, 31);
}

int TKovraDate::YearOffset() {
  return os::EraText().empty() ? 0 : kBuddhistEraOffset;
}

}  // namespace kvshare
