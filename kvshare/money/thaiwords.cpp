// Amounts in Thai words.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/money/money.h"
#include "kvshare/money/words.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {

namespace {

using words::Put;
using words::PutText;

// The two of twenty and the one after a ten have words of their own.
constexpr unsigned kTwoOfTwenty = 10;
constexpr unsigned kFinalOne = 11;
constexpr std::array<std::string_view, 12> kDigitWords = {"",       "หนึ่ง"_th, "สอง"_th, "สาม"_th,
                                                          "สี่"_th,   "ห้า"_th,  "หก"_th,  "เจ็ด"_th,
                                                          "แปด"_th, "เก้า"_th, "ยี่"_th,   "เอ็ด"_th};

// By the position 1 .. 6 inside a group of six digits, hundred thousands first.
constexpr std::size_t kTens = 5;
constexpr std::size_t kUnits = 6;
constexpr std::array<std::string_view, 7> kPlaceWords = {"",       "แสน"_th, "หมื่น"_th, "พัน"_th,
                                                         "ร้อย"_th, "สิบ"_th,  ""};

constexpr std::string_view kMillion = "ล้าน"_th;
constexpr std::string_view kBahtWord = "บาท"_th;
constexpr std::string_view kSatang = "สตางค์"_th;
constexpr std::string_view kExactly = "ถ้วน"_th;
constexpr std::string_view kZero = "(ศูนย์ถ้วน)"_th;
constexpr std::string_view kTooLarge = "(ไม่สามารถแปลค่าเกินแสนล้านได้)"_th;

constexpr std::size_t kSlotSize = 16;
using ThaiSlot = words::Slot<kSlotSize>;

// The words of one digit at its position. "เอ็ด" asks for the tens digit of its own group alone: 101
// and 1,000,001 end in "หนึ่ง".
constexpr void AddDigit(ThaiSlot& slot, std::size_t position, unsigned digit, unsigned tens) {
  if (digit == 0) return;
  unsigned word = digit;
  if (position == kTens && digit == 1) word = 0;
  if (position == kTens && digit == 2) word = kTwoOfTwenty;
  if (position == kUnits && digit == 1 && tens != 0) word = kFinalOne;
  slot.Add(kDigitWords[word]);
  slot.Add(kPlaceWords[position]);
}

using PlaceSlots = std::array<ThaiSlot, 10>;
consteval PlaceSlots PlaceTable(std::size_t position) {
  PlaceSlots slots{};
  for (unsigned digit = 0; digit < 10; ++digit) AddDigit(slots[digit], position, digit, 0);
  return slots;
}
constexpr PlaceSlots kHundredThousandWords = PlaceTable(1);
constexpr PlaceSlots kTenThousandWords = PlaceTable(2);
constexpr PlaceSlots kThousandWords = PlaceTable(3);
constexpr PlaceSlots kHundredWords = PlaceTable(4);

constexpr auto kPairWords = [] {  // tens and units
  std::array<ThaiSlot, 100> slots{};
  for (unsigned pair = 0; pair < 100; ++pair) {
    AddDigit(slots[pair], kTens, pair / 10, 0);
    AddDigit(slots[pair], kUnits, pair % 10, pair / 10);
  }
  return slots;
}();

// At most 46 bytes; `value` is below 1,000,000.
char* PutGroup(char* out, unsigned value) {
  if (value >= 1'000) {
    out = Put(out, kHundredThousandWords[value / 100'000]);
    out = Put(out, kTenThousandWords[value / 10'000 % 10]);
    out = Put(out, kThousandWords[value / 1'000 % 10]);
  }
  out = Put(out, kHundredWords[value / 100 % 10]);
  return Put(out, kPairWords[value % 100]);
}

// Two groups, their unit words, satang and brackets are at most 118 bytes; a slot is written whole.
constexpr std::size_t kNoteSize = 118 + kSlotSize;

char* PutNote(char* out, Currency amount) {
  const Currency satang = TKovraMoney::RoundTo(amount, 2);
  if (satang == 0_baht) return PutText(out, kZero);
  if (satang > 1'000'000'000'000_baht) return PutText(out, kTooLarge);

  const words::Digits digits = words::DigitsOf(satang);
  const auto millions = static_cast<unsigned>(digits.whole / 1'000'000);
  const auto units = static_cast<unsigned>(digits.whole % 1'000'000);
  *out++ = '(';
  if (millions != 0) out = PutText(PutGroup(out, millions), kMillion);
  if (digits.whole != 0) out = PutText(PutGroup(out, units), kBahtWord);
  if (digits.hundredths == 0) {
    out = PutText(out, kExactly);
  } else {
    out = PutText(Put(out, kPairWords[digits.hundredths]), kSatang);
  }
  *out++ = ')';
  return out;
}

}  // namespace

std::string TKovraMoney::ThaiWord(std::string_view Digits) {
  if (Digits.size() != 6) throw EConvertError("ThaiWord expects six digits");
  unsigned value = 0;
  for (std::size_t i = 0; i < Digits.size(); ++i) {
    value = value * 10 + static_cast<unsigned>(StrToInt(Digits.substr(i, 1)));
  }
  std::array<char, kNoteSize> text;
  return {text.data(), PutGroup(text.data(), value)};
}

std::string TKovraMoney::ThaiNote(Currency Amount) {
  std::array<char, kNoteSize> text;
  return {text.data(), PutNote(text.data(), Amount)};
}

void TKovraMoney::AppendThaiNote(std::string& Out, Currency Amount) {
  std::array<char, kNoteSize> text;
  Out.append(text.data(), PutNote(text.data(), Amount));
}

bool TKovraMoney::ThaiNoteIsSafe(Currency Amount) {
  const Currency satang = RoundTo(Amount, 2);
  return satang >= 0_baht && satang < 1'000'000'000'000_baht;
}

}  // namespace kvshare
