#include "kvshare/database/sqldialect.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "kvshare/database/dbxconf.h"
#include "kvshare/os/files.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class SqlDialect : public testing::Test {
 protected:
  ~SqlDialect() override {
    for (std::string* text : TextGlobals()) text->clear();
    SQLMonthNameFormat = 0;
  }
  static void Load(std::string_view lines) {
    os::ForceDirectories(GetKovraProgramPath());
    WriteFileBytes(GetKovraProgramPath() + "SqlIntf.ini",
                   std::string("[DATABASE.TEST]\r\n").append(lines));
    ReadSQLIntf("test");
  }

  TemporaryHome home;
  THeadlessInterface screen;
  TUseInterface use{screen};
};

const TDateTime kMarchMorning = EncodeDate(2004, 3, 5) + EncodeTime(9, 7, 30, 0).Days();

TEST_F(SqlDialect, WithoutAFileEveryKeyHasItsDefault) {
  ReadSQLIntf("MYSQL");
  constexpr std::string_view kText =
      "ไม่พบแฟ้มเอกสารที่ต้องการ C:\\Program Files\\QXN\\Share\\SqlIntf.ini"_th;
  const TMessageBox expected{std::string(kText), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0};
  ASSERT_EQ(screen.messages.size(), 1u);
  EXPECT_EQ(screen.messages[0], expected);

  const std::pair<const std::string&, std::string_view> kDefaults[] = {
      {SQLDateFormat, "MM/DD/YYYY"},   {SQLDateTimeFormat, "MM/DD/YYYY HH:MM:SS"},
      {SQLDateDelimiter, "'"},         {SQLMatchCaseFormat, "'%S'"},
      {SQLNotMatchCaseFormat, "'%S'"}, {SQLBaht, "MONEY"},
      {SQLDate, "DATETIME"},           {SQLTime, "DATETIME"},
      {SQLDateTime, "DATETIME"},       {SQLGraphic, "IMAGE"},
      {SQLText, "VARCHAR(8000)"},
  };
  for (const auto& [text, want] : kDefaults) EXPECT_EQ(text, want);
  const std::string* const kEmpty[] = {&SQLCompareBegining, &SQLCompareBetween, &SQLCompareEnding,
                                       &SQLConcat2Format,   &SQLConcat3Format,  &SQLNotBegining,
                                       &SQLNotBetween,      &SQLNotEnding,      &TablePrefix,
                                       &TableCase,          &SQLServerDateTime};
  for (const std::string* text : kEmpty) EXPECT_EQ(*text, "");

  EXPECT_EQ(SQLFieldFormat("NAME", true), "'NAME'");
  EXPECT_EQ(SQLFieldFormat("NAME", false), "'NAME'");
  EXPECT_EQ(SQLNumEqual("A", "B"), "(CAST(A AS NUMERIC(16,4)) = CAST(B AS NUMERIC(16,4)))");
  EXPECT_EQ(SQLNumNotEqual("A", "B"), "(CAST(A AS NUMERIC(16,4)) <> CAST(B AS NUMERIC(16,4)))");
  EXPECT_EQ(SQLNumNot2DecPt("A"), "(CAST(A AS NUMERIC(16,2)) <> A)");
  EXPECT_EQ(DateTimeToSQLDate(kMarchMorning), "'03/05/2004'");
  EXPECT_EQ(DateTimeToSQLDateTime(kMarchMorning), "'03/05/2004 09:07:30'");
}

TEST_F(SqlDialect, EveryKeyReachesItsText) {
  const std::pair<std::string_view, std::string*> kKeys[] = {
      {"DATETIME", &SQLDateTimeFormat},
      {"DELIMETER", &SQLDateDelimiter},
      {"MATCHCASE", &SQLMatchCaseFormat},
      {"NOTMATCHCASE", &SQLNotMatchCaseFormat},
      {"CMPBEGIN", &SQLCompareBegining},
      {"CMPBETWEEN", &SQLCompareBetween},
      {"CMPEND", &SQLCompareEnding},
      {"CONCAT2", &SQLConcat2Format},
      {"CONCAT3", &SQLConcat3Format},
      {"NOTBEGIN", &SQLNotBegining},
      {"NOTBETWEEN", &SQLNotBetween},
      {"NOTEND", &SQLNotEnding},
      {"TABLEPREFIX", &TablePrefix},
      {"TABLECASE", &TableCase},
      {"SERVERDATETIME", &SQLServerDateTime},
      {"SQLBAHT", &SQLBaht},
      {"SQLDATE", &SQLDate},
      {"SQLTIME", &SQLTime},
      {"SQLDATETIME", &SQLDateTime},
      {"SQLGRAPHIC", &SQLGraphic},
      {"SQLTEXT", &SQLText},
      {"CMPNUMEQUAL", &SQLCompareNumEqual},
      {"CMPNUMNOTEQUAL", &SQLCompareNumNotEqual},
      {"CMPNOT2DECIMALPT", &SQLCompareNum2DecPt},
  };
  std::string lines;
  for (const auto& [key, text] : kKeys) lines.append(key).append("=as ").append(key).append("\n");
  Load(lines);
  EXPECT_TRUE(screen.messages.empty());
  for (const auto& [key, text] : kKeys) EXPECT_EQ(*text, "as " + std::string(key));
}

TEST_F(SqlDialect, TheOpenCompanysServerStandsForNone) {
  Load("[DATABASE.INTERBASE]\nSQLBAHT=NUMERIC(18,4)\n");
  KovraAliasTradeName = "INTERBASE";
  ReadSQLIntf("");
  EXPECT_EQ(SQLBaht, "NUMERIC(18,4)");
}

