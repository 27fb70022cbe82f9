// The money service: baht rounding, shares, amounts in words, quantities as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

// How an amount is rounded. Settings and database columns hold the ordinal as a Word.
enum TKovraMoneyRound : std::uint8_t {
  mrNoRound,
  mrDownToBaht,
  mrNearBaht,
  mrUpToBaht,
  mrDownTo25,
  mrNear25,
  mrUpTo25,
  mrDownTo50,
  mrNear50,
  mrUpTo50,
  mrOneDigits,
  mrTwoDigits,
  mrThreeDigits,
  mrFourDigits,
  mrFiveDigits,
  mrSixDigits,
  mrDownTo5Baht,
  mrNear5Baht,
  mrUpto5Baht,
  mrDownTo10Baht,
  mrNear10Baht,
  mrUpto10Baht,
  mrDownTo50Baht,
  mrNear50Baht,
  mrUpto50Baht,
  mrDownTo100Baht,
  mrNear100Baht,
  mrUpto100Baht
};
inline constexpr int kRoundModes = 28;

// Stateless; every operation is static. The library creates one instance, KovraMoney.
class KVSHARE_API TKovraMoney {
 public:
  // Rounds Amount by Mode: "down" goes toward zero, "up" away from it, and so does a tie in a
  // "near" mode: Round_Baht(-12.50, mrNearBaht) is -13.00. An unknown mode or code changes nothing.
  // Throws EIntOverflow where the result leaves Currency's range.
  static Currency Round_Baht(Currency Amount, TKovraMoneyRound Mode);
  static Currency Round_Baht(Currency Amount, Word Code);

  // The mode of a stored code, by the full list (0 .. 27) and by the shorter price list (0 .. 12:
  // the first seven modes, then one to six digits). Any other code gives mrNoRound.
  static TKovraMoneyRound RoundType(Word Code);
  static TKovraMoneyRound PrRoundType(Word Code);

  // Half up on the magnitude to `Digits` decimals, on the decimal digits: RoundTo(-2.345, 2) is
  // -2.35. Four digits and more return the amount as it is, a negative count is taken as 0.
  // Throws EIntOverflow where the result leaves Currency's range.
  static Currency RoundTo(Currency Amount, int Digits);

  // Exact equality, without a tolerance.
  static bool IsEqual(Currency A, Currency B);

  // Share = Amount * Percent / 100 (half to even at four decimals), then RoundTo(Share, 2);
  // Rest = Amount - Share, so that the two always add up. Throws EIntOverflow.
  static void ShareValue(Currency Amount, Currency Percent, Currency& Share, Currency& Rest);

  // Thai words of six decimal digits, without a unit word; "" for "000000". Throws EConvertError
  // for a byte that is no digit, and for a text that is not six bytes long.
  static std::string ThaiWord(std::string_view Digits);

  // The amount in Thai words in brackets: (หนึ่งพันสองร้อยบาทถ้วน). The magnitude is spelled, without
  // a word for the sign. An amount past 1,000,000,000,000.00 gives a message in brackets; exactly
  // that amount gives (ถ้วน), and -1,000,000,000,000.00 and below give words of the low twelve
  // digits only: see ThaiNoteIsSafe.
  static std::string ThaiNote(Currency Amount);
  static void AppendThaiNote(std::string& Out, Currency Amount);

  // Whether ThaiNote and EngNote spell exactly this amount: not negative, below 10^12 (Thai) and
  // below 2,147,483,648 (English) once rounded to satang. Check before printing a cheque.
  static bool ThaiNoteIsSafe(Currency Amount);
  static bool EngNoteIsSafe(Currency Amount);

  // English words of 1 .. 2,147,483,647, each followed by a blank; "" for 0 and below.
  static std::string NumToWords(std::int32_t N);

  // `One Thousand Two Hundred and Thirty Four Baht Fifty Stang`, `Twelve Baht Only`; the magnitude,
  // without a word for the sign. From 2,147,483,648 baht up only the low 32 bits of the whole part
  // are spelled. EngCrncy takes the caller's unit names.
  static std::string EngNote(Currency Amount);
  static void AppendEngNote(std::string& Out, Currency Amount);
  static std::string EngCrncy(Currency Amount, std::string_view UnitName,
                              std::string_view SubUnitName);
  static void AppendEngCrncy(std::string& Out, Currency Amount, std::string_view UnitName,
                             std::string_view SubUnitName);

  // Fixed-width, zero-padded: StrZero(-1234.5, 16, 2) is -000000001234.50. A text too long keeps
  // its first Width bytes; an amount between -1 and 0 loses its sign; a fraction that rounds up
  // does not carry. Width below 1 gives ""; Width and Decimals above 32767 count as 32767;
  // decimals past the fourth are zeros, and past the eighteenth the fraction has two.
  static std::string StrZero(Currency Amount, int Width, int Decimals);
  static void AppendStrZero(std::string& Out, Currency Amount, int Width, int Decimals);

  // Qty base units as packs of Factor and loose units: of (12, 29) eleven blanks and `2.05`.
  // Throws EZeroDivide or EInvalidOp for a factor of 0, EIntOverflow past 32 bits.
  static std::string ReformatQty(Currency Factor, Currency Qty);

  // The same as a number: Part 1 packs, 2 loose units, 3 both (2.05), other values 0.
  static Currency ShowQty(Currency Factor, Currency Qty, int Part);

  // The quantity text of a stock-keeping unit. Mode 1 uses Style 1 .. 4, mode 2 EqStyle 1 .. 8 with
  // Rate; "" for other values, for a Factor of 0 and for a Rate that is no number.
  static std::string ShowSkuQty(int Mode, int Style, int Decimals, int EqStyle, Currency Qty,
                                Currency Factor, std::string_view Rate);

  // Whether StrToInt64 and StrToFloat accept the text.
  static bool IsInteger(std::string_view S);
  static bool IsFloat(std::string_view S);

  // N copies of C; "" for N <= 0.
  static std::string Replicate(char C, int N);
};

// Created by Initialize, freed by Finalize.
extern KVSHARE_API TKovraMoney* KovraMoney;

// A rounding mode as a program lists it.
struct TRoundModeInfo {
  TKovraMoneyRound Mode;
  std::string_view Name;  // "mrNearBaht"
  Word Caption;           // identifier of its caption in the message catalogue
};
// `Mode` is one of the 28; others give the row of mrNoRound.
KVSHARE_API const TRoundModeInfo& RoundModeInfo(TKovraMoneyRound Mode);
// The mode of a name in any letter case, or nullptr.
KVSHARE_API const TRoundModeInfo* FindRoundMode(std::string_view Name);

}  // namespace kvshare
