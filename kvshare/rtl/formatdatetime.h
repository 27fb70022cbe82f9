// Dates and times through a pattern: FormatDateTime("dd/mm/yyyy hh:nn", Now()).
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/formatsettings.h"

namespace kvshare::inline rtl {

// A token is a run of one same byte; letters work in either case:
//
//   d dd ddd dddd       day, two digits, short and long name (aaa and aaaa are the names too)
//   m mm mmm mmmm       month likewise; m and mm are minutes right after an hour
//   y yy, yyyy          two digits, four (e is the full year, g prints nothing)
//   h hh n nn s ss      hour, minute, second
//   z zz zzz            milliseconds as a number of at least one, two, three digits
//   am/pm a/p           one half as spelled; ampm is TimeAMString or TimePMString
//   ddddd dddddd t tt   ShortDateFormat, LongDateFormat, ShortTimeFormat, LongTimeFormat
//   c                   ShortDateFormat and, unless it is midnight, a blank and LongTimeFormat
//   / :                 DateSeparator, TimeSeparator
//   '...' "..."         the text between; without an end, all that follows
//
// and every other byte is itself. "Right after" passes over everything but letter tokens. An hour
// is one of twelve if a noon marker stands before it, or after it before any other hour or unquoted
// `a`; an `h` ends that search even in quotes. The formats that a token stands for are scanned on
// their own, and tokens for formats inside them print nothing. An empty pattern is `c`. The year is
// Christian. The result is cut at 256 bytes. A moment before year 1 prints zeros and empty names.
//
// Throws as DecodeDateTime does: NaN, infinity, a day number of magnitude 2^32 and more.
KVSHARE_API std::string FormatDateTime(std::string_view pattern, TDateTime moment,
                                       const TFormatSettings& settings = FormatSettings);
KVSHARE_API void AppendFormatDateTime(std::string& out, std::string_view pattern, TDateTime moment,
                                      const TFormatSettings& settings = FormatSettings);

}  // namespace kvshare::inline rtl
