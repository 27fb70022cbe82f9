#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "kvshare/money/money.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {
namespace {

// The spelling as it is described: digit by digit from the fixed-width text.
std::string DescribedThaiWord(std::string_view digits) {
  constexpr std::string_view kDigits[] = {"",      "หนึ่ง"_th, "สอง"_th, "สาม"_th, "สี่"_th, "ห้า"_th,
                                          "หก"_th, "เจ็ด"_th, "แปด"_th, "เก้า"_th, "ยี่"_th, "เอ็ด"_th};
  constexpr std::string_view kPlaces[] = {"แสน"_th, "หมื่น"_th, "พัน"_th, "ร้อย"_th, "สิบ"_th, ""};
  std::string words;
  for (std::size_t i = 0; i < 6; ++i) {
    const int d = StrToInt(digits.substr(i, 1));
    if (d == 0) continue;
    int k = d;
    if (i == 4 && d < 3) k = d == 2 ? 10 : 0;
    if (i == 5 && d == 1 && digits[4] != '0') k = 11;
    words.append(kDigits[k]).append(kPlaces[i]);
  }
  return words;
}

std::string DescribedThaiNote(Currency amount) {
  const Currency a = TKovraMoney::RoundTo(amount, 2);
  if (a == 0_baht) return Format("(ศูนย์%s)"_th, {"ถ้วน"_th});
  const std::string s = TKovraMoney::StrZero(a, 16, 2);
  std::string r = DescribedThaiWord(Copy(s, 2, 6));
  if (!r.empty()) r += "ล้าน"_th;
  const std::string units = DescribedThaiWord(Copy(s, 8, 6));
  if (!units.empty() || !r.empty()) r.append(units).append("บาท"_th);
  const std::string_view satang = Copy(s, 15, 2);
  r += satang == "00" ? std::string("ถ้วน"_th)
                      : DescribedThaiWord(Format("0000%s", {satang})).append("สตางค์"_th);
  return Format("(%s)", {r});
}

std::string DescribedNumber(std::int64_t n) {
  constexpr std::string_view kUnits[] = {
      "",          "One ",     "Two ",     "Three ",     "Four ",     "Five ",    "Six ",
      "Seven ",    "Eight ",   "Nine ",    "Ten ",       "Eleven ",   "Twelve ",  "Thirteen ",
      "Fourteen ", "Fifteen ", "Sixteen ", "Seventeen ", "Eighteen ", "Nineteen "};
  constexpr std::string_view kTens[] = {"",       "Ten ",   "Twenty ",  "Thirty ", "Forty ",
                                        "Fifty ", "Sixty ", "Seventy ", "Eighty ", "Ninety "};
  if (n < 20) return std::string(n < 0 ? "" : kUnits[n]);
  if (n < 100) return std::string(kTens[n / 10]).append(DescribedNumber(n % 10));
  const std::int64_t scale = n < 1'000 ? 100 : n < 1'000'000 ? 1'000 : 1'000'000;
  const std::int64_t rest = n % scale;
  const char* name = scale == 100 ? "Hundred " : scale == 1'000 ? "Thousand " : "Million ";
  std::string words = DescribedNumber(n / scale).append(name);
  if (rest > 0 && rest < 100) words.append("and ");
  return words.append(DescribedNumber(rest));
}

std::string DescribedEngNote(Currency amount) {
  const std::string s = TKovraMoney::StrZero(TKovraMoney::RoundTo(amount, 2), 16, 2);
  const auto whole = static_cast<std::int32_t>(StrToInt64(Copy(s, 2, 12)));
  std::string satang(Copy(s, 15, 2));
  std::ranges::replace(satang, '.', '0');
  const std::string c = DescribedNumber(StrToInt(satang));
  std::string words = DescribedNumber(whole);
  return c.empty() ? words.append("Baht Only") : words.append("Baht ").append(c).append("Stang");
}

std::vector<Currency> Amounts() {
  std::vector<Currency> amounts;
  for (std::int64_t power = 10; power <= 1'000'000'000'000'000; power *= 10) {
    for (std::int64_t d : {-100, -50, -49, 0, 50, 100})
      amounts.push_back(Currency::FromRaw(power + d));
  }
  for (std::int64_t n = 0; n < 2'000; ++n) {  // every pair, and the last hundred of every group
    amounts.push_back(Currency::FromRaw(n * 100));
    amounts.push_back(Currency::FromInt(n));
    amounts.push_back(Currency::FromInt(n * 1'000'000));
  }
  std::mt19937_64 random(2546);
  for (int i = 0; i < 30'000; ++i) {
    amounts.push_back(Currency::FromRaw(
        static_cast<std::int64_t>((random() >> (random() % 50)) % 10'000'000'000'000'000)));
  }
  return amounts;
}

TEST(Words, AreAsDescribed) {
  FormatSettings = TFormatSettings::UsEnglish();
  std::string text;
  for (const Currency amount : Amounts()) {
    ASSERT_EQ(TKovraMoney::ThaiNote(amount), DescribedThaiNote(amount)) << amount.Raw();
    ASSERT_EQ(TKovraMoney::EngNote(amount), DescribedEngNote(amount)) << amount.Raw();
    ASSERT_EQ(TKovraMoney::ThaiNote(-amount).size(), TKovraMoney::ThaiNote(amount).size());
    text.assign(1, '>');
    TKovraMoney::AppendThaiNote(text, amount);
    TKovraMoney::AppendEngCrncy(text, amount, "Baht", "Stang");
    ASSERT_EQ(text,
              std::string(">").append(DescribedThaiNote(amount)).append(DescribedEngNote(amount)));
  }
}

// Past the twelve digits that are read: what is cut off there decides the words.
TEST(Words, EnglishOfAmountsPastTheirDigits) {
  FormatSettings = TFormatSettings::UsEnglish();
  std::mt19937_64 random(1968);
  for (int i = 0; i < 20'000; ++i) {
    const std::int64_t whole =
        10'000'000'000'000 + static_cast<std::int64_t>(random() % 90'000'000'000'000);
    const Currency amount = Currency::FromRaw(whole * Currency::kScale + i % 10'000);
    ASSERT_EQ(TKovraMoney::EngNote(amount), DescribedEngNote(amount)) << amount.Raw();
  }
}

TEST(Words, AUnitMayStandInTheTextThatGrows) {
  std::string text = "a dollar of a far country";
  TKovraMoney::AppendEngCrncy(text, 2.50_baht, text, std::string_view{text}.substr(9));
  EXPECT_EQ(text, "a dollar of a far countryTwo a dollar of a far country Fifty of a far country");
}

TEST(Words, WideAmountsSpellWhatTheSixteenPlacesHold) {
  struct Case {
    Currency amount;
    std::string_view thai;
    const char* why;
  };
  constexpr Case kCases[] = {
      {-1'000'000'000'001_baht, "(หนึ่งแสนล้านบาทถ้วน)"_th, "the last digit is cut off"},
      {-10'000'000'000'005_baht, "(หนึ่งแสนล้านบาทห้าสิบสตางค์)"_th, "a point is read as 0"},
      {-100'000'000'000'021_baht, "(หนึ่งแสนล้านบาทยี่สิบเอ็ดสตางค์)"_th, "whole digits as satang"},
      {1'000'000'000'000.0050_baht, "(ไม่สามารถแปลค่าเกินแสนล้านได้)"_th, "one satang past the limit"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(Cp874ToUtf8(TKovraMoney::ThaiNote(c.amount)), Cp874ToUtf8(c.thai)) << c.why;
    EXPECT_FALSE(TKovraMoney::ThaiNoteIsSafe(c.amount));
    EXPECT_FALSE(TKovraMoney::EngNoteIsSafe(c.amount));
  }
  EXPECT_EQ(TKovraMoney::EngNote(-1'000'000'000'001_baht),
            DescribedNumber(1'215'752'192).append("Baht Only"))
      << "10^11 modulo 2^32";
  EXPECT_EQ(TKovraMoney::EngNote(10'000'000'000'000_baht), "Baht Only");
  EXPECT_NO_THROW(TKovraMoney::EngNote(Currency::Max()) + TKovraMoney::ThaiNote(Currency::Min()));
}

TEST(Words, SafeAmountsEndWhereTheSpellingDoes) {
  EXPECT_TRUE(TKovraMoney::ThaiNoteIsSafe(999'999'999'999.9949_baht));
  EXPECT_FALSE(TKovraMoney::ThaiNoteIsSafe(999'999'999'999.995_baht)) << "rounds to 10^12";
  EXPECT_TRUE(TKovraMoney::EngNoteIsSafe(2'147'483'647.9949_baht));
  EXPECT_FALSE(TKovraMoney::EngNoteIsSafe(2'147'483'647.995_baht));
  EXPECT_TRUE(TKovraMoney::ThaiNoteIsSafe(-0.0049_baht)) << "rounds to zero";
  EXPECT_FALSE(TKovraMoney::EngNoteIsSafe(-0.01_baht));
}

TEST(ThaiWord, SpellsSixDigits) {
  for (int value = 0; value < 1'000'000; value += 37) {
    const std::string digits = Format("%.6d", {value});
    ASSERT_EQ(TKovraMoney::ThaiWord(digits), DescribedThaiWord(digits)) << digits;
  }
}

TEST(ThaiWord, RefusesWhatIsNotSixDigits) {
  for (const char* text : {"", "12345", "1234567", "12345 ", "$00001", "-00001", "0000.5"}) {
    EXPECT_THROW(TKovraMoney::ThaiWord(text), EConvertError) << text;
  }
}

}  // namespace
}  // namespace kvshare
