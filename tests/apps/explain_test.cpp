#include "apps/kvshare/commands/explain.h"

#include <gtest/gtest.h>

#include "apps/kvshare/log/moments.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/cp874.h"
#include "tests/apps/tempfile.h"

namespace kvshare::app {
namespace {

const TDateTime kToday = EncodeDate(2026, 11, 25);

std::string Told(const Reading& reading) {
  std::string text = std::string(reading.reader) + ": ";
  if (reading.moment) AppendIso(text, *reading.moment);
  text += "|" + reading.why;
  for (const std::string& warning : reading.warnings) text += "|" + warning;
  return text;
}

TEST(ExplainDate, RulesAndWarnings) {
  struct Case {
    std::string text;
    std::size_t reader;  // 543, 0, loose, stamp
    std::string want;
  };
  const std::string era0 = "era 0: ";
  const std::string era543 = "era 543: ";
  const std::string twice = " looks like a year to which 543 was added twice: it would be 2003";
  const Case cases[] = {
      {"15-07-46", 0,
       era543 + "2003-07-15|day first; the year 46 stands for 2546; 2546 less 543 is 2003"},
      {"2003/07/15", 1, era0 + "2003-07-15|year first"},
      {"5/07/2546", 1,
       era0 + "|year first, as the first part has not two characters but 1; the year 5 stands for "
              "2005; "
              "month 7 of 2005 has 31 days, and no day 2546"},
      {"31/02/2546", 0,
       era543 + "|day first; 2546 less 543 is 2003; month 2 of 2003 has 28 days, and no day 31"},
      {"15/13/2003", 1, era0 + "|day first; there is no month 13"},
      {"15/07/500", 0, era543 + "|day first; 500 less 543 is -43; the years are 1 to 9999"},
      {"15/07/2003 ", 1, era0 + "|day first; the year '2003 ' is no number"},
      {"15/07-2546", 0,
       era543 + "|it has only one /, two are needed; beside a / dashes do not count"},
      {"15-07", 0, era543 + "|it has only one -, two are needed"},
      {"15.07.2546", 0, era543 + "|it has neither / nor - between day, month and year"},
      {"15/07/68082", 0,
       era543 + "2003-07-15|day first; the year 68082 counts as the 16-bit number 2546; 2546 less "
                "543 is 2003"},
      {"15-07-2546", 2, "loose: |it has no / between day, month and year"},
      {"5/7/2546", 2,
       "loose: 2003-07-05|day first; the year 2546 is more than 100 years from 2026 and taken for "
       "one of "
       "the Buddhist era; 2546 less 543 is 2003"},
      {"5/7/2126", 2,
       "loose: 2126-07-05|day first; the year 2126 is near 2026 and taken for a Christian one"},
      {"15/07/46", 2,
       "loose: |day first; the year 46 is more than 1000 years from 2026 and taken for one with "
       "543 added "
       "twice; 46 less 1086 is -1040; the years are 1 to 9999"},
      {"200307151405", 3,
       "stamp: 2003-07-15T14:05:00|year 1 to 4, month 5 and 6, day 7 and 8; hour 9 and 10, minute "
       "11 and 12"},
      {"200307152405", 3,
       "stamp: |year 1 to 4, month 5 and 6, day 7 and 8; hour 9 and 10, minute 11 and 12; there is "
       "no time "
       "24:05"},
      {"2003.07.15", 3,
       "stamp: 2003-07-15|ten characters: year 1 to 4, month 6 and 7, day 9 and 10"},
      // Warnings, on both sides of each border.
      {"15/07/46", 1, era0 + "2046-07-15|day first; the year 46 stands for 2046"},
      {"15/07/47", 1,
       era0 + "2047-07-15|day first; the year 47 stands for 2047|the two-digit year lands more "
              "than 20 "
              "years ahead, in 2047"},
      {"15/07/2047", 1, era0 + "2047-07-15|day first"},
      {"15/07/2442", 1, era0 + "2442-07-15|day first"},
      {"15/07/2546", 1,
       era0 + "2546-07-15|day first|2546 looks like a year of the Buddhist era read as a Christian "
              "one: it "
              "would be 2003"},
      {"15/07/3089", 0, era543 + "2546-07-15|day first; 3089 less 543 is 2546|3089" + twice},
      {"15/07/3089", 1, era0 + "3089-07-15|day first|3089" + twice},
      {"15/07/9999", 1, era0 + "9999-07-15|day first|the year 9999 lies far ahead"},
      {"15/07/2003", 0,
       era543 + "1460-07-15|day first; 2003 less 543 is 1460|2003 looks like a Christian year read "
                "as one "
                "of the Buddhist era"},
  };
  for (const Case& c : cases) {
    const std::vector<Reading> readings = ExplainDate(c.text, kToday);
    ASSERT_GT(readings.size(), c.reader) << c.text;
    EXPECT_EQ(Told(readings[c.reader]), c.want);
  }
  EXPECT_EQ(ExplainDate("15/07/2003", kToday).size(), 3U) << "no stamp";
}

// Whatever a reader does, the explanation follows it.
TEST(ExplainDate, AgreesWithTheReaders) {
  const std::string_view days[] = {"15", "5",  "31", "30", " 5",   "$F",
                                   "0",  "-1", "",   "x",  "2003", "29"};
  const std::string_view months[] = {"07", "2", "13", "0", "", "x", "65538"};
  const std::string_view years[] = {"2003",       "2546",        "3089",  "46",    "04",    "0",
                                    "99",         "100",         "500",   "543",   "544",   "9999",
                                    "10542",      "10543",       "65535", "65536", "68082", "-1",
                                    "2147483647", "-2147483648", "",      "x",     "2003/1"};
  std::vector<std::string> texts = {"",
                                    "/",
                                    "//",
                                    "--",
                                    "20030715",
                                    "2003071514",
                                    "20030715x",
                                    "200302290000",
                                    "20030715 and more",
                                    "99991231235959",
                                    "00000715",
                                    std::string(300, '1')};
  for (const std::string_view day : days) {
    for (const std::string_view month : months) {
      for (const std::string_view year : years) {
        for (const char separator : {'/', '-'}) {
          const std::string rest = separator + std::string(month) + separator;
          texts.push_back(std::string(day) + rest + std::string(year));
          texts.push_back(std::string(year) + rest + std::string(day));
        }
      }
    }
  }
  for (const std::string& text : texts) {
    const std::vector<Reading> readings = ExplainDate(text, kToday);
    for (const Reading& reading : readings) {
      ASSERT_FALSE(reading.why.empty()) << text;
      ASSERT_NE(reading.why, kUnexplained) << text << ' ' << reading.reader;
    }
    ASSERT_EQ(readings[0].moment.has_value(), TKovraDate::IsDate(text, 543)) << text;
    ASSERT_EQ(readings[1].moment.has_value(), TKovraDate::IsDate(text, 0)) << text;
  }
}

TEST(ExplainDate, Command) {
  const Outcome plain = Kvshare({"date", "explain", "15/07/2546\x1B", "2003/07/15"});
  EXPECT_EQ(plain.out,
            "15/07/2546?\n"
            "  era 543  refused     day first; the year '2546?' is no number\n"
            "  era 0    refused     day first; the year '2546?' is no number\n"
            "  loose    refused     day first; the year '2546?' is no number\n"
            "\n"
            "2003/07/15\n"
            "  era 543  1460-07-15  year first; 2003 less 543 is 1460\n"
            "    warning: 2003 looks like a Christian year read as one of the Buddhist era\n"
            "  era 0    2003-07-15  year first\n"
            "  loose    refused     day first; the year 15 is more than 1000 years from " +
                std::to_string(DecodeDate(Date()).Year) +
                " and taken for one with 543 added twice; 15 less 1086 is -1071; the years are 1 "
                "to 9999\n"
                "  stamp    2003-07-15  ten characters: year 1 to 4, month 6 and 7, day 9 and 10\n"
                "\n");
  EXPECT_EQ(plain.status, 0) << "a refusal explained is no failure";
  EXPECT_EQ(Kvshare({"date", "explain", "--json"}, "x/ก\n").out,
            "{\"text\":\"x/ก\",\"readings\":["
            "{\"reader\":\"era 543\",\"date\":null,\"why\":\"it has only one /, two are "
            "needed\",\"warnings\":[]},"
            "{\"reader\":\"era 0\",\"date\":null,\"why\":\"it has only one /, two are "
            "needed\",\"warnings\":[]},"
            "{\"reader\":\"loose\",\"date\":null,\"why\":\"it has only one /, two are "
            "needed\",\"warnings\":[]}]}\n");
}

}  // namespace
}  // namespace kvshare::app
