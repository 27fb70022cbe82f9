// The message catalogue: every text that the library, and much of what the suite's programs, show
// to a user. A text is loaded by its name at the moment of use, so that a translation (language.h)
// can supply it.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

// The identifiers of the messages. A translation supplies its texts under the same identifiers, so
// they never change. Names that end in 01, 02, 03 are the lines of one message.
enum TMessage : Word {
  // Decimal places: choices for the digit settings.
  rstrOneDigit = 65424,
  rstrTwoDigit = 65425,
  rstrThreeDigit = 65426,
  rstrFourDigit = 65427,
  rstrFiveDigit = 65428,
  rstrSixDigit = 65429,

  // Document reference choices.
  rstrNextRef = 65430,
  rstrSameAsVc = 65431,
  rstrNoRef = 65432,
  rstrVatRef = 65433,

  // Baht rounding modes, as a program lists them.
  rstrNoRound = 65466,
  rstrDownToBaht = 65467,
  rstrNearBaht = 65468,
  rstrUptoBaht = 65469,
  rstrDownto25Stang = 65470,
  rstrNear25Stang = 65471,
  rstrUpto25Stang = 65440,
  rstrDownto50Stang = 65441,
  rstrNear50Stang = 65442,
  rstrUpto50Stang = 65443,
  rstrDownto5Baht = 65444,
  rstrNear5Baht = 65445,
  rstrUpto5Baht = 65446,
  rstrDownto10Baht = 65447,
  rstrNear10Baht = 65448,
  rstrUpto10Baht = 65449,
  rstrDownto50Baht = 65450,
  rstrNear50Baht = 65451,
  rstrUpto50Baht = 65452,
  rstrDownto100Baht = 65453,
  rstrNear100Baht = 65454,
  rstrUpto100Baht = 65455,

  // Access rights; each refusal is the first line followed by the second.
  rstrEGrantInsert01 = 65501,
  rstrEGrantInsert02 = 65502,
  rstrEGrantUpdate01 = 65503,
  rstrEGrantUpdate02 = 65472,
  rstrEGrantDelete01 = 65497,
  rstrEGrantDelete02 = 65498,
  rstrEGrantDuplicate01 = 65473,
  rstrEGrantDuplicate02 = 65474,
  rstrEGrantExecute01 = 65499,
  rstrEGrantExecute02 = 65500,

  // Saving, concurrency and record state.
  rstrNeedRefresh01 = 65457,
  rstrNeedRefresh02 = 65458,
  rstrNeedRefresh03 = 65459,
  rstrEPostError = 65478,
  rstrERefresh = 65479,
  rstrEReApply01 = 65480,
  rstrEReApply02 = 65481,
  rstrEWasDelete = 65482,
  rstrECantDelete = 65512,
  rstrECantDeleteWText = 65513,
  rstrEHasRefer = 65514,
  rstrECantEdit = 65515,
  rstrECantEditRegisterNo = 65516,
  rstrECantInsert = 65517,
  rstrConfirmDelete = 65506,
  rstrConfirmCancel = 65528,
  rstrComplete = 65527,
  rstrCancelCommand = 65524,

  // Input validation.
  rstrEInvalidDate = 65475,
  rstrEInvalidTime = 65476,
  rstrEInvalidYear = 65477,
  rstrEYearMonth = 65483,
  rstrEYearOutOfRange = 65484,
  rstrEDateRange = 65519,
  rstrEEnter0to100 = 65489,
  rstrEEnter1to100 = 65490,
  rstrEEnterValue0to12 = 65491,
  rstrEEnterValue0to31 = 65492,
  rstrEEnterValue1to12 = 65493,
  rstrEEnterValueMustGreater0 = 65494,
  rstrEEnterValueMustGreaterEqual0 = 65495,
  rstrEEnterValueMustLessEqual0 = 65496,

  // Files, reports and printing.
  rstrEFileNotFound = 65436,
  rstrFileNotFoundInfo = 65485,
  rstrRpfNotfound = 65435,
  rstrRegisterReport = 65462,
  rstrEFoundButFilter = 65465,
  rstrENoRptFile = 65504,
  rstrERptFileNotExist = 65505,
  rstrDeleteRpfInfo = 65508,
  rstrDeleteRpgInfo = 65509,
  rstrSelectRptFile = 65531,
  rstrReportNotFound = 65532,
  rstrSameAsPrinterSetting = 65533,
  rstrLanscape = 65534,
  rstrPortriat = 65535,
  rstrAscending = 65529,
  rstrDescending = 65530,
  rstrSaveFindResult = 65464,
  rstrInfoInHelp = 65487,

  // Commands and common labels.
  rstrInsert = 65456,
  rstrEdit = 65488,
  rstrDelete = 65507,
  rstrFind = 65486,
  rstrDuplicate = 65510,
  rstrNoOfRecord = 65460,
  rstrCommonCondition = 65434,
  rstrCash = 65525,
  rstrDeptCode = 65520,
  rstrDeptThDesc = 65521,
  rstrDeptEngDesc = 65522,
  rstrBackupComment = 65523,
  rstrCreateDBMS = 65526,

  // Event log.
  rstrECantCreateLog = 65511,

  // Database connection failure: five lines of one message, formatted with the connection name and
  // the path of the connection list file.
  rstrEDbmsNotFound = 65437,
  rstrEDbmsFileName = 65438,
  rstrEDbmsEditHint1 = 65439,
  rstrEDbmsEditHint2 = 65408,
  rstrEDbmsEditHint3 = 65409,

  // Two letters a day, Sunday first.
  rstrThaiDayAbbrev = 65410,
};

// Identifiers lie in 65408 .. 65535; not every number there has a message.
inline constexpr Word kFirstMessageId = 65408;
inline constexpr std::size_t kMessageIds = 128;

// One message as the library knows it, in Thai.
struct TMessageRow {
  TMessage Id;
  std::string_view Name;  // "rstrOneDigit"
  std::string_view Text;  // code page 874; placeholders as in Format, only %s and %d
};

// All messages, grouped as in TMessage.
KVSHARE_API std::span<const TMessageRow> Messages();

// The row of an identifier, and of a name in any letter case; nullptr for one that the catalogue
// lacks.
KVSHARE_API const TMessageRow* FindMessageById(Word id);
KVSHARE_API const TMessageRow* FindMessage(std::string_view name);

// The text of a message in the current language, trailing and doubled blanks included. It cannot
// fail: what a translation lacks is Thai. An identifier outside the catalogue gives "".
KVSHARE_API std::string LoadStr(TMessage message);

// The same by name, in any letter case; "" for a name that the catalogue lacks.
KVSHARE_API std::string LoadMessage(std::string_view name);

}  // namespace kvshare
