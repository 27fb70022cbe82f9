// Amounts in English words.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/money/money.h"
#include "kvshare/money/words.h"
#include "kvshare/rtl/within.h"

namespace kvshare {

namespace {

using words::Put;
using words::PutText;

// Every word brings its trailing blank, so that words join without separators.
constexpr std::array<std::string_view, 20> kUnitWords = {
    "",          "One ",     "Two ",     "Three ",     "Four ",     "Five ",    "Six ",
    "Seven ",    "Eight ",   "Nine ",    "Ten ",       "Eleven ",   "Twelve ",  "Thirteen ",
    "Fourteen ", "Fifteen ", "Sixteen ", "Seventeen ", "Eighteen ", "Nineteen "};
constexpr std::array<std::string_view, 10> kTensWords = {"",        "Ten ",   "Twenty ", "Thirty ",
                                                         "Forty ",  "Fifty ", "Sixty ",  "Seventy ",
                                                         "Eighty ", "Ninety "};
constexpr std::string_view kHundred = "Hundred ";
constexpr std::string_view kThousand = "Thousand ";
constexpr std::string_view kMillion = "Million ";
constexpr std::string_view kAnd = "and ";

constexpr auto kBelowHundred = [] {
  std::array<words::Slot<16>, 100> slots{};
  for (std::size_t n = 0; n < slots.size(); ++n) {
    if (n >= kUnitWords.size()) slots[n].Add(kTensWords[n / 10]);
    slots[n].Add(kUnitWords[n < kUnitWords.size() ? n : n % 10]);
  }
  return slots;
}();

// `[n]` for a number that ends in 00, `[10 + n]` with the "and " before its rest.
constexpr std::size_t kSlotSize = 24;
constexpr auto kHundreds = [] {
  std::array<words::Slot<kSlotSize>, 20> slots{};
  for (std::size_t n = 1; n < 10; ++n) {
    slots[n].Add(kUnitWords[n]);
    slots[n].Add(kHundred);
    slots[10 + n] = slots[n];
    slots[10 + n].Add(kAnd);
  }
  return slots;
}();

char* PutBelowThousand(char* out, unsigned n) {
  const unsigned rest = n % 100;
  out = Put(out, kHundreds[n / 100 + (rest > 0 ? 10 : 0)]);
  return Put(out, kBelowHundred[rest]);
}

char* PutBelowMillion(char* out, unsigned n) {
  if (n < 1'000) return PutBelowThousand(out, n);
  out = PutText(PutBelowThousand(out, n / 1'000), kThousand);
  n %= 1'000;
  if (n > 0 && n < 100) out = PutText(out, kAnd);
  return PutBelowThousand(out, n);
}

// No word for a thousand million: 2,000,000,000 is Two Thousand Million.
char* PutNumber(char* out, std::int32_t number) {
  if (number <= 0) return out;
  auto n = static_cast<unsigned>(number);
  if (n < 1'000'000) return PutBelowMillion(out, n);
  out = PutText(PutBelowMillion(out, n / 1'000'000), kMillion);
  n %= 1'000'000;
  if (n > 0 && n < 100) out = PutText(out, kAnd);
  return PutBelowMillion(out, n);
}

// The longest words: 45 bytes of 1,373 and 8 of Million, 32 of 373 and 9 of Thousand, 32 of 373;
// then 14 of 73 hundredths, 10 of the unit words. A slot is written whole.
constexpr std::size_t kNoteSize = 150 + kSlotSize;

struct Numbers {
  std::int32_t whole;  // the low 32 bits survive
  std::int32_t hundredths;
};
Numbers NumbersOf(Currency amount) {
  const words::Digits digits = words::DigitsOf(TKovraMoney::RoundTo(amount, 2));
  return {static_cast<std::int32_t>(static_cast<std::uint32_t>(digits.whole)),
          static_cast<std::int32_t>(digits.hundredths)};
}

char* PutNote(char* out, Currency amount) {
  const Numbers numbers = NumbersOf(amount);
  out = PutNumber(out, numbers.whole);
  if (numbers.hundredths == 0) return PutText(out, "Baht Only");
  out = PutText(out, "Baht ");
  out = PutNumber(out, numbers.hundredths);
  return PutText(out, "Stang");
}

}  // namespace

std::string TKovraMoney::NumToWords(std::int32_t N) {
  std::array<char, kNoteSize> text;
  return {text.data(), PutNumber(text.data(), N)};
}

std::string TKovraMoney::EngNote(Currency Amount) {
  std::array<char, kNoteSize> text;
  return {text.data(), PutNote(text.data(), Amount)};
}

void TKovraMoney::AppendEngNote(std::string& Out, Currency Amount) {
  std::array<char, kNoteSize> text;
  Out.append(text.data(), PutNote(text.data(), Amount));
}

std::string TKovraMoney::EngCrncy(Currency Amount, std::string_view UnitName,
                                  std::string_view SubUnitName) {
  std::string text;
  text.reserve(kNoteSize + UnitName.size() + SubUnitName.size());
  AppendEngCrncy(text, Amount, UnitName, SubUnitName);
  return text;
}

void TKovraMoney::AppendEngCrncy(std::string& Out, Currency Amount, std::string_view UnitName,
                                 std::string_view SubUnitName) {
  if (LiesIn(UnitName, Out) || LiesIn(SubUnitName, Out)) {
    Out += EngCrncy(Amount, UnitName, SubUnitName);
    return;
  }
  const Numbers numbers = NumbersOf(Amount);
  std::array<char, kNoteSize> text;
  Out.append(text.data(), PutNumber(text.data(), numbers.whole)).append(UnitName);
  if (numbers.hundredths == 0) {
    Out.append(" Only");
    return;
  }
  Out.append(" ").append(text.data(), PutNumber(text.data(), numbers.hundredths));
  Out.append(SubUnitName);
}

bool TKovraMoney::EngNoteIsSafe(Currency Amount) {
  const Currency satang = RoundTo(Amount, 2);
  return satang >= 0_baht && satang < 2'147'483'648_baht;
}

}  // namespace kvshare
