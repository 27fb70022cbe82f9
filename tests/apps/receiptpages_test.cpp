#include "apps/receipts/receiptpages.h"
#include "apps/receipts/receiptroll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "kvshare/rtl/cp874.h"
#include "kvshare/ui/recordingprinter.h"

namespace kvshare::receipts {
namespace {

// An A4 sheet's printable area.
constexpr TSize kSheet{4661, 6416};
constexpr TSize kInch{600, 600};

constexpr Currency kTwo = 2_baht;

Document Invoice(std::vector<std::string> items, Currency quantity = kTwo) {
  constexpr std::string_view kCustomer = "ร้านบ้านสวน"_th;
  Document document{"IV6911-0002", EncodeDate(2026, 11, 24), std::string(kCustomer), {}};
  for (std::string& item : items) {
    document.lines.push_back({std::move(item), quantity, 600_baht, {}, 7_baht});
  }
  return document;
}

class ReceiptPagesTest : public testing::Test {
 protected:
  ReceiptPagesTest() {
    printer_.pageSize = kSheet;
    layout_.yearOffset = 543;
  }

  // The pages, drawn; their texts as UTF-8, in the order of drawing.
  std::vector<std::vector<std::string>> Draw(const Document& document) {
    ReceiptPages pages(printer_.Canvas(), kSheet, kInch,
                       TextsOf(document, Calculate(document, {}), layout_));
    printer_.BeginDoc();
    for (std::size_t i = 0; i < pages.Count(); ++i) {
      if (i != 0) printer_.NewPage();
      pages.Draw(i);
    }
    printer_.EndDoc();
    std::vector<std::vector<std::string>> texts;
    for (std::size_t page = 0; page < pages.Count(); ++page) {
      texts.emplace_back();
      for (const TDrawnText& text : Texts(page)) texts.back().push_back(Cp874ToUtf8(text.text));
    }
    return texts;
  }

  std::vector<TDrawnText> Texts(std::size_t page) const {
    std::vector<TDrawnText> texts;
    for (const TDrawn& drawn : printer_.jobs.back().pages[page]) {
      if (const auto* text = std::get_if<TDrawnText>(&drawn)) texts.push_back(*text);
    }
    return texts;
  }

  TRect PlaceOf(const TDrawnText& text) {
    printer_.Canvas().Font = text.font;
    const TSize size = printer_.Canvas().TextExtent(text.text);
    return {text.x, text.y, text.x + size.Width, text.y + size.Height};
  }

  // Everything lies on the sheet, and no two texts of a page lie on each other.
  void ExpectLegible() {
    for (std::size_t page = 0; page < printer_.jobs.back().pages.size(); ++page) {
      std::vector<TRect> taken;
      for (const TDrawnText& text : Texts(page)) {
        const TRect place = PlaceOf(text);
        EXPECT_TRUE(place.Left >= 0 && place.Right <= kSheet.Width && place.Top >= 0 &&
                    place.Bottom <= kSheet.Height)
            << Cp874ToUtf8(text.text);
        for (const TRect& other : taken) {
          const bool apart = place.Right <= other.Left || other.Right <= place.Left ||
                             place.Bottom <= other.Top || other.Bottom <= place.Top;
          EXPECT_TRUE(apart) << page << ": " << Cp874ToUtf8(text.text);
        }
        taken.push_back(place);
      }
    }
  }

