#include "kvshare/rtl/formatdatetime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "formats.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare {
namespace {

TDateTime Moment(int hour, int minute, int second = 0, int milliSecond = 0) {
  return JoinDateTime(EncodeDate(2003, 7, 15), EncodeTime(hour, minute, second, milliSecond));
}

struct Case {
  std::string_view pattern, want;
  const char* why = "";
};

template <std::size_t N>
void ExpectAll(const Case (&cases)[N], TDateTime moment, const TFormatSettings& settings) {
  for (const Case& c : cases) {
    EXPECT_EQ(FormatDateTime(c.pattern, moment, settings), c.want) << c.pattern << ": " << c.why;
  }
}

TEST(FormatDateTime, Tokens) {
  constexpr Case kCases[] = {
      {"", "15/07/2003 02:05:09 pm", "empty is c"},
      {"c", "15/07/2003 02:05:09 pm"},
      {"ccc", "15/07/2003 02:05:09 pm", "one token"},
      {"d dd ddd dddd", "15 15 Tue Tuesday"},
      {"ddddd|dddddd|DDDDDDD", "15/07/2003|Tuesday, July 15, 2003|Tuesday, July 15, 2003"},
      {"m mm mmm mmmm mmmmm", "7 07 Jul July July"},
      {"y yy yyy yyyy yyyyy", "03 03 2003 2003 2003"},
      {"h hh hhh n nn nnn s ss sss", "14 14 14 5 05 05 9 09 09"},
      {"z zz zzz zzzz", "7 07 007 007", "a number, not a fraction"},
      {"t tt", "02:05 pm 02:05:09 pm"},
      {"am/pm AM/PM Am/Pm a/p A/P", "pm PM Pm p P", "as spelled"},
      {"ampm AMPM", "pm pm", "the settings' words"},
      {"aaa aaaa AAAA a aa", "Tue Tuesday Tuesday a aa"},
      {"g gg e eeee", "  2003 2003", "no eras"},
      {"'d' \"m\"d'it\"s'", "d m15it\"s", "the other quote is text"},
      {"d'mm", "15mm", "an open quote runs to the end"},
      {"d'", "15"},
      {"dD Mm", "1515 77", "a run is of one same byte"},
      {"yyyy-mm-dd", "2003-07-15"},
      {"YYYYMMDDHHNNSSZZZ", "20030715140509007"},
      {"DD-?-YYYY", "15-?-2003"},
      {"[1.2] q \\%", "[1.2] q \\%", "every other byte is itself"},
      {"วันที่ d เดือน m"_th, "วันที่ 15 เดือน 7"_th, "Thai bytes too"},
      {std::string_view("d\0d", 3), std::string_view("15\00015", 5), "a null byte too"},
  };
  ExpectAll(kCases, Moment(14, 5, 9, 7), SuiteFormats());
}

TEST(FormatDateTime, MinutesFollowAnHour) {
  constexpr Case kCases[] = {
      {"dd/mm/yyyy hh:mm", "15/07/2003 14:05"},
      {"MM/DD/YYYY HH:MM:SS", "07/15/2003 14:05:09"},
      {"hh-mm-mm", "14-05-07", "minutes count as n"},
      {"hh:nn mm", "14:05 07"},
      {"mm:ss", "07:09", "the month before seconds alone"},
      {"hh\"x\"mm", "14x05", "quoted letters do not count"},
      {"hhxmm", "14x07", "unknown letters do"},
      {"hh12 mm", "1412 05", "digits do not"},
      {"hๆmm"_th, "14ๆ05"_th, "nor Thai"},
      {"hmmmm", "1405", "however many"},
      {"h am/pm mm", "2 pm 07", "a noon marker does"},
      {"h t mm", "14 02:05 pm 07", "so does an expansion, whatever is in it"},
  };
  ExpectAll(kCases, Moment(14, 5, 9), SuiteFormats());
}

TEST(FormatDateTime, TwelveHourClock) {
  struct Hour {
    int hour;
    std::string_view pattern, want;
    const char* why;
  };
  constexpr Hour kCases[] = {
      {14, "ampm h", "pm 2", "a marker already printed"},
      {14, "am/pm h A/P hh", "pm 2 P 02", "spelled in the pattern"},
      {14, "h h ampm", "14 2 pm", "an hour looks as far as the next hour"},
      {14, "h 'am/pm'", "14 am/pm", "a quoted marker is text"},
      {14, "h 'a' a/p", "2 a p", "past quoted text"},
      {14, "h \"it's\" ampm", "2 it's pm", "a quote within the other kind opens nothing"},
      {14, "h 'h' ampm", "14 h pm", "a quoted hour ends the look-ahead"},
      {14, "h a ampm", "14 a pm", "so does the first other a"},
      {14, "h ampm t h", "2 pm 14:05 2", "an expansion does not see it"},
      {0, "h ampm", "12 am", "midnight"},
      {12, "h ampm", "12 pm", "noon"},
      {13, "hh AM/PM", "01 PM", ""},
      {11, "hh A/P", "11 A", ""},
  };
  TFormatSettings formats = SuiteFormats();
  formats.ShortTimeFormat = "h:nn";
  for (const Hour& c : kCases) {
    EXPECT_EQ(FormatDateTime(c.pattern, Moment(c.hour, 5), formats), c.want) << c.why;
  }
}

TEST(FormatDateTime, ExpansionsAreOneLevelDeep) {
  TFormatSettings formats = SuiteFormats();
  formats.ShortDateFormat = "yy[cdddddtt]";
  formats.LongTimeFormat = "h'u'n'[c]'t";
  formats.DateSeparator = '\0';
  formats.TimeSeparator = '.';
  constexpr Case kCases[] = {
      {"c", "03[] 14u5[c]", "deeper ones print nothing"},
      {"ddddd", "03[]", ""},
      {"h ddddd mm", "14 03[] 07", "the last letter is the token's own"},
      {"d/m hh:nn", "157 14.05", "a separator of zero is left out"},
  };
  ExpectAll(kCases, Moment(14, 5, 9), formats);
  EXPECT_EQ(FormatDateTime("c", Moment(0, 0, 0, 999), formats), "03[]")
      << "the time is left out when hour, minute and second are all zero";
}

TEST(FormatDateTime, EndsOfTheCalendar) {
  struct End {
    double days;
    std::string_view pattern, want;
  };
  constexpr End kCases[] = {
      {-693594, "dd/mm/yyyy yy", "00/00/0000 00"},
      {-693594, "mmm.mmmm.ddd.aaaa", "..."},
      {-700000.25, "d hh:nn", "0 06:00"},
      {-693593, "dd/mm/yyyy", "01/01/0001"},
      {-1.25, "dd/mm/yyyy hh:nn", "29/12/1899 06:00"},
      {2958466, "yyyy yy", "10000 00"},
      {23000000, "yyyy", "64871"},
  };
  for (const End& c : kCases) {
    EXPECT_EQ(FormatDateTime(c.pattern, TDateTime(c.days), SuiteFormats()), c.want);
  }
  const TFormatSettings formats = SuiteFormats();
  EXPECT_THROW(FormatDateTime("'text'", TDateTime(std::nan("")), formats), EInvalidOp);
  EXPECT_THROW(FormatDateTime("d", TDateTime(4294967296.0), formats), EIntOverflow);
}

TEST(FormatDateTime, AppendsAtMost256Bytes) {
  const TFormatSettings formats = SuiteFormats();
  std::string out = "due ";
  AppendFormatDateTime(out, "dd/mm/yyyy", Moment(1, 2), formats);
  EXPECT_EQ(out, "due 15/07/2003");

  AppendFormatDateTime(out, "'" + std::string(250, '-') + "'mmmm dddd", Moment(1, 2), formats);
  EXPECT_EQ(out, "due 15/07/2003" + std::string(250, '-') + "July T") << "cut inside a name";

  const std::string hours(1 << 20, 'h');
  const std::string text = FormatDateTime(hours + "'" + hours, Moment(1, 2), formats);
  EXPECT_EQ(text, "01" + std::string(254, 'h'));
}

}  // namespace
}  // namespace kvshare
