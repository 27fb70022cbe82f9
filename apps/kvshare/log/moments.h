// Moments as a command line names them.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/rtl/datetime.h"

namespace kvshare::app {

// yyyy-mm-dd, or with a time behind `T` or a blank: hh:mm, hh:mm:ss, hh:mm:ss.f to hh:mm:ss.fff.
// Christian years. Blanks around it are dropped. Throws EConvertError.
TDateTime ParseIso(std::string_view text);

// yyyy-mm-dd, with Thh:mm:ss or Thh:mm:ss.fff behind it unless the moment is a whole day: ParseIso
// reads the same moment, to the millisecond.
void AppendIso(std::string& out, TDateTime moment);

// A stamp: yyyymmdd, yyyymmddhhmm and what follows it, or of exactly ten characters yyyy?mm?dd.
// Throws EConvertError.
inline constexpr std::size_t kSeparatedStamp = 10;
inline constexpr std::size_t kStampWithTime = 12;
TDateTime ReadStamp(std::string_view text);

}  // namespace kvshare::app
