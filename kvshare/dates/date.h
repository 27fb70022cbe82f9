// The date service of the suite: calendar facts, texts in both eras, and typed dates read back.
//
// A date is always one of the Christian calendar. Where a text shows or carries another era, the
// caller gives the offset of its years: 543 for the Buddhist era, 0 for the Christian one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/types.h"

namespace kvshare {

inline constexpr int kBuddhistEraOffset = 543;

// Its one state is the date decoded last by SetKovraDate or by Year, Month and Day with an
// argument: a scratch area of the shared instance, not a value to rely on between calls. All other
// operations are static and keep nothing.
//
// Where not said otherwise, an operation throws what DecodeDate throws (EInvalidOp, EIntOverflow)
// for a moment that cannot be decoded; a moment before year 1 has year, month and day 0.
class KVSHARE_API TKovraDate {
 public:
  // Decodes the date into Year, Month and Day, 0 each before 0001-01-01. Throws what DecodeDate
  // throws and then leaves them as they were.
  void SetKovraDate(TDateTime D);

  // What was decoded last; 0 at first.
  Word Year() const { return year_; }
  Word Month() const { return month_; }
  Word Day() const { return day_; }

  // The same of a date, which is decoded first. Christian years.
  Word Year(TDateTime D);
  Word Month(TDateTime D);
  Word Day(TDateTime D);

  static bool IsLeapYear(TDateTime D);
  static Word DaysOfMonth(TDateTime D);  // 28 .. 31
  static Word DaysOfYear(TDateTime D);   // 365, 366

  // The date a month on (Delta >= 1) or back (Delta <= -1), its day clamped to that month's length;
  // 0 is D's own date. Only the sign counts below 28: the anchor is the end (the beginning, for 0
  // and below) of D's month plus Delta days. The time of day is dropped. Throws EConvertError past
  // the years 1 .. 9999.
  static TDateTime ChangeMonth(TDateTime D, std::int8_t Delta);
  static TDateTime NextMonth(TDateTime D);
  static TDateTime PrevMonth(TDateTime D);

  // The date with the day clamped to the month's length: 31 February 2004 is 29 February. Throws
  // EConvertError for other impossible dates.
  static TDateTime Encodedatedd(Word Year, Word Month, Word Day);

  // 1 January of this year, and 31 December twenty years on: a default range.
  static TDateTime FirstOfJanThisYear();
  static TDateTime EndYearFromFirstOfJan();

  // 543 where the machine shows Buddhist-era years (os::EraText), else 0.
  static int YearOffset();

  // ---- Texts. Separators and locale month names come from FormatSettings; a year has at least
  // four digits.

  // 15/07/2546 for 15 July 2003 and 543. A date that cannot be decoded shows today's.
  static std::string ShowDate(TDateTime D, Word Offset);
  static void AppendShowDate(std::string& Out, TDateTime D, Word Offset);
  static std::string ShowFullDate(TDateTime D, Word Offset);  // อ. 15/07/2546
  static std::string ShowDatetime(TDateTime D, Word Offset);  // 15/07/2546 14:05
  static void AppendShowDatetime(std::string& Out, TDateTime D, Word Offset);
  static std::string ShowMonthYear(TDateTime D, Word Offset);  // July, 2546: the locale's name
  // กรกฎาคม, 2546 (Language 0) or JULY, 2003; no name before year 1.
  static std::string ShowFullMonthYear(TDateTime D, int Offset, int Language);
  static std::string ShowTime(TDateTime D);  // 14:05
  static void AppendShowTime(std::string& Out, TDateTime D);
  // The locale's long name of month 1 .. 12; other months throw EConvertError.
  static std::string MonthName(int Month);

  // Fixed layouts, digits alone or with a literal slash (sl). 19 writes the Christian year, 25 the
  // Buddhist-era one. Two-digit years are the third and fourth digit of the year.
  static std::string yymmdd19(TDateTime D);      // 030715
  static std::string ddmmyy19(TDateTime D);      // 150703
  static std::string yymmdd25(TDateTime D);      // 460715
  static std::string yyyymmdd19(TDateTime D);    // 20030715
  static std::string yyyymmdd25(TDateTime D);    // 25460715
  static std::string ddmmyyyy19(TDateTime D);    // 15072003
  static std::string ddmmyyyy25(TDateTime D);    // 15072546
  static std::string mmddyyyy19(TDateTime D);    // 07152003
  static std::string ddmmyyyysl25(TDateTime D);  // 15/07/2546
  static std::string mmddyyyysl19(TDateTime D);  // 07/15/2003

  // Stamps: 200307151405, and 2003071514050987 (to hundredths of a second).
  static std::string KovraDateTimeToStr(TDateTime D);
  static std::string KovraTimeStampStr(TDateTime D);

  // Zero-padded text of at least Width characters, Decimals among them; never cut. Through Format,
  // so a Width with no room for the whole part throws its EConvertError. Throws EInvalidOp for a
  // value past 64 bits.
  static std::string StrZero(double Value, int Width, int Decimals);

  // ---- Typed dates. The tolerant readers give false and leave D as it was.

  // dd/mm/yyyy where the first separator is the third byte, else yyyy/mm/dd; `/`, or `-` where the
  // text has no `/`. A year below 100 lies in the century 2500 (with an offset) or 2000. The year
  // is a 16-bit number, from which the offset is then taken.
  static bool StrToKovraDate(std::string_view Text, Word YearOffset, TDateTime& D);
  static bool IsDate(std::string_view Text, Word YearOffset);
  // The parsed date, or today's.
  static TDateTime ActualDate(std::string_view Text, Word YearOffset);

  // day/month/year of any number of digits; a year more than 100 years off this one is of the
  // Buddhist era, one more than 1000 years off has 543 added twice.
  static bool ForceStrToKovraDate(std::string_view Text, TDateTime& D);
  // The same as of another year, for texts that keep the year they were typed in.
  static bool ForceStrToKovraDateAsOf(std::string_view Text, int CurrentYear, TDateTime& D);

  // The place of the N-th occurrence, from 1, overlaps counted; 0 when there are fewer.
  static int BStrPos(std::string_view SubStr, std::string_view S, int N);

  // Stamps and keys: digits at fixed places, what follows is ignored. They throw EConvertError for
  // other bytes and for impossible dates and times.
  static TDateTime KovraStrToDateTime(std::string_view S);  // 200307151405
  static TDateTime KovraStrToDate(std::string_view S);      // 20030715
  static TDateTime KovraStrToTime(std::string_view S);      // the time of 200307151405
  static TDateTime yyyymmddToDate(std::string_view S);      // 2003-07-15, any separators

 private:
  Word year_ = 0;
  Word month_ = 0;
  Word day_ = 0;
};

// Created by Initialize, freed by Finalize.
extern KVSHARE_API TKovraDate* KovraDate;

}  // namespace kvshare
