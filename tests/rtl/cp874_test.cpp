#include "kvshare/rtl/cp874.h"

#include <gtest/gtest.h>

#include "kvshare/rtl/exceptions.h"

namespace kvshare {
namespace {

std::string MessageOf(std::string_view utf8) {
  try {
    Utf8ToCp874(utf8);
  } catch (const EConvertError& e) {
    return e.Message();
  }
  return "no error";
}

TEST(Cp874, EveryByteThereAndBack) {
  int letters = 0;
  for (int i = 0; i < 256; ++i) {
    const std::string byte(1, static_cast<char>(i));
    SCOPED_TRACE(i);
    if (i != 0 && Cp874ToUnicode(static_cast<unsigned char>(i)) == 0) {
      EXPECT_THROW(Cp874ToUtf8(byte), EConvertError);
      EXPECT_EQ(Cp874ToUtf8Lossy(byte), "\xEF\xBF\xBD");
      continue;
    }
    ++letters;
    EXPECT_EQ(Utf8ToCp874(Cp874ToUtf8(byte)), byte);
  }
  EXPECT_EQ(letters, 128 + 10 + 87) << "ASCII, ten signs and NBSP, Thai";
}

TEST(Cp874, KnownTexts) {
  EXPECT_EQ(Cp874ToUtf8("\xBA\xD2\xB7 5"), "บาท 5");
  EXPECT_EQ(Utf8ToCp874("“ราคา” €5 – ฿"), "“ราคา” €5 – ฿"_th);
  EXPECT_EQ(Utf8ToCp874(std::string_view("a\0b", 3)).size(), 3u);
  EXPECT_EQ(DisplayWidth("ที่นี่กำลัง"_th), 6u) << "marks above and below take no column";
}

TEST(Cp874, RefusesWhatItCannotHold) {
  struct Case {
    std::string_view utf8, message;
  };
  constexpr Case kCases[] = {
      {"ก\xC3\xA9", "No letter U+00E9 in code page 874, at byte 4"},
      {"\xE0\xB8\xBB", "No letter U+0E3B in code page 874, at byte 1"},
      {"\xF0\x9F\x98\x80", "No letter U+1F600 in code page 874, at byte 1"},
      {"ab\xE0\xB8", "Invalid UTF-8 at byte 3"},
      {"\xC0\x80", "Invalid UTF-8 at byte 1"},
      {"\xE0\x80\x80", "Invalid UTF-8 at byte 1"},
      {"\xED\xA0\x80", "Invalid UTF-8 at byte 1"},
      {"\xF4\x90\x80\x80", "Invalid UTF-8 at byte 1"},
      {"\x80", "Invalid UTF-8 at byte 1"},
  };
  for (const Case& c : kCases) EXPECT_EQ(MessageOf(c.utf8), c.message);
}

TEST(Cp874, AFailedAppendLeavesTheTextAsItWas) {
  std::string out = "before";
  EXPECT_THROW(AppendUtf8(out, "a\xFF"), EConvertError);
  EXPECT_THROW(AppendCp874(out, "a\xFF"), EConvertError);
  EXPECT_EQ(out, "before");
}

}  // namespace
}  // namespace kvshare
