// What the command says to an accountant, in English and in Thai.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"

namespace kvshare::receipts {

struct UserTextRow {
  std::string_view english;
  std::string_view thai;  // code page 874, with the same placeholders in the same order
};

inline constexpr UserTextRow kUserTexts[] = {
    // Places.
    {"line %d", "บรรทัดที่ %d"_th},
    {"argument %d", "ข้อมูลที่ %d"_th},
    {", column %d", ", คอลัมน์ที่ %d"_th},
    {"warning: ", "คำเตือน: "_th},
    {"document %s", "เอกสาร %s"_th},

    // The file.
    {"the header line is missing", "ไม่มีบรรทัดหัวตาราง"_th},
    {"no documents: no row follows the header", "ไม่มีเอกสาร: ไม่มีแถวใดต่อจากหัวตาราง"_th},
    {"column %s is missing", "ไม่มีคอลัมน์ %s"_th},
    {"the column is unknown and ignored", "ไม่รู้จักคอลัมน์นี้ จึงข้ามไป"_th},
    {"the column stands twice", "คอลัมน์นี้มีซ้ำ"_th},
    {"the header has more than one of comma, semicolon and tab: name the separator with "
     "--separator",
     "หัวตารางมีตัวคั่นหลายแบบ (จุลภาค อัฒภาค แท็บ): ให้ระบุด้วย --separator"_th},
    {"from here on the file is not in %s; save it in one encoding, or name another one with "
     "--encoding",
     "ตั้งแต่ตรงนี้ไปแฟ้มไม่ได้เข้ารหัสเป็น %s; ให้บันทึกใหม่เป็นรหัสเดียว หรือระบุรหัสอื่นด้วย --encoding"_th},
    {"a zero byte stands here; a file in UTF-16 needs its byte-order mark or --encoding utf-16le",
     "มีไบต์ศูนย์ตรงนี้; แฟ้ม UTF-16 ต้องมีเครื่องหมายลำดับไบต์ หรือใช้ --encoding utf-16le"_th},
    {"a cell has more than 16 MB: is a closing quote missing?",
     "ช่องหนึ่งยาวเกิน 16 MB: ลืมปิดเครื่องหมายคำพูดหรือไม่"_th},
    {"a quote is opened and never closed", "เปิดเครื่องหมายคำพูดแล้วไม่ได้ปิด"_th},
    {"the line has more than 16 MB", "บรรทัดนี้ยาวเกิน 16 MB"_th},

    // Rows and cells.
    {"the row of totals is left out", "ข้ามแถวยอดรวม"_th},
    {"the row has %d cells, the header has %d", "แถวนี้มี %d ช่อง แต่หัวตารางมี %d ช่อง"_th},
    {"the cell has %d bytes, at most %d are read", "ช่องนี้มี %d ไบต์ อ่านได้ไม่เกิน %d ไบต์"_th},
    {"the document has no number", "เอกสารไม่มีเลขที่"_th},
    {"document %s comes back: its rows of line %d do not stand beside this one",
     "เอกสาร %s มีอีกครั้ง: แถวของเอกสารนี้ที่บรรทัด %d ไม่ได้อยู่ติดกัน"_th},
    {"the date differs from the document's first", "วันที่ไม่ตรงกับแถวแรกของเอกสาร"_th},
    {"the customer differs from the document's first", "ลูกค้าไม่ตรงกับแถวแรกของเอกสาร"_th},
    {"the item has no name", "รายการไม่มีชื่อ"_th},
    {"'%s' is no date: yyyy-mm-dd or dd/mm/yyyy",
     "'%s' ไม่ใช่วันที่: ให้เขียน yyyy-mm-dd หรือ dd/mm/yyyy"_th},
    {"'%s' is no amount", "'%s' ไม่ใช่จำนวน"_th},
    {"'%s' is no amount; --decimal-comma reads it as one",
     "'%s' ไม่ใช่จำนวน; --decimal-comma อ่านเป็นจำนวนได้"_th},
    {"the VAT rate is missing", "ไม่มีอัตราภาษีมูลค่าเพิ่ม"_th},
    {"'%s' is no VAT rate: 0 to 100 per cent", "'%s' ไม่ใช่อัตราภาษีมูลค่าเพิ่ม: ร้อยละ 0 ถึง 100"_th},
    {"a VAT rate below one per cent: 7 per cent is written 7",
     "อัตราภาษีมูลค่าเพิ่มต่ำกว่าร้อยละ 1: ร้อยละ 7 ให้เขียน 7"_th},
    {"'%s' is negative: a credit note has negative quantities",
     "'%s' ติดลบ: ใบลดหนี้ให้ใส่ปริมาณติดลบ"_th},
    {"'%s' is negative: no discount", "'%s' ติดลบ: ไม่ใช่ส่วนลด"_th},

    {"'%s' is no tax number: 13 digits", "'%s' ไม่ใช่เลขประจำตัวผู้เสียภาษี: ต้องมี 13 หลัก"_th},
    {"'%s' is no tax number: its check digit is wrong",
     "'%s' ไม่ใช่เลขประจำตัวผู้เสียภาษี: หลักตรวจสอบไม่ถูกต้อง"_th},
    {"'%s' is no branch: 5 digits, 00000 for the head office",
     "'%s' ไม่ใช่สาขา: 5 หลัก, สำนักงานใหญ่คือ 00000"_th},
    {"it differs from the document's first", "ไม่ตรงกับแถวแรกของเอกสาร"_th},

    // Years.
    {"%d looks like a Christian year read as one of the Buddhist era",
     "%d ดูเหมือนปี ค.ศ. ที่อ่านเป็น พ.ศ."_th},
    {"%d looks like a year of the Buddhist era read as a Christian one: it would be %d",
     "%d ดูเหมือนปี พ.ศ. ที่อ่านเป็น ค.ศ.: น่าจะเป็น %d"_th},
    {"%d looks like a year to which 543 was added twice: it would be %d",
     "%d ดูเหมือนปีที่บวก 543 สองครั้ง: น่าจะเป็น %d"_th},
    {"the year %d lies far ahead", "ปี %d อยู่ไกลในอนาคต"_th},
    {"the year %d, %d as it was typed, lies more than %d years ahead",
     "ปี %d ซึ่งพิมพ์เป็น %d อยู่ในอนาคตเกิน %d ปี"_th},
    {"the year %d, %d as it was typed, lies more than %d years back",
     "ปี %d ซึ่งพิมพ์เป็น %d อยู่ในอดีตเกิน %d ปี"_th},

    // Amounts and words.
    {"the discount is greater than the line's amount", "ส่วนลดมากกว่าจำนวนเงินของรายการ"_th},
    {"the amount is out of range", "จำนวนเงินเกินขอบเขต"_th},
    {"the words do not say that the amount is negative", "คำอ่านไม่ได้บอกว่าจำนวนเงินติดลบ"_th},
    {"the amount is too large: the words are not its words",
     "จำนวนเงินมากเกินไป: คำอ่านไม่ใช่ของจำนวนนี้"_th},
    {"the code is in no list: the amount stays as it is", "ไม่มีรหัสนี้ในรายการ: จำนวนเงินคงเดิม"_th},

    // Receipts.
    {"document %s is not printed", "เอกสาร %s ไม่ได้พิมพ์"_th},
    {"document %s is not printed: %s", "เอกสาร %s ไม่ได้พิมพ์: %s"_th},
    {"document %s is not printed: a row of it, or beside it, is in error",
     "เอกสาร %s ไม่ได้พิมพ์: แถวของเอกสารหรือแถวที่ติดกันมีข้อผิดพลาด"_th},
    {"document %s: no Thai words for %.2n, the figures stand alone",
     "เอกสาร %s: ไม่มีคำอ่านภาษาไทยของ %.2n จึงมีแต่ตัวเลข"_th},
    {"document %s: no English words for %.2n, the figures stand alone",
     "เอกสาร %s: ไม่มีคำอ่านภาษาอังกฤษของ %.2n จึงมีแต่ตัวเลข"_th},
    {"document %s: no Thai and English words for %.2n, the figures stand alone",
     "เอกสาร %s: ไม่มีคำอ่านภาษาไทยและอังกฤษของ %.2n จึงมีแต่ตัวเลข"_th},
    {"no document is printed, and no file is written", "ไม่มีเอกสารที่พิมพ์ และไม่ได้เขียนแฟ้ม"_th},
    {"no document is printed", "ไม่มีเอกสารที่พิมพ์"_th},
    {"the day's total is out of range and not printed", "ยอดรวมของวันเกินขอบเขต จึงไม่ได้พิมพ์"_th},

    {"no seller is set, and the papers name none; `kvshare shop set` sets one",
     "ยังไม่ได้ตั้งผู้ขาย เอกสารจึงไม่มีชื่อผู้ขาย; ตั้งได้ด้วย `kvshare shop set`"_th},
    {"full tax invoices need %s; documents without it: %d, the first is %s",
     "ใบกำกับภาษีเต็มรูปต้องมี%s; เอกสารที่ไม่มี: %d, เอกสารแรกคือ %s"_th},
    {"credit notes need %s; documents without it: %d, the first is %s",
     "ใบลดหนี้ต้องมี%s; เอกสารที่ไม่มี: %d, เอกสารแรกคือ %s"_th},
    {"the seller's address", "ที่อยู่ผู้ขาย"_th},
    {"the buyer's address", "ที่อยู่ผู้ซื้อ"_th},
    {"the invoice's number", "เลขที่ใบกำกับภาษีเดิม"_th},
    {"the invoice's date", "วันที่ใบกำกับภาษีเดิม"_th},
    {"the invoice's value, which is not in the file", "มูลค่าตามใบกำกับภาษีเดิม ซึ่งไม่อยู่ในแฟ้ม"_th},
    {"the reason", "สาเหตุที่ลดหนี้"_th},

    // Posting.
    {"document %s is not posted: %s", "เอกสาร %s ไม่ได้ลงบัญชี: %s"_th},
    {"a row of it cannot be read", "มีแถวที่อ่านไม่ได้"_th},
    {"its number is longer than %d letters", "เลขที่ยาวเกิน %d ตัวอักษร"_th},
    {"it is posted already, with another content: %s", "ลงบัญชีแล้วด้วยเนื้อหาอื่น: %s"_th},
    {"%s%s: %s there, %s here", "%s%s: ในบัญชี %s ที่นี่ %s"_th},
    {"line %d, ", "รายการที่ %d, "_th},
    {"the books do not say by which rules it was computed", "สมุดบัญชีไม่ได้บอกว่าคำนวณด้วยกฎใด"_th},
    {"its amounts in the books do not follow from its lines", "จำนวนเงินในสมุดบัญชีไม่ตรงกับรายการ"_th},
    {"there is no document %s in the books", "ไม่มีเอกสาร %s ในสมุดบัญชี"_th},
    {"interrupted: what is posted stays posted", "หยุดกลางคัน: ที่ลงบัญชีแล้วยังคงอยู่"_th},
    {"document %s is posted, but not in the log: %s", "เอกสาร %s ลงบัญชีแล้ว แต่ไม่อยู่ในบันทึก: %s"_th},
    {"%.2n baht", "%.2n บาท"_th},
    {"a sum that is out of range", "ยอดรวมเกินขอบเขต"_th},
    {"%d documents with %d lines posted, %s; %d were there already, %d are left; last send number "
     "%s",
     "ลงบัญชี %d เอกสาร %d รายการ, %s; มีอยู่แล้ว %d, เหลือ %d; เลขที่ส่งล่าสุด %s"_th},
};

namespace detail {

// From one `%` to its letter, then to the next one.
constexpr bool HaveSamePlaceholders(std::string_view a, std::string_view b) {
  const auto next = [](std::string_view& text) {
    const std::size_t from = std::min(text.find('%'), text.size());
    const std::size_t end = std::min(text.find_first_of("sdn", from), text.size() - 1) + 1;
    const std::string_view placeholder = text.substr(from, end - from);
    text.remove_prefix(std::min(std::max(from, end), text.size()));
    return placeholder;
  };
  while (!a.empty() || !b.empty()) {
    if (next(a) != next(b)) return false;
  }
  return true;
}
static_assert(std::ranges::all_of(kUserTexts, [](const UserTextRow& row) {
  return HaveSamePlaceholders(row.english, row.thai);
}));

}  // namespace detail

// One of these texts, by its English. The compiler refuses a text that has no Thai.
class UserText {
 public:
  consteval UserText(const char* english) : row_(RowOf(english)) {}  // NOLINT: stands for its row

  const UserTextRow& Row() const { return *row_; }

 private:
  static consteval const UserTextRow* RowOf(std::string_view english) {
    const auto* row = std::ranges::find(kUserTexts, english, &UserTextRow::english);
    if (row == std::end(kUserTexts)) throw "this text stands in no row of kUserTexts";
    return row;
  }
  const UserTextRow* row_;
};

// The text with its values, in Thai where KVSHARE_LANGUAGE is `th`, else in English: scripts read
// it. Code page 874.
std::string Say(UserText text, std::initializer_list<TVarRec> values = {});

// The same in UTF-8, with values in code page 874.
std::string SayUtf8(UserText text, std::initializer_list<TVarRec> values = {});

}  // namespace kvshare::receipts
