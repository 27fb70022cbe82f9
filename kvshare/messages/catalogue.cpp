#include "kvshare/messages/catalogue.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "kvshare/messages/language.h"
#include "kvshare/messages/placeholders.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

// Spellings, blanks and doubled blanks are the suite's own: its users and documents know them.
// clang-format off
constexpr TMessageRow kMessages[] = {
    // Decimal places: choices for the digit settings.
    {rstrOneDigit, "rstrOneDigit", "หนึ่งตำแหน่ง"_th},
    {rstrTwoDigit, "rstrTwoDigit", "สองตำแหน่ง"_th},
    {rstrThreeDigit, "rstrThreeDigit", "สามตำแหน่ง"_th},
    {rstrFourDigit, "rstrFourDigit", "สี่ตำแหน่ง"_th},
    {rstrFiveDigit, "rstrFiveDigit", "ห้าตำแหน่ง"_th},
    {rstrSixDigit, "rstrSixDigit", "หกตำแหน่ง"_th},

    // Document reference choices.
    {rstrNextRef, "rstrNextRef", "<เลขถัดไป>"_th},
    {rstrSameAsVc, "rstrSameAsVc", "<เลขเดียวกัน>"_th},
    {rstrNoRef, "rstrNoRef", "<ไม่ต้องระบุ>"_th},
    {rstrVatRef, "rstrVatRef", "<เลขที่ใบกำกับ>"_th},

    // Baht rounding modes, as a program lists them.
    {rstrNoRound, "rstrNoRound", "ไม่ปัด"_th},
    {rstrDownToBaht, "rstrDownToBaht", "ปัดทิ้ง"_th},
    {rstrNearBaht, "rstrNearBaht", "ปัดขึ้นลงให้เป็นบาทถ้วน"_th},
    {rstrUptoBaht, "rstrUptoBaht", "ปัดขึ้นให้เป็นบาท"_th},
    {rstrDownto25Stang, "rstrDownto25Stang", "ปัดลงให้เป็นเศษ 25 สตางค์"_th},
    {rstrNear25Stang, "rstrNear25Stang", "ปัดขึ้นลงให้เป็นเศษ 25 สตางค์"_th},
    {rstrUpto25Stang, "rstrUpto25Stang", "ปัดขึ้นให้เป็นเศษ 25 สตางค์"_th},
    {rstrDownto50Stang, "rstrDownto50Stang", "ปัดลงให้เป็นเศษ 50 สตางค์"_th},
    {rstrNear50Stang, "rstrNear50Stang", "ปัดขึ้นลงให้เป็นเศษ 50 สตางค์"_th},
    {rstrUpto50Stang, "rstrUpto50Stang", "ปัดขึ้นให้เป็นเศษ 50 สตางค์"_th},
    {rstrDownto5Baht, "rstrDownto5Baht", "ปัดลงให้เป็น 5 บาท"_th},
    {rstrNear5Baht, "rstrNear5Baht", "ปัดขึ้นลงให้เป็น 5 บาท"_th},
    {rstrUpto5Baht, "rstrUpto5Baht", "ปัดขึ้นให้เป็น 5 บาท"_th},
    {rstrDownto10Baht, "rstrDownto10Baht", "ปัดลงให้เป็น 10 บาท"_th},
    {rstrNear10Baht, "rstrNear10Baht", "ปัดขึ้นลงให้เป็น 10 บาท"_th},
    {rstrUpto10Baht, "rstrUpto10Baht", "ปัดขึ้นให้เป็น 10 บาท"_th},
    {rstrDownto50Baht, "rstrDownto50Baht", "ปัดลงให้เป็น 50 บาท"_th},
    {rstrNear50Baht, "rstrNear50Baht", "ปัดขึ้นลงให้เป็น 50 บาท"_th},
    {rstrUpto50Baht, "rstrUpto50Baht", "ปัดขึ้นให้เป็น 50 บาท"_th},
    {rstrDownto100Baht, "rstrDownto100Baht", "ปัดลงให้เป็น 100 บาท"_th},
    {rstrNear100Baht, "rstrNear100Baht", "ปัดขึ้นลงให้เป็น 100 บาท"_th},
    {rstrUpto100Baht, "rstrUpto100Baht", "ปัดขึ้นให้เป็น 100 บาท"_th},

    // Access rights; each refusal is the first line followed by the second.
    {rstrEGrantInsert01, "rstrEGrantInsert01", "สิทธิของท่านไม่เพียงพอ"_th},
    {rstrEGrantInsert02, "rstrEGrantInsert02", "ที่จะเพิ่มเติมข้อมูลได้"_th},
    {rstrEGrantUpdate01, "rstrEGrantUpdate01", "สิทธิของท่านไม่เพียงพอ"_th},
    {rstrEGrantUpdate02, "rstrEGrantUpdate02", "ที่จะแก้ไขข้อมูลได้"_th},
    {rstrEGrantDelete01, "rstrEGrantDelete01", "สิทธิของท่านไม่เพียงพอ"_th},
    {rstrEGrantDelete02, "rstrEGrantDelete02", "ที่จะลบข้อมูลได้"_th},
    {rstrEGrantDuplicate01, "rstrEGrantDuplicate01", "สิทธิของท่านไม่เพียงพอ"_th},
    {rstrEGrantDuplicate02, "rstrEGrantDuplicate02", "ที่จะสำเนาข้อมูลได้"_th},
    {rstrEGrantExecute01, "rstrEGrantExecute01", "สิทธิของท่านไม่เพียงพอ"_th},
    {rstrEGrantExecute02, "rstrEGrantExecute02", "ที่จะกระทำการได้"_th},

    // Saving, concurrency and record state.
    {rstrNeedRefresh01, "rstrNeedRefresh01", "ไม่สามารถแก้ไขหรือลบรายการ"_th},
    {rstrNeedRefresh02, "rstrNeedRefresh02", "เนื่องจากผู้ใช้อื่นได้ลบรายการไปแล้ว"_th},
    {rstrNeedRefresh03, "rstrNeedRefresh03", "โปรด Refresh เพื่อดูข้อมูลปัจจุบัน"_th},
    {rstrEPostError, "rstrEPostError", "พบข้อผิดพลาดขณะทำการ Post"_th},
    {rstrERefresh, "rstrERefresh", "โปรดทำการ Refresh ข้อมูลก่อนแก้ไขใหม่    "_th},
    {rstrEReApply01, "rstrEReApply01", "ผู้อื่นทำการจองข้อมูลไว้"_th},
    {rstrEReApply02, "rstrEReApply02", "โปรดรอสักครู่แล้วกดบันทึกอีกครั้ง"_th},
    {rstrEWasDelete, "rstrEWasDelete", "ผู้ใช้อื่นได้ทำการลบข้อมูลที่ต้องการแก้ไข"_th},
    {rstrECantDelete, "rstrECantDelete", "ไม่สามารถลบข้อมูล"_th},
    {rstrECantDeleteWText, "rstrECantDeleteWText", "ไม่สามารถลบข้อมูล %s"_th},
    {rstrEHasRefer, "rstrEHasRefer", "เนื่องจากยังมีผู้ใช้งาน"_th},
    {rstrECantEdit, "rstrECantEdit", "ไม่สามารถแก้ไขข้อมูลได้"_th},
    {rstrECantEditRegisterNo, "rstrECantEditRegisterNo", "ไม่สามารถแก้ไขเลขที่ลงทะเบียน เนื่องจากมีผู้อื่นใช้ข้อมูล"_th},
    {rstrECantInsert, "rstrECantInsert", "ไม่สามารถเพิ่มข้อมูลได้"_th},
    {rstrConfirmDelete, "rstrConfirmDelete", "ยืนยันลบรายการนี้ ?"_th},
    {rstrConfirmCancel, "rstrConfirmCancel", "ยกเลิกข้อมูลที่บันทึก ?"_th},
    {rstrComplete, "rstrComplete", "บันทึกข้อมูลเรียบร้อยแล้ว"_th},
    {rstrCancelCommand, "rstrCancelCommand", "คำสั่งแก้ไขยกเลิก"_th},

    // Input validation.
    {rstrEInvalidDate, "rstrEInvalidDate", "%s วันที่ไม่ถูกต้อง"_th},
    {rstrEInvalidTime, "rstrEInvalidTime", "%s เวลาไม่ถูกต้อง%s"_th},
    {rstrEInvalidYear, "rstrEInvalidYear", "%s ปีไม่ถูกต้อง"_th},
    {rstrEYearMonth, "rstrEYearMonth", "บันทึกปีเดือนในรูป YY.MM เช่น 5ปี 9 เดือนคือ 5.09"_th},
    {rstrEYearOutOfRange, "rstrEYearOutOfRange", "ปีไม่ได้อยู่ในช่วง ปีปัจจุบัน บวก หรือ ลบ หนึ่งร้อยปี"_th},
    {rstrEDateRange, "rstrEDateRange", "ช่วงวันที่ไม่ถูกต้อง"_th},
    {rstrEEnter0to100, "rstrEEnter0to100", "มูลค่าที่บันทึกต้องอยู่ระหว่าง 0ถึง 100"_th},
    {rstrEEnter1to100, "rstrEEnter1to100", "มูลค่าที่บันทึกต้องอยู่ระหว่าง 1 ถึง 100"_th},
    {rstrEEnterValue0to12, "rstrEEnterValue0to12", "เดือนที่บันทึกต้องอยู่ระหว่าง 0ถึง 12"_th},
    {rstrEEnterValue0to31, "rstrEEnterValue0to31", "วันที่บันทึกต้องอยู่ระหว่าง 1 ถึง 31"_th},
    {rstrEEnterValue1to12, "rstrEEnterValue1to12", "เดือนที่บันทึกต้องอยู่ระหว่าง 1 ถึง 12"_th},
    {rstrEEnterValueMustGreater0, "rstrEEnterValueMustGreater0", "มูลค่าที่บันทึกต้องมากกว่า  0"_th},
    {rstrEEnterValueMustGreaterEqual0, "rstrEEnterValueMustGreaterEqual0", "มูลค่าที่บันทึกต้องมากกว่า หรือ เท่ากับ 0"_th},
    {rstrEEnterValueMustLessEqual0, "rstrEEnterValueMustLessEqual0", "มูลค่าที่บันทึกต้องน้อยกว่า หรือ เท่ากับ 0"_th},

    // Files, reports and printing.
    {rstrEFileNotFound, "rstrEFileNotFound", "ไม่พบแฟ้ม %s"_th},
    {rstrFileNotFoundInfo, "rstrFileNotFoundInfo", "ไม่พบแฟ้มเอกสารที่ต้องการ %s"_th},
    {rstrRpfNotfound, "rstrRpfNotfound", "ไม่พบทะเบียนรายงานที่ต้องการพิมพ์"_th},
    {rstrRegisterReport, "rstrRegisterReport", "ลงทะเบียนรายงาน"_th},
    {rstrEFoundButFilter, "rstrEFoundButFilter", "พบข้อมูลแต่เงื่อนไขไม่ต้องการให้พิมพ์"_th},
    {rstrENoRptFile, "rstrENoRptFile", "โปรดระบุแฟ้มรูปแบบรานงาน"_th},
    {rstrERptFileNotExist, "rstrERptFileNotExist", "ไม่พบแฟ้มรูปแบบรายงาน"_th},
    {rstrDeleteRpfInfo, "rstrDeleteRpfInfo", "ทำการลบรายงาน  %s "_th},
    {rstrDeleteRpgInfo, "rstrDeleteRpgInfo", "ทำการลบประเภทรายงาน %s"_th},
    {rstrSelectRptFile, "rstrSelectRptFile", "เลือกแฟ้มรูปแบบรายงาน"_th},
    {rstrReportNotFound, "rstrReportNotFound", "ไม่พบรายงาน"_th},
    {rstrSameAsPrinterSetting, "rstrSameAsPrinterSetting", "ตามเครื่องพิมพ์"_th},
    {rstrLanscape, "rstrLanscape", "ตามแนวนอน"_th},
    {rstrPortriat, "rstrPortriat", "ตามแนวตั้ง"_th},
    {rstrAscending, "rstrAscending", "น้อยไปมาก"_th},
    {rstrDescending, "rstrDescending", "มากไปน้อย"_th},
    {rstrSaveFindResult, "rstrSaveFindResult", "บันทึกผลการค้นหา ?"_th},
    {rstrInfoInHelp, "rstrInfoInHelp", "ตามที่อยู่ในวิธีใช้"_th},

    // Commands and common labels.
    {rstrInsert, "rstrInsert", "เพิ่ม"_th},
    {rstrEdit, "rstrEdit", "แก้ไข"_th},
    {rstrDelete, "rstrDelete", "ลบ"_th},
    {rstrFind, "rstrFind", "ค้นหา"_th},
    {rstrDuplicate, "rstrDuplicate", "สำเนา %s"_th},
    {rstrNoOfRecord, "rstrNoOfRecord", "%d รายการ"_th},
    {rstrCommonCondition, "rstrCommonCondition", "ทั่วไป"_th},
    {rstrCash, "rstrCash", "เงินสด"_th},
    {rstrDeptCode, "rstrDeptCode", "รหัสแผนก"_th},
    {rstrDeptThDesc, "rstrDeptThDesc", "ชื่อแผนก (ไทย)"_th},
    {rstrDeptEngDesc, "rstrDeptEngDesc", "ชื่อแผนก (อังกฤษ)"_th},
    {rstrBackupComment, "rstrBackupComment", "สำเนาข้อมูลบริษัท %s รุ่น %s"_th},
    {rstrCreateDBMS, "rstrCreateDBMS", "สร้างฐานข้อมูล..."_th},

    // Event log.
    {rstrECantCreateLog, "rstrECantCreateLog", "ไม่สามารถสร้างแฟ้มสำหรับบันทึกเหตุการณ์"_th},

    // Database connection failure: five lines of one message, formatted with the connection name
    // and the path of the connection list file.
    {rstrEDbmsNotFound, "rstrEDbmsNotFound", "ไม่พบวิธีการติดต่อฐานข้อมูล %s"_th},
    {rstrEDbmsFileName, "rstrEDbmsFileName", "แฟ้ม : %s"_th},
    {rstrEDbmsEditHint1, "rstrEDbmsEditHint1", "โปรดเข้าเมนูแก้ไขคุณสมบัติฐานข้อมูล"_th},
    {rstrEDbmsEditHint2, "rstrEDbmsEditHint2", "จากนั้นทำการแก้ไขให้มีฐานข้อมูลที่ต้องการ"_th},
    {rstrEDbmsEditHint3, "rstrEDbmsEditHint3", "ก่อนการทำงานโดยโปรแกรมนี้"_th},

    // Two letters a day, Sunday first.
    {rstrThaiDayAbbrev, "rstrThaiDayAbbrev", "อาจ.อ.พ.พฤศ.ส."_th},
};
// clang-format on

