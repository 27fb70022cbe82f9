// What the fragments of the sample dialect mean on the real server.
#include "kvshare/database/sqldialect.h"
#include "kvshare/database/sqlreplication.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using DialectOnServer = ServerCompany;

struct TextCase {
  std::string_view stored;
  std::string_view value;
  bool matchCase;
  const char* holds;  // begins, contains, ends
};

constexpr TextCase kTexts[] = {
    {"Abcd", "ab", false, "110"},        {"Abcd", "ab", true, "000"},
    {"Abcd", "Ab", true, "110"},         {"Abcd", "CD", false, "011"},
    {"Abcd", "bc", true, "010"},         {"Abcd", "abcd", false, "111"},
    {"ab", "xxab", false, "000"},        {"ab", "abab", false, "000"},
    {"a-b", "-", true, "010"},           {"สมชาย"_th, "สม"_th, false, "110"},
    {"สมชาย"_th, "ชาย"_th, true, "011"}, {"กล้วย"_th, "กลวย"_th, true, "000"},
};

// A literal alone has no column for the server to take a type or a collation from.
TEST_F(DialectOnServer, TextsCompare) {
  MakeTable("T", "N VARCHAR(40)");
  for (const TextCase& c : kTexts) {
    SCOPED_TRACE(Cp874ToUtf8(c.stored) + " / " + Cp874ToUtf8(c.value));
    Run("DELETE FROM T");
    Run(Format("INSERT INTO T VALUES ('%s')", {c.stored}));
    for (int kind = 0; kind < 3; ++kind) {
      const bool want = c.holds[kind] == '1';
      const std::string is = SQLCompareCmd("N", c.value, c.matchCase, kind);
      const std::string isNot = SQLNotCmd("N", c.value, c.matchCase, kind);
      EXPECT_EQ(Holds(is), want) << is;
      EXPECT_EQ(Holds(isNot), !want) << isNot;
    }
    for (const bool matchCase : {false, true}) {
      // The server of the tests has a default collation that ignores letter case: see the sample.
      if (matchCase && ServerName() == "firebird") continue;
      const bool same = matchCase ? c.stored == c.value
                                  : SQLCharFormat(c.stored, false) == SQLCharFormat(c.value, false);
      EXPECT_EQ(
          Holds(SQLFieldFormat("N", matchCase) + " = '" + SQLCharFormat(c.value, matchCase) + "'"),
          same);
    }
  }
}

TEST_F(DialectOnServer, TextsJoin) {
  MakeTable("T", "A VARCHAR(10), B VARCHAR(10)");
  Run(Format("INSERT INTO T VALUES ('%s', 'x')", {"บาท"_th}));
  const std::string two = Format(SQLConcat2Format, {"A", "B"});
  const std::string three = Format(SQLConcat3Format, {"A", "B", "A"});
  EXPECT_EQ(Ask("SELECT " + two + " FROM T"), "บาทx"_th);
  EXPECT_EQ(Ask("SELECT " + three + " FROM T"), "บาทxบาท"_th);
}

TEST_F(DialectOnServer, DatesCompare) {
  MakeTable("T", "D " + SQLDate + ", M " + SQLDateTime + ", H " + SQLTime);
  const TDateTime day = EncodeDate(2004, 3, 5);
  const TDateTime moment = JoinDateTime(day, EncodeTime(9, 7, 30, 0));
  Run(Format("INSERT INTO T (D, M) VALUES (%s, %s)",
             {DateTimeToSQLDate(day), DateTimeToSQLDateTime(moment)}));
  TSQLQuery query;
  query.SetSQLConnection(connection_.get());
  query.SQL().Add("SELECT D, M, H FROM T");
  query.Open();
  EXPECT_EQ(query.FieldByName("D").AsDateTime(), day);
  EXPECT_EQ(query.FieldByName("M").AsDateTime(), moment);
  EXPECT_TRUE(query.FieldByName("H").IsNull());
  query.Close();
  EXPECT_TRUE(Holds("D = " + DateTimeToSQLDate(day)));
  EXPECT_FALSE(Holds("D > " + DateTimeToSQLDate(day)));
  EXPECT_TRUE(Holds("D < " + DateTimeToSQLDate(day + 1)));
  EXPECT_TRUE(Holds("M >= " + DateTimeToSQLDateTime(moment)));
  EXPECT_FALSE(Holds("M >= " + DateTimeToSQLDateTime(JoinDateTime(day, EncodeTime(9, 7, 31, 0)))));
}

TEST_F(DialectOnServer, TheServersClockIsNow) {
  const TDateTime before = Now();
  const TDateTime clock = ServerDateTime(*connection_, SQLServerDateTime);
  constexpr double kMinute = 1.0 / (24 * 60);
  EXPECT_NEAR(clock.Days(), before.Days(), kMinute);
}

// The digits of an amount, its equality at four decimals, its order.
TEST_F(DialectOnServer, AmountsStayExact) {
  MakeTable("T", "A " + SQLBaht + ", G " + SQLGraphic + ", L " + SQLText);
  constexpr std::int64_t kMost = 999'999'999'999'999;
  for (const std::int64_t raw :
       {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{99}, std::int64_t{100},
        std::int64_t{125000}, std::int64_t{-1234567}, kMost, kMost - 1, -kMost}) {
    const auto text = [](std::int64_t r) { return Format("%.4f", {Currency::FromRaw(r)}); };
    SCOPED_TRACE(text(raw));
    Run("DELETE FROM T");
    Run("INSERT INTO T (A) VALUES ('" + text(raw) + "')");
    TSQLQuery query;
    query.SetSQLConnection(connection_.get());
    query.SQL().Add("SELECT A FROM T");
    query.Open();
    EXPECT_EQ(query.Fields(0).AsCurrency(), Currency::FromRaw(raw));
    query.Close();
    EXPECT_TRUE(Holds(SQLNumEqual("A", text(raw))));
    EXPECT_FALSE(Holds(SQLNumEqual("A", text(raw + 1))));
    EXPECT_TRUE(Holds(SQLNumNotEqual("A", text(raw - 1))));
    EXPECT_FALSE(Holds(SQLNumNotEqual("A", text(raw))));
    EXPECT_EQ(Holds(SQLNumNot2DecPt("A")), raw % 100 != 0);
    EXPECT_TRUE(Holds("A < '" + text(raw + 1) + "'"));
    EXPECT_FALSE(Holds("A > '" + text(raw) + "'"));
  }
}

}  // namespace
}  // namespace kvshare
