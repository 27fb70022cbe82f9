#include "apps/receipts/yearwarnings.h"

#include <initializer_list>

#include "apps/receipts/usertexts.h"
#include "kvshare/dates/date.h"

namespace kvshare::receipts {

namespace {

// Years in which papers of today are dated. Later ones carry 543 once or twice too often.
constexpr int kFirstYear = 1900;
constexpr int kLastTypedYear = 2100;
constexpr int kLastYear = 2442;

constexpr int kFar = 20;  // years

}  // namespace

std::string EraWarning(TDateTime date, Word offset) {
  const int year = DecodeDate(date).Year;
  const int typed = year + offset;
  int excess = 0;  // how often 543 is in the year
  while (year - excess * kBuddhistEraOffset > kLastYear) ++excess;
  const int likely = year - excess * kBuddhistEraOffset;
  const int added = excess + (offset != 0 ? 1 : 0);
  if (excess == 0) {
    const bool christian = offset != 0 && typed >= kFirstYear && typed <= kLastTypedYear;
    if (!christian) return {};
    return Say("%d looks like a Christian year read as one of the Buddhist era", {typed});
  }
  if (added == 1) {
    return Say("%d looks like a year of the Buddhist era read as a Christian one: it would be %d",
               {typed, likely});
  }
  if (added == 2) {
    return Say("%d looks like a year to which 543 was added twice: it would be %d",
               {typed, likely});
  }
  return Say("the year %d lies far ahead", {year});
}

std::string DocumentDateWarning(TDateTime date, Word offset, TDateTime today) {
  if (std::string warning = EraWarning(date, offset); !warning.empty()) return warning;
  const int year = DecodeDate(date).Year;
  const int distance = year - DecodeDate(today).Year;
  if (distance <= kFar && distance >= -kFar) return {};
  const std::initializer_list<TVarRec> values = {year, year + offset, kFar};
  return distance > 0
             ? Say("the year %d, %d as it was typed, lies more than %d years ahead", values)
             : Say("the year %d, %d as it was typed, lies more than %d years back", values);
}

}  // namespace kvshare::receipts
