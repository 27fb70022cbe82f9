// The settings that every module of the library shares, as plain process-wide variables. The
// settings routines write them on the program's main thread before the data work begins; afterwards
// they are only read. They live from the library's load to its unload and hold the initial values
// given here until one of the routines named changes them; Finalize empties the texts.
//
// Texts are code page 874 and start empty. Folders end in a backslash.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

// --- Language, digits, switches

// 0 for Thai, 30000 where the per-program locale override asks for English.
extern KVSHARE_API std::int32_t BaseLanguage;  // 0

// Decimals shown, read from the user's settings by SetEditMaskAndFormatStr; percentages always keep
// their initial value.
extern KVSHARE_API Word QtyDigit;      // 0: quantities
extern KVSHARE_API Word UPrcDigit;     // 2: unit prices
extern KVSHARE_API Word BahtDigit;     // 2: amounts of money
extern KVSHARE_API Word WeightDigit;   // 2: weights
extern KVSHARE_API Word PercentDigit;  // 2: percentages

// Held for the programs; the library neither sets nor reads them.
extern KVSHARE_API Word SkuNmFmt;                  // 4
extern KVSHARE_API Word SkuEqFmt;                  // 8
extern KVSHARE_API Word UDscRnd;                   // 0
extern KVSHARE_API Word TDscRnd;                   // 2
extern KVSHARE_API std::int32_t ArprbCtrlXVat;     // 3
extern KVSHARE_API std::int32_t ArprbCtrlIVat;     // 4
extern KVSHARE_API std::uint32_t KovraCurrentkey;  // 0
extern KVSHARE_API std::uint32_t UseLastWL;        // 0
extern KVSHARE_API std::string DefaultHelpPath;    // help folder

// Whether the trace file is written; from "Btrace.ini".
extern KVSHARE_API bool BTrace;  // false

// Number of the window message "KovraRefresh", which asks the suite's windows to show their data
// afresh; set by SetDefaultDateTimeFormat.
extern KVSHARE_API std::uint32_t msgKovraRefresh;  // 0

// --- The company that is open: set by ReadDbmsConnectInfo and emptied by ClearDBMSConnectInfo,
// except where a program sets them itself.

extern KVSHARE_API std::string KovraDataBaseName;
extern KVSHARE_API std::string KovraAliasName;        // a section of the connection file
extern KVSHARE_API std::string KovraAliasDriverName;  // held for the programs
extern KVSHARE_API std::string KovraAliasTradeName;   // DBMS; selects the SQL dialect section
extern KVSHARE_API std::string KovraLoginName;        // as the connection file stores it
extern KVSHARE_API std::string KovraLoginPassword;    // as the connection file stores it
extern KVSHARE_API std::string KovraUserName;         // user of the suite; set by the programs
extern KVSHARE_API std::int32_t KovraUserKey;         // 0; set by the programs
extern KVSHARE_API std::int32_t KovraUserLevel;       // 0; set by the programs
extern KVSHARE_API std::int32_t KovraUserPosn;        // 0; set by the programs
extern KVSHARE_API std::string KovraLogDatabaseName;  // folder of the event log
extern KVSHARE_API std::string KovraLogTableName;     // file name of the event log
extern KVSHARE_API std::string KovraPosDataDir;       // point-of-sale data folder
extern KVSHARE_API std::string KovraPackPosDDir;      // point-of-sale packing folder
extern KVSHARE_API std::string KovraPackDir;          // packing folder
extern KVSHARE_API std::string KovraReportDir;        // report folder
extern KVSHARE_API std::string KovraDocumentDir;      // document folder
extern KVSHARE_API std::string KovraComputerName;
extern KVSHARE_API std::string KovraWindowsUserName;  // login name on this computer
extern KVSHARE_API std::string KovraDbFileName;       // database file of a file-based alias
extern KVSHARE_API std::string KovraCurrentGuid;      // workstation, kept as setting "UserGuid"
extern KVSHARE_API std::string KovraDataBaseGuid;     // the open database; set by the programs
extern KVSHARE_API std::string KovraProductName;      // from the program's version information
extern KVSHARE_API std::string KovraGenkeyServer;     // host of the alias's key generator
extern KVSHARE_API bool KovraGenkeyEnable;            // false: whether the alias uses it
extern KVSHARE_API std::string KovraDataBaseIni;      // path of the database structure file

// --- Dates and folders

// The earliest date that the programs accept: 0 until SetDefaultDateTimeFormat makes it 1 January
// 2000.
extern KVSHARE_API TDateTime KovraMinDate;

// Years that the system's calendar is ahead: 543 for the Thai Buddhist one, else 0; set by
// SetEditMaskAndFormatStr, as are the folders.
extern KVSHARE_API std::int32_t YearBase;         // 0
extern KVSHARE_API std::string ExePath;           // of the running program
extern KVSHARE_API std::string KovraAppDataPath;  // per-user application data
extern KVSHARE_API std::string ScreencamPath;     // setting "ScreencamPath"

// --- SQL dialect of the open company's server, read from "SqlIntf.ini" by ReadSQLIntf. Patterns
// take their values at %s.

