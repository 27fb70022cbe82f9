// Years that a person has probably not meant.
#pragma once

#include <string>

#include "kvshare/rtl/datetime.h"

namespace kvshare::receipts {

// About a date that was read in an era (543, or 0 for Christian years): a year to which 543 was
// added once too often, or not at all. Code page 874; "" for a likely one.
std::string EraWarning(TDateTime date, Word offset);

// The same, and a document that is dated far from `today`.
std::string DocumentDateWarning(TDateTime date, Word offset, TDateTime today);

}  // namespace kvshare::receipts
