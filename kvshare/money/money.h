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
inline constexpr int kRoundModes = mrUpto100Baht + 1;
inline constexpr int kPriceRoundCodes = 13;  // of the shorter price list

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
  // -2.35. Four digits and more (ten and more too) return the amount as it is, a negative count is
  // taken as 0. Throws EIntOverflow where the result leaves Currency's range.
  static Currency RoundTo(Currency Amount, int Digits);

  // Exact equality, without a tolerance: the two amounts have the same text with eight decimals.
  static bool IsEqual(Currency A, Currency B);

  // Share = Amount * Percent / 100 (half to even at four decimals), then RoundTo(Share, 2);
  // Rest = Amount - Share, so that the two always add up: 33.33 and 66.67 for 33.3333 % of 100.
  // Throws EIntOverflow where either leaves Currency's range; then neither is written.
  static void ShareValue(Currency Amount, Currency Percent, Currency& Share, Currency& Rest);

  // Thai words of six decimal digits, without a unit word; "" for "000000". 11, 21 .. 91 end in
  // "เอ็ด", 101 and 1001 in "หนึ่ง". Throws EConvertError `'%s' is not a valid integer value` for a
  // byte that is no digit, and `ThaiWord expects six digits` for a text of another length.
  static std::string ThaiWord(std::string_view Digits);

  // The amount, half up to satang, in Thai words in brackets: (หนึ่งพันสองร้อยบาทถ้วน). The magnitude
  // is spelled, without a word for the sign. An amount past 1,000,000,000,000.00 gives a message in
  // brackets; exactly that amount gives (ถ้วน). From -1,000,000,000,000.00 down the words are wrong:
  // StrZero(amount, 16, 2) is read, whose end is cut off there; a decimal point in the places of
  // the satang counts as 0. Ask ThaiNoteIsSafe first. Throws nothing of its own.
  static std::string ThaiNote(Currency Amount);
  static void AppendThaiNote(std::string& Out, Currency Amount);

  // Whether ThaiNote and EngNote spell exactly this amount: not negative, below 10^12 (Thai) and
  // below 2,147,483,648 (English) once rounded to satang. Check before printing a cheque.
  static bool ThaiNoteIsSafe(Currency Amount);
  static bool EngNoteIsSafe(Currency Amount);

  // English words of 1 .. 2,147,483,647, each followed by a blank: `One Hundred and Five `; "" for
  // 0 and below. There is no word for a thousand million: `Two Thousand Million `.
  static std::string NumToWords(std::int32_t N);

  // `One Thousand Two Hundred and Thirty Four Baht Fifty Stang`, `Twelve Baht Only`, `Baht Only`;
  // the magnitude, half up to the hundredth, without a word for the sign. From 2,147,483,648 baht
  // up the words are wrong: the low 32 bits of the whole part are spelled, of the twelve digits
  // that StrZero(amount, 16, 2) keeps as ThaiNote reads them. EngCrncy takes the caller's unit
  // names.
  static std::string EngNote(Currency Amount);
  static void AppendEngNote(std::string& Out, Currency Amount);
  static std::string EngCrncy(Currency Amount, std::string_view UnitName,
                              std::string_view SubUnitName);
  static void AppendEngCrncy(std::string& Out, Currency Amount, std::string_view UnitName,
                             std::string_view SubUnitName);

  // Fixed-width, zero-padded, with FormatSettings' decimal separator: StrZero(-1234.5, 16, 2) is
  // -000000001234.50. A text too long keeps its first Width bytes; an amount between -1 and 0 loses
  // its sign; a fraction that rounds up does not carry (1.999 is 00001.00 at width 8); decimals
  // past the fourth are zeros.
  //
  // The whole part goes through Format("%w.wd"), w being Width less the other characters, and so:
  // a Width with no room for them (w < 0) throws Format's EConvertError; where w is above 32, which
  // Format ignores, the zeros of a negative amount stand before its sign. Above 18, Decimals give
  // blanks and two decimals. Both arguments count as 32767 from there up, -32767 from there down.
  static std::string StrZero(Currency Amount, int Width, int Decimals);
  static void AppendStrZero(std::string& Out, Currency Amount, int Width, int Decimals);

  // Qty base units as packs of Factor, twelve wide with thousands, and loose units with as many
  // digits as the whole part of Factor is written with, one more when it has a fraction: of (12,
  // 29) eleven blanks and `2.05`; of (12, -29) `          -2.-05`. Both count toward zero. Throws
  // EZeroDivide for a Factor of 0 (EInvalidOp when Qty is 0 too), EIntOverflow where packs or loose
  // units pass 32 bits.
  static std::string ReformatQty(Currency Factor, Currency Qty);

  // The same as a number: the packs (Part is 1), the loose units (2), both (3: 2.05); 0 for another
  // value. Loose units of five digits and more lose those past the fourth decimal. Errors as
  // ReformatQty, whatever is asked for.
  static Currency ShowQty(Currency Factor, Currency Qty, int Part);

  // The quantity text of a stock-keeping unit. 29 pieces in boxes of 12:
  //   Mode 1, Style: 1 `29` twelve wide, 2 `2+5`, 3 `2*12+5`, 4 `2+5/12`; a Factor of 1 gives 1.
  //   Mode 2, EqStyle: 1 .. 4 the same; 5 .. 8 the same and Qty * Rate: `2+5=14.500000`.
  // Decimals hold for plain quantity and rest; with 0 the plain quantity is cut, not rounded.
  // "" for other values, for a Factor of 0, for a Rate that is no number (in mode 1 too), negative
  // Decimals, and packs out of Currency's range. Qty * Rate is exact up to 922,337,203,685,477
  // unless Rate has an exponent; then it is real arithmetic.
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
// A mode that is not listed gives the row of mrNoRound.
KVSHARE_API const TRoundModeInfo& RoundModeInfo(TKovraMoneyRound Mode);
// The mode of a name in any letter case, or nullptr.
KVSHARE_API const TRoundModeInfo* FindRoundMode(std::string_view Name);

// Numerator / Denominator ten-thousandths, rounded once by the mode: a value just below a tie in the
// fifth decimal does not reach it, one just above a step goes up. Modes of four decimals and more,
// mrNoRound and unknown modes give the nearest ten-thousandth, a tie to the even one.
// |Numerator| < 2^126, Denominator > 0. Throws EIntOverflow where the result leaves Currency's range.
KVSHARE_API Currency RoundQuotient(Int128 Numerator, Int128 Denominator, TKovraMoneyRound Mode);

}  // namespace kvshare
