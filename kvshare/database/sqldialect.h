// SQL as the open company's server wants it: fragments from the patterns of a dialect profile, one
// section a server in "SqlIntf.ini" of the suite's program folder (docs/database-profile.md).
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"

namespace kvshare {

// Loads section DATABASE.`tradeName` (DATABASE.`KovraAliasTradeName` for "") into the SQL texts of
// globals.h; a key that is missing has its default. A missing file is shown to the user in an error
// box, and every key has its default. SQLMonthNameFormat stays as it was when DATE has no month
// marker.
KVSHARE_API void ReadSQLIntf(std::string_view tradeName);

// The same from any file, for the tools of administrators; a missing one shows nothing.
KVSHARE_API void ReadDialectFile(std::string_view fileName, std::string_view tradeName);

// "SqlIntf.ini" in the suite's program folder, and what a section's name has before the trade name.
KVSHARE_API std::string GetDialectFileName();
inline constexpr std::string_view kDialectSection = "DATABASE.";

// The builders put texts into patterns as they are: a caller doubles apostrophes itself. A pattern
// with fewer placeholders than the builder has texts throws EConvertError `Format '%s' invalid or
// incompatible with argument`, one with more `No argument for format '%s'`. Until ReadSQLIntf has
// run all patterns are empty, and so are the patterns of comparisons in a profile that lacks them.

// A field, for a comparison that respects letter case or ignores it.
KVSHARE_API std::string SQLFieldFormat(std::string_view fieldName, bool matchCase);

// A value for the same: without blanks behind, or without blanks at both ends and in upper case.
// Bytes <= 32 are blanks here.
KVSHARE_API std::string SQLCharFormat(std::string_view value, bool matchCase);

// A condition on the field: it begins with the value (kind 0), contains it (1), ends with it (any
// other kind), and the negations. "" for an empty value; a value of blanks is not empty. Every
// <WILDCARD>, in any letter case, becomes `%`, in the pattern and in the value alike.
KVSHARE_API std::string SQLCompareCmd(std::string_view fieldName, std::string_view value,
                                      bool matchCase, int kind);
KVSHARE_API std::string SQLNotCmd(std::string_view fieldName, std::string_view value,
                                  bool matchCase, int kind);

// Conditions on decimal expressions: equal and not equal at four decimals, more than two decimals.
KVSHARE_API std::string SQLNumEqual(std::string_view a, std::string_view b);
KVSHARE_API std::string SQLNumNotEqual(std::string_view a, std::string_view b);
KVSHARE_API std::string SQLNumNot2DecPt(std::string_view a);

// Literals, Christian years, with the delimiter at both ends. In a date every `?` becomes the name
// of the month that SQLMonthNameFormat chooses, "" where that is out of range.
KVSHARE_API std::string DateTimeToSQLDate(TDateTime moment);
KVSHARE_API std::string DateTimeToSQLDateTime(TDateTime moment);

}  // namespace kvshare
