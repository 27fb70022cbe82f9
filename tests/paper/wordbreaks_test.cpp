// Lines between Thai words, beside the library that knows the words.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thai/thbrk.h>

#include <algorithm>
#include <memory>
#include <random>
#include <set>

#include "apps/receipts/textlayout.h"
#include "kvshare/rtl/cp874.h"
#include "paper/pagecanvas.h"

namespace kvshare::paper {
namespace {

// The places between words that libthai finds in a text of its own code, which is Thai industrial
// standard 620 and the same as the code page here.
std::set<std::size_t> WordEnds(ThBrk* words, std::string_view text) {
  std::vector<int> places(text.size() + 1);
  const std::string copy(text);
  const int count = th_brk_find_breaks(words, reinterpret_cast<const thchar_t*>(copy.c_str()),
                                       places.data(), places.size());
  return {places.begin(), places.begin() + count};
}

// Names of items as shops write them: words in any order, with and without blanks and sizes.
std::vector<std::string> ItemNames(std::size_t count) {
  constexpr std::string_view kWords[] = {
      "ปากกาลูกลื่น"_th, "สีน้ำเงิน"_th,    "สมุดบันทึก"_th,    "กระดาษถ่ายเอกสาร"_th, "น้ำดื่ม"_th,
      "กาแฟคั่วบด"_th,  "ข้าวหอมมะลิ"_th, "ผลไม้กระป๋อง"_th, "โต๊ะทำงาน"_th,        "เก้าอี้สำนักงาน"_th,
      "ค่าบริการ"_th,   "ซ่อมแซม"_th,    "เครื่องคำนวณ"_th, "แฟ้มเอกสาร"_th,       "น้ำมันพืช"_th,
      "อุปกรณ์ไฟฟ้า"_th, "ผ้าเช็ดมือ"_th,   "ยาสีฟัน"_th};
  constexpr std::string_view kBetween[] = {"",           "",        "", " ", " 0.5 มม. "_th,
                                           " (โหล) "_th, " A4 80g "};
  std::mt19937 random(7);
  std::vector<std::string> names(count);
  for (std::string& name : names) {
    while (name.size() < 90) {
      name += kWords[random() % std::size(kWords)];
      name += kBetween[random() % std::size(kBetween)];
    }
  }
  return names;
}

TEST(WordBreaks, NoLineOf200LongNamesEndsInsideAWord) {
  const std::unique_ptr<ThBrk, void (*)(ThBrk*)> words(th_brk_new(nullptr), th_brk_delete);
  ASSERT_NE(words, nullptr);
  PageCanvas canvas(600, 0.12, Inks::All);
  canvas.Font = {"Loma", -83};
  const receipts::TextDevice device{
      [&canvas](std::string_view part) { return canvas.TextWidth(part); },
      [&canvas](std::string_view part) { return canvas.LineBreaks(part); }};
  int lines = 0;
  for (const std::string& name : ItemNames(200)) {
    const std::set<std::size_t> ends = WordEnds(words.get(), name);
    std::size_t at = 0;
    for (const std::string& piece : receipts::Wrap(name, 1300, device)) {
      EXPECT_LE(canvas.TextWidth(piece), 1300);
      at = name.find_first_not_of(' ', at);
      EXPECT_EQ(name.substr(at, piece.size()), piece) << "nothing is lost";
      at += piece.size();
      const bool atBlank = at >= name.size() || name[at] == ' ';
      EXPECT_TRUE(atBlank || ends.contains(at)) << Cp874ToUtf8(name) << " at " << at;
      ++lines;
    }
    EXPECT_GE(at + 1, name.find_last_not_of(' ') + 1);
  }
  EXPECT_GT(lines, 400) << "the names need more than one line";
}

// A word that has no room alone is split all the same, and never before a mark or a following vowel.
TEST(WordBreaks, AWordThatIsTooLongIsSplitBetweenLetters) {
  PageCanvas canvas(600, 0.12, Inks::All);
  canvas.Font = {"Loma", -83};
  const receipts::TextDevice device{
      [&canvas](std::string_view part) { return canvas.TextWidth(part); },
      [&canvas](std::string_view part) { return canvas.LineBreaks(part); }};
  const auto pieces = receipts::Wrap("กก้ก้ก้ก้ก้กำกำกำ"_th, 150, device);
  EXPECT_GT(pieces.size(), 2U);
  std::string all;
  for (const std::string& piece : pieces) {
    EXPECT_FALSE(IsCombiningCp874(static_cast<unsigned char>(piece.front())));
    EXPECT_NE(piece.front(), "ำ"_th[0]);
    all += piece;
  }
  EXPECT_EQ(all, "กก้ก้ก้ก้ก้กำกำกำ"_th);
}

}  // namespace
}  // namespace kvshare::paper
