// What is written is what is read: every kind of value, by both ways of a query.
#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

#include "kvshare/rtl/cp874.h"
#include "tests/drivers/server.h"

namespace kvshare {
namespace {

using data::Bytes;
using data::ColumnKind;
using data::ParameterValue;
using testing::ElementsAre;

std::string ThaiLetters() {
  std::string all;
  for (int byte = 0x20; byte < 0x100; ++byte) {
    const std::string one(1, static_cast<char>(byte));
    try {
      all += Cp874ToUtf8(one);
    } catch (const std::exception&) {
      continue;  // no letter
    }
  }
  return all;
}

std::string EveryByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

std::string Repeated(const std::string& part, std::size_t bytes) {
  std::string all;
  while (all.size() < bytes) all += part;
  return all;
}

std::string WithMilliseconds(std::string moment) {
  if (moment.find('.') == std::string::npos) moment += ".000";
  return moment;
}

std::string ReadBack(data::Connection& connection, bool byParameter) {
  const std::vector<ParameterValue> one = {std::int64_t{1}};
  const auto rows = byParameter ? RowsOf(connection, "SELECT v FROM kv_value WHERE k = ?", one)
                                : RowsOf(connection, "SELECT v FROM kv_value WHERE k = 1");
  return rows.at(0).at(0);
}

// Writes each value into a column of that type, then a null.
void ExpectKept(const std::string& type,
                const std::vector<std::pair<ParameterValue, std::string>>& cases) {
  SCOPED_TRACE(type);
  const auto connection = Connected();
  CreateTable(*connection, "kv_value", "k INTEGER NOT NULL PRIMARY KEY, v " + type);
  auto all = cases;
  all.emplace_back(std::monostate{}, "NULL");
  for (const auto& [value, want] : all) {
    connection->Execute("DELETE FROM kv_value");
    const std::vector<ParameterValue> row = {std::int64_t{1}, value};
    EXPECT_EQ(connection->Query(WithPlaces("INSERT INTO kv_value (k, v) VALUES (?, ?)"), row),
              nullptr);
    for (const bool byParameter : {false, true}) {
      std::string got = ReadBack(*connection, byParameter);
      if (want.find(':') == 2 || want.find(':') == 13) got = WithMilliseconds(got);
      EXPECT_TRUE(got == want) << want.substr(0, 80) << " came back as " << got.substr(0, 80)
                               << " (" << got.size() << " bytes instead of " << want.size() << ")";
    }
  }
}

std::pair<ParameterValue, std::string> Same(const std::string& text) {
  return {text, text};
}
std::pair<ParameterValue, std::string> Whole(std::int64_t value) {
  return {value, std::to_string(value)};
}
std::pair<ParameterValue, std::string> Raw(const std::string& bytes) {
  return {Bytes{bytes}, bytes};
}

TEST(Values, Texts) {
  ExpectKept("VARCHAR(300)",
             {Same(ThaiLetters()), Same(""), Same("a'b\"c\\d?e$1\r\n\t%_"), Same("ทดสอบ ? ''"),
              Same("Ωñž漢字😀"), Same(Repeated("ก", 900)), Same("  blanks  ")});
  ExpectKept(CurrentDialect().text,
             {Same(ThaiLetters()), Same(""), Same(Repeated("เงินสด 😀", 1'000'000)),
              Same(Repeated("x", 1023)), Same(Repeated("x", 1024))});
  ExpectKept("CHAR(5)",
             {{"กขค", CurrentDialect().padsCharacters ? "กขค  " : "กขค"}, Same("กขคงจ")});
}

TEST(Values, Numbers) {
  using Limits32 = std::numeric_limits<std::int32_t>;
  using Limits64 = std::numeric_limits<std::int64_t>;
  ExpectKept("SMALLINT", {Whole(-32'768), Whole(32'767)});
  ExpectKept("INTEGER", {Whole(0), Whole(Limits32::min()), Whole(Limits32::max())});
  ExpectKept("BIGINT", {Whole(Limits64::min()), Whole(Limits64::max())});
  ExpectKept("DECIMAL(18,4)", {Same("0.0000"),
                               Same("-0.0001"),
                               {"1.5", "1.5000"},
                               {std::int64_t{-7}, "-7.0000"},
                               Same("99999999999999.9999"),
                               Same("-99999999999999.9999")});
  ExpectKept("DECIMAL(9,2)", {Same("-0.05"), Same("9999999.99")});
  ExpectKept(CurrentDialect().real, {{0.1, "0.10000000000000001"},
                                     {-1.7976931348623157e308, "-1.7976931348623157e+308"},
                                     {std::int64_t{3}, "3"}});
}

TEST(Values, Moments) {
  ExpectKept("DATE", {Same("2004-02-29"), Same("0001-01-01"), Same("9999-12-31")});
  ExpectKept(CurrentDialect().time,
             {Same("00:00:00.000"), Same("14:30:05.120"), Same("23:59:59.999")});
  ExpectKept(CurrentDialect().moment,
             {Same("2004-03-15 14:30:05.007"), Same("1899-12-30 00:00:00.000"),
              Same("9999-12-31 23:59:59.999")});
}

TEST(Values, Bytes) {
  ExpectKept(CurrentDialect().bytes,
             {Raw(EveryByte()), Raw(""), Raw(Repeated(EveryByte(), 1'000'000)),
              Raw(std::string(3, '\0'))});
}

TEST(Values, Booleans) {
  if (CurrentDialect().viaOdbc) GTEST_SKIP() << "sent in forms of each ODBC driver's own";
  ExpectKept(CurrentDialect().boolean, {Whole(0), Whole(1)});
}

TEST(Values, ColumnsTellTheirKinds) {
  const Dialect& d = CurrentDialect();
  const auto connection = Connected();
  CreateTable(*connection, "kv_kinds",
              "a INTEGER NOT NULL, b BIGINT, c DECIMAL(18,4), d " + std::string(d.real) +
                  ", e VARCHAR(100), f CHAR(7), g " + d.text + ", h " + d.bytes + ", i DATE, j " +
                  d.time + ", k " + d.moment);
  const auto cursor = connection->Query("SELECT * FROM kv_kinds");
  std::vector<ColumnKind> kinds;
  for (const data::Column& column : cursor->Columns()) kinds.push_back(column.kind);
  EXPECT_THAT(kinds, ElementsAre(ColumnKind::Integer, ColumnKind::Largeint, ColumnKind::Decimal,
                                 ColumnKind::Float, ColumnKind::Text, ColumnKind::Text,
                                 ColumnKind::Memo, ColumnKind::Blob, ColumnKind::Date,
                                 ColumnKind::Time, ColumnKind::TimeStamp));
  EXPECT_EQ(cursor->Columns()[0].name, d.upperNames ? "A" : "a");
  EXPECT_EQ(cursor->Columns()[2].size, 18);
  EXPECT_EQ(cursor->Columns()[2].decimals, 4);
  EXPECT_EQ(cursor->Columns()[4].size, 100);
  EXPECT_EQ(cursor->Columns()[5].size, 7);
  EXPECT_FALSE(cursor->Next());
  EXPECT_FALSE(cursor->Next()) << "the end stays the end";
}

TEST(Values, WhatDoesNotFitIsAnError) {
  const auto connection = Connected();
  CreateTable(*connection, "kv_strict", "t VARCHAR(5), n INTEGER, d DATE");
  for (const char* bad : {"INSERT INTO kv_strict (t) VALUES ('กขคงจฉ')",
                          "INSERT INTO kv_strict (n) VALUES (99999999999)",
                          "INSERT INTO kv_strict (n) VALUES ('12x')",
                          "INSERT INTO kv_strict (d) VALUES ('2004-02-30')",
                          "INSERT INTO kv_strict (n) VALUES (1 / 0)",
                          "INSERT INTO kv_strict (n) VALUES (MOD(1, 0))"}) {
    EXPECT_THROW(connection->Execute(bad), data::DriverError) << bad;
  }
  EXPECT_THAT(RowsOf(*connection, "SELECT COUNT(*) FROM kv_strict"), ElementsAre(ElementsAre("0")));
}

// A server whose own settings are loose, and which gives up soon on a program that does not read
// on.
TEST(Values, MariaDbIsStrictHoweverItWasStarted) {
  if (!std::string(CurrentDialect().server).ends_with("mariadb")) return;
  const auto admin = Connected();
  const std::string earlier = RowsOf(*admin, "SELECT @@GLOBAL.sql_mode").at(0).at(0);
  admin->Execute("SET GLOBAL sql_mode = 'ANSI_QUOTES,PAD_CHAR_TO_FULL_LENGTH'");
  const auto connection = Connected();
  admin->Execute("SET GLOBAL sql_mode = '" + earlier + "'");
  EXPECT_THAT(RowsOf(*connection, "SELECT @@sql_mode, @@net_write_timeout"),
              ElementsAre(ElementsAre("ANSI_QUOTES,STRICT_ALL_TABLES,ERROR_FOR_DIVISION_BY_ZERO",
                                      "86400")));
}

// Values that servers have and the contract has no form for.
TEST(Values, WithoutAFormAreErrors) {
  struct Case {
    const char* server;
    const char* sql;
  };
  constexpr Case kCases[] = {
      {"mariadb", "SELECT CAST('100:00:00' AS TIME)"},
      {"mariadb", "SELECT CAST('-01:00:00' AS TIME)"},
      {"postgres", "SELECT 'NaN'::NUMERIC"},
      {"postgres", "SELECT 'infinity'::DATE"},
      {"postgres", "SELECT '0044-03-15 BC'::DATE"},
      {"postgres", "SELECT '24:00:00'::TIME"},
  };
  const auto connection = Connected();
  for (const Case& c : kCases) {
    if (std::string(c.server) != CurrentDialect().server) continue;
    const auto cursor = connection->Query(c.sql);
    ASSERT_TRUE(cursor->Next());
    EXPECT_THROW(cursor->Text(0), data::DriverError) << c.sql;
    connection->Execute("DELETE FROM kv_strict");  // moves the row into memory
    EXPECT_THROW(cursor->Text(0), data::DriverError) << c.sql;
  }
}

// Types without a kind of their own keep the server's text or bytes.
TEST(Values, OfOtherTypesAreNeverEmpty) {
  struct Case {
    const char* server;  // or the end of its name
    const char* expression;
    const char* text;  // "" where the form is the server's or its driver's own
  };
  constexpr Case kCases[] = {
      {"mariadb", "ST_GeomFromText('POINT(1 2)')", ""},
      {"mariadb", "CAST('::1' AS INET6)", "::1"},
      {"mariadb", "CAST('123e4567-e89b-12d3-a456-426655440000' AS UUID)",
       "123e4567-e89b-12d3-a456-426655440000"},
      {"mariadb", "JSON_OBJECT('a', 1)", "{\"a\": 1}"},
      {"mariadb", "COLUMN_CREATE('a', 1)", ""},
      {"postgres", "ARRAY[1,2]", "{1,2}"},
      {"postgres", "ROW(1, 'a')", "(1,a)"},
      {"postgres", "INTERVAL '1 day'", "1 day"},
      {"postgres", "int4range(1, 3)", "[1,3)"},
      {"postgres", "INET '10.0.0.1'", "10.0.0.1"},
      {"postgres", "CAST(1.5 AS MONEY)", ""},
      {"postgres", "B'101'", "101"},
      {"postgres", "point(1, 2)", "(1,2)"},
      {"firebird", "RDB$DB_KEY", ""},
  };
  const auto connection = Connected();
  const std::string server = CurrentDialect().server;
  const std::vector<ParameterValue> one = {std::int64_t{1}};
  for (const Case& c : kCases) {
    if (!server.ends_with(c.server)) continue;
    SCOPED_TRACE(c.expression);
    const std::string sql = std::string("SELECT ") + c.expression + " FROM " +
                            (server == "firebird" ? "RDB$DATABASE" : "(SELECT 1 AS n) q");
    for (const auto& rows :
         {RowsOf(*connection, sql), RowsOf(*connection, sql + " WHERE 1 = ?", one)}) {
      const std::string got = rows.at(0).at(0);
      EXPECT_THAT(got, testing::Not(testing::AnyOf("", "NULL")));
      if (*c.text != '\0') {
        EXPECT_EQ(got, c.text);
      }
    }
  }
}

TEST(Values, ZoneAndMicrosecondsAreCutOff) {
  if (std::string(CurrentDialect().server) != "postgres") return;
  const auto connection = Connected();
  EXPECT_THAT(RowsOf(*connection,
                     "SELECT '2004-03-15 14:30:05.999999+00'::TIMESTAMPTZ AT TIME ZONE 'UTC',"
                     " '14:30:05.5+07'::TIMETZ"),
              ElementsAre(ElementsAre("2004-03-15 14:30:05.999", "14:30:05.500")));
}

TEST(Values, ThaiCharacterSetOfTheServer) {
  if (std::string(CurrentDialect().server) != "firebird") return;
  const auto connection = Connected();
  CreateTable(*connection, "kv_tis",
              "t VARCHAR(300) CHARACTER SET TIS620, b BLOB SUB_TYPE TEXT CHARACTER SET TIS620");
  const std::vector<ParameterValue> row = {ThaiLetters(), ThaiLetters()};
  connection->Query(WithPlaces("INSERT INTO kv_tis VALUES (?, ?)"), row);
  EXPECT_THAT(RowsOf(*connection, "SELECT t, b FROM kv_tis"),
              ElementsAre(ElementsAre(ThaiLetters(), ThaiLetters())));
}

TEST(Values, TrimChar) {
  if (CurrentDialect().viaOdbc) return;
  auto parameters = ServerParameters();
  parameters.emplace_back("Trim Char", "True");
  const auto connection = MakeConnection();
  connection->Connect(parameters);
  CreateTable(*connection, "kv_trim", "c CHAR(5), v VARCHAR(5)");
  connection->Execute("INSERT INTO kv_trim VALUES ('ก ข', 'ก ')");
  EXPECT_THAT(RowsOf(*connection, "SELECT c, v FROM kv_trim"),
              ElementsAre(ElementsAre("ก ข", "ก ")));
}

}  // namespace
}  // namespace kvshare