// The place of an identifier's row, one more than its index; 0 for identifiers that have none.
constexpr auto kPlaces = [] {
  std::array<std::uint8_t, kMessageIds> places{};
  for (std::size_t i = 0; i < std::size(kMessages); ++i) {
    auto& place = places.at(kMessages[i].Id - kFirstMessageId);
    if (place != 0) throw "an identifier stands twice";
    place = static_cast<std::uint8_t>(i + 1);
  }
  return places;
}();

constexpr std::size_t CountPlaceholders(std::string_view text) {
  std::size_t count = 0;
  std::size_t at = 0;
  while (const char kind = NextPlaceholder(text, at)) {
    if (kind == kNoPlaceholder) throw "neither %s nor %d";
    ++count;
  }
  return count;
}

// Callers pass one value to a message with a placeholder, and two to these.
static_assert(std::ranges::all_of(kMessages, [](const TMessageRow& row) {
  const bool two = row.Id == rstrEInvalidTime || row.Id == rstrBackupComment;
  return two ? CountPlaceholders(row.Text) == 2 : CountPlaceholders(row.Text) <= 1;
}));

}  // namespace

std::span<const TMessageRow> Messages() {
  return kMessages;
}

const TMessageRow* FindMessageById(Word id) {
  if (id < kFirstMessageId) return nullptr;
  const std::size_t place = kPlaces[id - kFirstMessageId];
  return place == 0 ? nullptr : &kMessages[place - 1];
}

const TMessageRow* FindMessage(std::string_view name) {
  const auto* row = std::ranges::find_if(
      kMessages, [&](const TMessageRow& candidate) { return SameText(candidate.Name, name); });
  return row == std::end(kMessages) ? nullptr : row;
}

std::string LoadStr(TMessage message) {
  if (const std::string* translated = FindTranslation(message)) return *translated;
  const TMessageRow* row = FindMessageById(message);
  return row == nullptr ? std::string() : std::string(row->Text);
}

std::string LoadMessage(std::string_view name) {
  const TMessageRow* row = FindMessage(name);
  return row == nullptr ? std::string() : LoadStr(row->Id);
}

}  // namespace kvshare
