#include "kvshare/messages/catalogue.h"

#include <gtest/gtest.h>

#include <utility>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"

namespace kvshare {
namespace {

TEST(Catalogue, TextsAreUnchanged) {
  struct Case {
    TMessage message;
    std::string_view want;
    const char* why;
  };
  constexpr Case kCases[] = {
      {rstrOneDigit, "หนึ่งตำแหน่ง"_th, "the first"},
      {rstrThaiDayAbbrev, "อาจ.อ.พ.พฤศ.ส."_th, "two letters a day"},
      {rstrERefresh, "โปรดทำการ Refresh ข้อมูลก่อนแก้ไขใหม่    "_th, "four trailing blanks"},
      {rstrDeleteRpfInfo, "ทำการลบรายงาน  %s "_th, "two blanks before, one behind"},
      {rstrEEnterValueMustGreater0, "มูลค่าที่บันทึกต้องมากกว่า  0"_th, "doubled blank"},
      {rstrEEnter0to100, "มูลค่าที่บันทึกต้องอยู่ระหว่าง 0ถึง 100"_th, "no blank"},
      {rstrENoRptFile, "โปรดระบุแฟ้มรูปแบบรานงาน"_th, "the spelling is the suite's own"},
      {rstrEInvalidTime, "%s เวลาไม่ถูกต้อง%s"_th, "a value at the very end"},
      {rstrNextRef, "<เลขถัดไป>"_th, "brackets"},
      {static_cast<TMessage>(65518), "", "an identifier without a message"},
      {static_cast<TMessage>(0), "", "an identifier below all"},
  };
  for (const Case& c : kCases) EXPECT_EQ(LoadStr(c.message), c.want) << c.why;
}

// The compiler's own text for an enumerator: "... Id = kvshare::rstrOneDigit]".
template <TMessage Id>
std::string_view EnumeratorName() {
  std::string_view text = __PRETTY_FUNCTION__;
  text = text.substr(0, text.find_first_of("];", text.find("Id = ")));
  return text.substr(text.find_last_of(" :)") + 1);
}

template <std::size_t Offset>
void ExpectNamedAlike() {
  constexpr auto kId = static_cast<TMessage>(kFirstMessageId + Offset);
  const TMessageRow* row = FindMessageById(kId);
  if (row == nullptr) {
    EXPECT_FALSE(EnumeratorName<kId>().starts_with("rstr")) << EnumeratorName<kId>();
  } else {
    EXPECT_EQ(row->Id, kId);
    EXPECT_EQ(row->Name, EnumeratorName<kId>());
  }
}

TEST(Catalogue, EveryIdentifierHasItsOwnName) {
  [&]<std::size_t... Offset>(std::index_sequence<Offset...>) {
    (ExpectNamedAlike<Offset>(), ...);
  }
  (std::make_index_sequence<kMessageIds>());
  EXPECT_EQ(Messages().size(), 112U);
}

TEST(Catalogue, FindsByName) {
  EXPECT_EQ(FindMessage("RSTREGRANTUPDATE01")->Id, rstrEGrantUpdate01);
  EXPECT_EQ(LoadMessage("rstrCash"), "เงินสด"_th);
  EXPECT_EQ(FindMessage("rstrCas"), nullptr);
  EXPECT_EQ(LoadMessage(""), "");
}

TEST(Catalogue, MessagesTakeTheirValues) {
  const std::string connection = LoadStr(rstrEDbmsNotFound) + "\r\n" + LoadStr(rstrEDbmsFileName) +
                                 "\r\n" + LoadStr(rstrEDbmsEditHint1) + "\r\n" +
                                 LoadStr(rstrEDbmsEditHint2) + "\r\n" + LoadStr(rstrEDbmsEditHint3);
  EXPECT_EQ(Format(connection, {"ACME", "C:\\BConnect.TXT"}),
            "ไม่พบวิธีการติดต่อฐานข้อมูล ACME\r\nแฟ้ม : C:\\BConnect.TXT\r\n"_th
            "โปรดเข้าเมนูแก้ไขคุณสมบัติฐานข้อมูล\r\nจากนั้นทำการแก้ไขให้มีฐานข้อมูลที่ต้องการ\r\n"_th
            "ก่อนการทำงานโดยโปรแกรมนี้"_th);
  EXPECT_EQ(Format(LoadStr(rstrBackupComment), {"A", "2"}), "สำเนาข้อมูลบริษัท A รุ่น 2"_th);
  EXPECT_EQ(Format(LoadStr(rstrNoOfRecord), {7}), "7 รายการ"_th);
}

}  // namespace
}  // namespace kvshare