extern KVSHARE_API std::string SQLDateFormat;       // pattern of a date literal
extern KVSHARE_API std::string SQLDateTimeFormat;   // pattern of a literal of date and time
extern KVSHARE_API std::string SQLDateDelimiter;    // before and after every such literal
extern KVSHARE_API std::string SQLMatchCaseFormat;  // a field, where letter case matters
extern KVSHARE_API std::string SQLNotMatchCaseFormat;
extern KVSHARE_API std::string SQLCompareBegining;  // field, value: begins with
extern KVSHARE_API std::string SQLCompareBetween;   // contains
extern KVSHARE_API std::string SQLCompareEnding;    // ends with
extern KVSHARE_API std::string SQLConcat2Format;    // two expressions joined
extern KVSHARE_API std::string SQLConcat3Format;    // three expressions joined
extern KVSHARE_API std::string SQLNotBegining;      // the comparisons negated
extern KVSHARE_API std::string SQLNotBetween;
extern KVSHARE_API std::string SQLNotEnding;
extern KVSHARE_API std::string TablePrefix;            // before table names
extern KVSHARE_API std::string TableCase;              // letter case of table names
extern KVSHARE_API std::string SQLServerDateTime;      // statement: the server's date and time
extern KVSHARE_API std::string SQLBaht;                // column type of amounts of money
extern KVSHARE_API std::string SQLDate;                // ... dates
extern KVSHARE_API std::string SQLTime;                // ... times
extern KVSHARE_API std::string SQLDateTime;            // ... dates with times
extern KVSHARE_API std::string SQLGraphic;             // ... pictures
extern KVSHARE_API std::string SQLText;                // ... long texts
extern KVSHARE_API std::string SQLCompareNumEqual;     // two expressions equal at four decimals
extern KVSHARE_API std::string SQLCompareNumNotEqual;  // ... not equal
extern KVSHARE_API std::string SQLCompareNum2DecPt;    // an expression has more than two decimals

// Which month name stands for `?` in SQLDateFormat: 0 none, 1 English short, 2 English long, 3 Thai
// short, 4 Thai long.
extern KVSHARE_API std::int32_t SQLMonthNameFormat;  // 0

// --- Number masks and patterns, built by SetEditMaskAndFormatStr from the digit settings.

// FormatFloat masks while a field is edited: no thousands.
extern KVSHARE_API std::string editQtyEditMask;
extern KVSHARE_API std::string editUPrcEditMask;
extern KVSHARE_API std::string editBahtEditMask;
extern KVSHARE_API std::string editWeightEditMask;
extern KVSHARE_API std::string editPercentEditMask;

// FormatFloat masks for display: thousands; percentages end in %.
extern KVSHARE_API std::string dsplQtyEditMask;
extern KVSHARE_API std::string dsplUPrcEditMask;
extern KVSHARE_API std::string dsplBahtEditMask;
extern KVSHARE_API std::string dsplWeightEditMask;
extern KVSHARE_API std::string dsplPercentEditMask;

// The text of zero.
extern KVSHARE_API std::string ZeroQtyEditMask;
extern KVSHARE_API std::string ZeroUPrcEditMask;
extern KVSHARE_API std::string ZeroBahtEditMask;
extern KVSHARE_API std::string ZeroWeightEditMask;
extern KVSHARE_API std::string ZeroPercentEditMask;

// Format patterns, twelve wide; negative amounts may stand in parentheses instead.
extern KVSHARE_API std::string dsplQtyFmtStr;
extern KVSHARE_API std::string dsplUPrcFmtStr;
extern KVSHARE_API std::string dsplBahtFmtStr;
extern KVSHARE_API std::string dsplMinusBahtFmtStr;
extern KVSHARE_API std::string dsplWeightFmtStr;
extern KVSHARE_API std::string dsplPercentFmtStr;

// Every text above.
KVSHARE_API std::span<std::string* const> TextGlobals();

// --- Month names, January first: what stands for `?` in SQL dates.

using TMonthNames = std::array<std::string_view, 12>;

inline constexpr TMonthNames kEnglishShortMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                    "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
inline constexpr TMonthNames kEnglishLongMonths = {"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                                   "MAY",       "JUNE",     "JULY",     "AUGUST",
                                                   "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};
inline constexpr TMonthNames kThaiShortMonths = {"ม.ค."_th, "ก.พ."_th, "มี.ค."_th, "เม.ย."_th,
                                                 "พ.ค."_th, "มิ.ย."_th, "ก.ค."_th, "ส.ค."_th,
                                                 "ก.ย."_th, "ต.ค."_th, "พ.ย."_th, "ธ.ค."_th};
inline constexpr TMonthNames kThaiLongMonths = {
    "มกราคม"_th,  "กุมภาพันธ์"_th, "มีนาคม"_th,  "เมษายน"_th, "พฤษภาคม"_th,  "มิถุนายน"_th,
    "กรกฎาคม"_th, "สิงหาคม"_th,  "กันยายน"_th, "ตุลาคม"_th,  "พฤศจิกายน"_th, "ธันวาคม"_th};

// --- Services whose operations need no instance: null until a program sets them.

class TKovraWin32;
class TKovraDbDate;
class TKovraDbLog;
class TKovraDbPost;

extern KVSHARE_API TKovraWin32* KovraWin32;
extern KVSHARE_API TKovraDbDate* KovraDbDate;
extern KVSHARE_API TKovraDbLog* KovraDbLog;
extern KVSHARE_API TKovraDbPost* KovraDbPost;

}  // namespace kvshare
