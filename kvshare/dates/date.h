// The date service of the suite.
#pragma once

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

// Its one state is the date decoded last: a scratch area of the shared instance, not a value to
// rely on between calls. The calendar is the Christian one.
class KVSHARE_API TKovraDate {
 public:
  // Decodes the date into Year, Month and Day, 0 each before 0001-01-01. Throws what DecodeDate
  // throws and then leaves them as they were.
  void SetKovraDate(TDateTime D);

  // What SetKovraDate decoded last; 0 at first.
  Word Year() const { return year_; }
  Word Month() const { return month_; }
  Word Day() const { return day_; }

 private:
  Word year_ = 0;
  Word month_ = 0;
  Word day_ = 0;
};

// Created by Initialize, freed by Finalize.
extern KVSHARE_API TKovraDate* KovraDate;

}  // namespace kvshare
