// Dates and times through a pattern: FormatDateTime("dd/mm/yyyy hh:nn", Now()).
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

// Tokens, letters in either case: c d dd ddd dddd ddddd dddddd m mm mmm mmmm y yy yyyy h hh n nn s
// ss z zz zzz t tt am/pm a/p ampm aaa aaaa g e / : '...' "...". An `m` run means minutes exactly
// when the last letter token before it was `h`. An empty pattern is `c`. The year is Gregorian. The
// result is cut at 256 bytes. A moment before year 1 prints zeros.
//
// Throws as DecodeDateTime does: NaN, infinity, a day number of magnitude 2^32 and more.
KVSHARE_API std::string FormatDateTime(std::string_view pattern, TDateTime moment,
                                       const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormatDateTime(std::string& out, std::string_view pattern, TDateTime moment,
                                      const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