  TRecordingPrinter printer_;
  Layout layout_;
};

TEST_F(ReceiptPagesTest, ADocumentOnOnePage) {
  constexpr std::string_view kPen = "ปากกา"_th, kCoffee = "กาแฟ 200 กรัม"_th;
  Document document = Invoice({std::string(kPen), std::string(kCoffee)});
  document.lines[1].quantity = 12.5_baht;
  EXPECT_THAT(Draw(document),
              testing::ElementsAre(testing::ElementsAre(
                  "ใบเสร็จรับเงิน", "Receipt", "เลขที่ / No.", "IV6911-0002", "วันที่ / Date", "24/11/2569",
                  "ลูกค้า / Customer", "ร้านบ้านสวน", "ลำดับ", "รายการ", "จำนวน", "ราคา", "ส่วนลด",
                  "จำนวนเงิน", "ปากกา", "1", "2.0", "600.00", "1,200.00", "กาแฟ 200 กรัม", "2",
                  "12.5", "600.00", "7,500.00", "มูลค่าก่อนภาษี / Net", "8,700.00",
                  "ภาษีมูลค่าเพิ่ม / VAT 7%", "609.00", "รวมทั้งสิ้น / Total", "9,309.00",
                  "(เก้าพันสามร้อยเก้าบาทถ้วน)", "Nine Thousand Three Hundred and Nine Baht Only",
                  "ผู้รับเอกสาร / Received by", "ผู้มีอำนาจลงนาม / Authorised by",
                  "ใบเสร็จรับเงิน / Receipt  IV6911-0002", "หน้า 1 จาก 1 / Page 1 of 1")));
  ExpectLegible();

  // Numbers end where those above them end.
  std::map<std::string, int> ends;
  for (const TDrawnText& text : Texts(0)) ends[Cp874ToUtf8(text.text)] = PlaceOf(text).Right;
  for (const auto& [upper, lower] : {std::pair{"2.0", "12.5"},
                                     {"1,200.00", "7,500.00"},
                                     {"จำนวน", "2.0"},
                                     {"จำนวนเงิน", "9,309.00"},
                                     {"8,700.00", "609.00"},
                                     {"1", "2"}}) {
    EXPECT_EQ(ends[upper], ends[lower]) << upper;
  }
}

TEST_F(ReceiptPagesTest, ACreditNoteHasNoWords) {
  const auto pages = Draw(Invoice({"x"}, -2_baht));
  EXPECT_THAT(pages[0], testing::Contains("ใบลดหนี้"));
  EXPECT_THAT(pages[0], testing::Contains("-1,284.00"));
  EXPECT_THAT(pages[0], testing::Not(testing::Contains(testing::HasSubstr("บาท"))));
}

TEST_F(ReceiptPagesTest, ManyLinesGoOnOnFurtherPages) {
  for (int lines = 1; lines < 120; lines += 7) {
    SCOPED_TRACE(lines);
    std::vector<std::string> items;
    for (int i = 0; i < lines; ++i) items.push_back("item" + std::to_string(i));
    const auto pages = Draw(Invoice(items));
    ExpectLegible();
    std::vector<std::string> seen;
    for (std::size_t i = 0; i < pages.size(); ++i) {
      std::ranges::copy_if(pages[i], std::back_inserter(seen),
                           [](const std::string& text) { return text.starts_with("item"); });
      const auto heads = std::ranges::count(pages[i], "จำนวนเงิน");
      const bool rows = std::ranges::any_of(
          pages[i], [](const std::string& text) { return text.starts_with("item"); });
      EXPECT_EQ(heads, rows ? 1 : 0) << "the head stands above rows, and nowhere else";
      EXPECT_EQ(pages[i].back(), "หน้า " + std::to_string(i + 1) + " จาก " +
                                     std::to_string(pages.size()) + " / Page " +
                                     std::to_string(i + 1) + " of " + std::to_string(pages.size()));
      const bool last = i + 1 == pages.size();
      EXPECT_TRUE(rows) << "sums never stand alone";
      EXPECT_EQ(std::ranges::count(pages[i], "มูลค่าก่อนภาษี / Net"), last ? 1 : 0);
      EXPECT_EQ(std::ranges::count(pages[i], "ผู้รับเอกสาร / Received by"), last ? 1 : 0)
          << "the sums and the signatures stay together";
    }
    EXPECT_EQ(seen, items) << "every line once, in its order";
  }
}

TEST_F(ReceiptPagesTest, ALineStaysOnItsPage) {
  const std::string word(70, 'w');  // two of them have no room on a line
  const std::vector<std::string> items(60, word + " " + word + " " + word);
  const auto pages = Draw(Invoice(items));
  ASSERT_GT(pages.size(), 2U);
  for (const auto& page : pages) EXPECT_EQ(std::ranges::count(page, word) % 3, 0);
  ExpectLegible();
}

TEST_F(ReceiptPagesTest, ARollIsAsLongAsItsReceipt) {
  for (const int width : {576, 384}) {
    Document document = Invoice({"item 1", std::string(300, 'x'), "item 3"});
    document.lines[2].discount = 12.5_baht;
    layout_.seller = {"Shop", {"Street"}, "0105561000003", "00000", "02", nullptr};
    ReceiptRoll roll(printer_.Canvas(), width, {203, 203},
                     TextsOf(document, Calculate(document, {}), layout_));
    printer_.BeginDoc();
    roll.Draw();
    printer_.EndDoc();
    std::string all;
    int last = 0;
    for (const TDrawnText& text : Texts(0)) {
      const TRect place = PlaceOf(text);
      EXPECT_TRUE(place.Left >= 0 && place.Right <= width) << Cp874ToUtf8(text.text);
      EXPECT_GE(place.Top + place.Bottom, last) << "downwards";
      last = place.Top + place.Bottom;
      EXPECT_LE(place.Bottom, roll.Height());
      all += Cp874ToUtf8(text.text);
    }
    for (const std::string_view part :
         {"Shop", "IV6911-0002", "24/11/2569", "item 1", "ส่วนลด 12.50", "2 x 600.00", "1,187.50",
          "รวมทั้งสิ้น / Total3,838.63"}) {
      EXPECT_THAT(all, testing::HasSubstr(part));
    }
    EXPECT_THAT(all, testing::HasSubstr(std::string(300, 'x')));
  }
}

TEST_F(ReceiptPagesTest, LongTextsLoseNothing) {
  std::string longest;
  for (int i = 0; longest.size() < 4000; ++i) longest += "ที่นา"_th.substr(0, i % 2 == 0 ? 3 : 5);
  Document document = Invoice({longest});
  document.number = "N" + longest;
  document.customer = "C" + longest;
  const auto pages = Draw(document);
  ExpectLegible();
  EXPECT_GT(pages.size(), 1U);
  std::string all;
  for (const auto& page : pages) {
    for (std::size_t i = 0; i + 2 < page.size(); ++i) all += page[i];  // without the foot
  }
  for (const std::string_view added : {"เลขที่ / No.", "วันที่ / Date24/11/2569", "ลูกค้า / Customer"}) {
    ASSERT_NE(all.find(added), std::string::npos) << added;
    all.erase(all.find(added), added.size());
  }
  EXPECT_NE(all.find("N" + Cp874ToUtf8(longest) + "C" + Cp874ToUtf8(longest)), std::string::npos);
}

TEST_F(ReceiptPagesTest, LargeNumbersTakeSmallerLetters) {
  Document document = Invoice({"x"});
  document.lines[0].price = 99'999'999'999.9999_baht;
  document.lines[0].quantity = 999.9999_baht;
  document.lines[0].discount = 1'111'111'111.1111_baht;
  const auto pages = Draw(document);
  EXPECT_THAT(pages[0], testing::Contains("99,999,999,999.9999"));
  ExpectLegible();
  const auto texts = Texts(0);
  const auto item =
      std::ranges::find_if(texts, [](const TDrawnText& text) { return text.text == "x"; });
  EXPECT_GT(item->font.Height, -100 * 600 / 720);
}

}  // namespace
}  // namespace kvshare::receipts
