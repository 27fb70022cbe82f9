#include "kvshare/settings/globals.h"

namespace kvshare {

std::int32_t BaseLanguage = 0;
Word QtyDigit = 0;
Word UPrcDigit = 2;
Word BahtDigit = 2;
Word WeightDigit = 2;
Word PercentDigit = 2;
Word SkuNmFmt = 4;
Word SkuEqFmt = 8;
Word UDscRnd = 0;
Word TDscRnd = 2;
std::int32_t ArprbCtrlXVat = 3;
std::int32_t ArprbCtrlIVat = 4;
std::uint32_t KovraCurrentkey = 0;
std::uint32_t UseLastWL = 0;
std::string DefaultHelpPath;
bool BTrace = false;
std::uint32_t msgKovraRefresh = 0;

std::string KovraDataBaseName;
std::string KovraAliasName;
std::string KovraAliasDriverName;
std::string KovraAliasTradeName;
std::string KovraLoginName;
std::string KovraLoginPassword;
std::string KovraUserName;
std::int32_t KovraUserKey = 0;
std::int32_t KovraUserLevel = 0;
std::int32_t KovraUserPosn = 0;
std::string KovraLogDatabaseName;
std::string KovraLogTableName;
std::string KovraPosDataDir;
std::string KovraPackPosDDir;
std::string KovraPackDir;
std::string KovraReportDir;
std::string KovraDocumentDir;
std::string KovraComputerName;
std::string KovraWindowsUserName;
std::string KovraDbFileName;
std::string KovraCurrentGuid;
std::string KovraDataBaseGuid;
std::string KovraProductName;
std::string KovraGenkeyServer;
bool KovraGenkeyEnable = false;
std::string KovraDataBaseIni;

TDateTime KovraMinDate;
std::int32_t YearBase = 0;
std::string ExePath;
std::string KovraAppDataPath;
std::string ScreencamPath;

std::string SQLDateFormat;
std::string SQLDateTimeFormat;
std::string SQLDateDelimiter;
std::string SQLMatchCaseFormat;
std::string SQLNotMatchCaseFormat;
std::string SQLCompareBegining;
std::string SQLCompareBetween;
std::string SQLCompareEnding;
std::string SQLConcat2Format;
std::string SQLConcat3Format;
std::string SQLNotBegining;
std::string SQLNotBetween;
std::string SQLNotEnding;
std::string TablePrefix;
std::string TableCase;
std::string SQLServerDateTime;
std::string SQLBaht;
std::string SQLDate;
std::string SQLTime;
std::string SQLDateTime;
std::string SQLGraphic;
std::string SQLText;
std::string SQLCompareNumEqual;
std::string SQLCompareNumNotEqual;
std::string SQLCompareNum2DecPt;
std::int32_t SQLMonthNameFormat = 0;

std::string editQtyEditMask;
std::string editUPrcEditMask;
std::string editBahtEditMask;
std::string editWeightEditMask;
std::string editPercentEditMask;
std::string dsplQtyEditMask;
std::string dsplUPrcEditMask;
std::string dsplBahtEditMask;
std::string dsplWeightEditMask;
std::string dsplPercentEditMask;
std::string ZeroQtyEditMask;
std::string ZeroUPrcEditMask;
std::string ZeroBahtEditMask;
std::string ZeroWeightEditMask;
std::string ZeroPercentEditMask;
std::string dsplQtyFmtStr;
std::string dsplUPrcFmtStr;
std::string dsplBahtFmtStr;
std::string dsplMinusBahtFmtStr;
std::string dsplWeightFmtStr;
std::string dsplPercentFmtStr;

TKovraWin32* KovraWin32 = nullptr;
TKovraDbDate* KovraDbDate = nullptr;
TKovraDbLog* KovraDbLog = nullptr;
TKovraDbPost* KovraDbPost = nullptr;

namespace {

constexpr std::string* kTextGlobals[] = {
    &DefaultHelpPath,
    &KovraDataBaseName,
    &KovraAliasName,
    &KovraAliasDriverName,
    &KovraAliasTradeName,
    &KovraLoginName,
    &KovraLoginPassword,
    &KovraUserName,
    &KovraLogDatabaseName,
    &KovraLogTableName,
    &KovraPosDataDir,
    &KovraPackPosDDir,
    &KovraPackDir,
    &KovraReportDir,
    &KovraDocumentDir,
    &KovraComputerName,
    &KovraWindowsUserName,
    &KovraDbFileName,
    &KovraCurrentGuid,
    &KovraDataBaseGuid,
    &KovraProductName,
    &KovraGenkeyServer,
    &KovraDataBaseIni,
    &ExePath,
    &KovraAppDataPath,
    &ScreencamPath,
    &SQLDateFormat,
    &SQLDateTimeFormat,
    &SQLDateDelimiter,
    &SQLMatchCaseFormat,
    &SQLNotMatchCaseFormat,
    &SQLCompareBegining,
    &SQLCompareBetween,
    &SQLCompareEnding,
    &SQLConcat2Format,
    &SQLConcat3Format,
    &SQLNotBegining,
    &SQLNotBetween,
    &SQLNotEnding,
    &TablePrefix,
    &TableCase,
    &SQLServerDateTime,
    &SQLBaht,
    &SQLDate,
    &SQLTime,
    &SQLDateTime,
    &SQLGraphic,
    &SQLText,
    &SQLCompareNumEqual,
    &SQLCompareNumNotEqual,
    &SQLCompareNum2DecPt,
    &editQtyEditMask,
    &editUPrcEditMask,
    &editBahtEditMask,
    &editWeightEditMask,
    &editPercentEditMask,
    &dsplQtyEditMask,
    &dsplUPrcEditMask,
    &dsplBahtEditMask,
    &dsplWeightEditMask,
    &dsplPercentEditMask,
    &ZeroQtyEditMask,
    &ZeroUPrcEditMask,
    &ZeroBahtEditMask,
    &ZeroWeightEditMask,
    &ZeroPercentEditMask,
    &dsplQtyFmtStr,
    &dsplUPrcFmtStr,
    &dsplBahtFmtStr,
    &dsplMinusBahtFmtStr,
    &dsplWeightFmtStr,
    &dsplPercentFmtStr,
};

}  // namespace

std::span<std::string* const> TextGlobals() {
  return kTextGlobals;
}

}  // namespace kvshare
