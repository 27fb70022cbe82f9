#include "kvshare/dates/date.h"

namespace kvshare {

TKovraDate* KovraDate = nullptr;

void TKovraDate::SetKovraDate(TDateTime D) {
  const TDateParts date = DecodeDate(D);
  year_ = date.Year;
  month_ = date.Month;
  day_ = date.Day;
}

}  // namespace kvshare