TEST_F(SqlDialect, MonthNamesInDates) {
  struct Case {
    const char* pattern;
    const char* stored;
    int format;
    std::string_view literal;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"dd-esmonth-yyyy", "DD-?-YYYY", 1, "'05-MAR-2004'", "any letter case"},
      {"ELMONTH ELMONTH", "? ?", 2, "'MARCH MARCH'", "everywhere"},
      {"DD TSMONTH YYYY", "DD ? YYYY", 3, "'05 มี.ค. 2004'"_th, "Thai, Christian years"},
      {"TLMONTHESMONTH", "TLMONTH?", 1, "", "the first of the list wins, not of the text"},
      {"YYYY-MM-DD", "YYYY-MM-DD", 1, "'2004-03-05'", "without a marker the number survives"},
      {"DD?", "DD?", 1, "'05MAR'", "and a ? of the pattern takes the name"},
      {"DD TLMONTH", "DD ?", 4, "'05 มีนาคม'"_th, "Thai long"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    Load(std::string("DATE=") + c.pattern + "\nDATETIME=dd-esmonth\n");
    EXPECT_EQ(SQLDateFormat, c.stored);
    EXPECT_EQ(SQLMonthNameFormat, c.format);
    if (!c.literal.empty()) {
      EXPECT_EQ(DateTimeToSQLDate(kMarchMorning), c.literal);
    }
    EXPECT_EQ(SQLDateTimeFormat, "dd-esmonth") << "kept as written";
  }
  SQLDateDelimiter = "?";
  SQLMonthNameFormat = 9;
  EXPECT_EQ(DateTimeToSQLDate(kMarchMorning), "?05 ?") << "no such name; the delimiter stays";
  SQLMonthNameFormat = 1;
  EXPECT_EQ(DateTimeToSQLDate(TDateTime(-800'000)), "?00 ?") << "before year 1";
}

TEST_F(SqlDialect, Comparisons) {
  Load(
      "MATCHCASE=%s\nNOTMATCHCASE=UPPER(%S)\nCMPBEGIN=%s LIKE '%s<WILDCARD>'\n"
      "CMPBETWEEN=%s LIKE '<wildcard>%s<Wildcard>'\nCMPEND=%1:s ends %0:s\n"
      "NOTBEGIN=%s not b %s\nNOTBETWEEN=%s not c %s\nNOTEND=%-4s 100%% not e %.2s\n");
  struct Case {
    std::string_view value;
    bool matchCase;
    int kind;
    std::string_view want;
    std::string_view negated;
  };
  constexpr Case kCases[] = {
      {" ab ", false, 0, "UPPER(N) LIKE 'AB%'", "UPPER(N) not b AB"},
      {" ab ", true, 0, "N LIKE ' ab%'", "N not b  ab"},
      {"กข\t"_th, false, 1, "UPPER(N) LIKE '%กข%'"_th, "UPPER(N) not c กข"_th},
      {"ab", true, 2, "ab ends N", "N    100% not e ab"},
      {"abc", true, -1, "abc ends N", "N    100% not e ab"},
      {"   ", false, 0, "UPPER(N) LIKE '%'", "UPPER(N) not b "},
      {"50<Wildcard>", true, 1, "N LIKE '%50%%'", "N not c 50%"},
      {"", true, 1, "", ""},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(SQLCompareCmd("N", c.value, c.matchCase, c.kind), c.want);
    EXPECT_EQ(SQLNotCmd("N", c.value, c.matchCase, c.kind), c.negated);
  }
  EXPECT_EQ(SQLCharFormat(" a b ", true), " a b");
  EXPECT_EQ(SQLCharFormat(" a b ", false), "A B");
}

TEST_F(SqlDialect, PatternsWithTheWrongPlaceholdersAreErrors) {
  struct Case {
    std::string pattern, message;
  };
  const auto misfit = [](const std::string& shown) {
    return "Format '" + shown + "' invalid or incompatible with argument";
  };
  const std::string longPattern(40, 'x');
  const Case cases[] = {
      {"", misfit("")},
      {"%s", misfit("%s")},
      {"%s %%s", misfit("%s %%s")},
      {"%s 5%", misfit("%s 5%")},
      {"%s %d", misfit("%s %d")},
      {longPattern, misfit(std::string(31, 'x'))},
      {"%s %s %s", "No argument for format '%s %s %s'"},
      {"%1:s %s", "No argument for format '%1:s %s'"},
      {"%0:s %s", "no error"},
      {"%0:s %0:s", "no error"},
  };
  for (const Case& c : cases) {
    SQLCompareNumEqual = SQLNotBegining = SQLCompareBegining = SQLCompareNum2DecPt = c.pattern;
    SQLMatchCaseFormat = "%s";
    const auto message = [](auto action) { return MessageOf<EConvertError>(action); };
    EXPECT_EQ(message([] { SQLNumEqual("a", "b"); }), c.message);
    EXPECT_EQ(message([] { SQLNumNot2DecPt("a"); }), c.message);
    EXPECT_EQ(message([] { SQLCompareCmd("a", "b", true, 0); }), c.message);
    EXPECT_EQ(message([] { SQLNotCmd("a", "b", true, 0); }), c.message);
    EXPECT_EQ(message([] { SQLNotCmd("a", "", true, 0); }), "no error") << "nothing is formatted";
  }
  SQLMatchCaseFormat = "%s %s";
  EXPECT_EQ(MessageOf<EConvertError>([] { SQLFieldFormat("a", true); }),
            "No argument for format '%s %s'");
}

}  // namespace
}  // namespace kvshare
