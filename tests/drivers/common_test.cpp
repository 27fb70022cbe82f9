// What the drivers share: text forms, parameters, placeholders.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <random>

#include "drivers/common/nulltests.h"
#include "drivers/common/parameters.h"
#include "drivers/common/sqlitecolumns.h"
#include "drivers/common/sqlitestatement.h"
#include "drivers/common/statements.h"
#include "drivers/common/transaction.h"
#include "drivers/common/valuetexts.h"
#include "kvshare/data/contract/driver.h"

namespace kvshare::drivers {
namespace {

TEST(Forms, ScaledNumbers) {
  struct Case {
    std::int64_t value;
    int decimals;
    const char* want;
  };
  constexpr Case kCases[] = {
      {0, 0, "0"},
      {0, 2, "0.00"},
      {5, 2, "0.05"},
      {-5, 4, "-0.0005"},
      {123, 2, "1.23"},
      {-123, 3, "-0.123"},
      {10'000, 4, "1.0000"},
      {-7, 0, "-7"},
      {std::numeric_limits<std::int64_t>::max(), 4, "922337203685477.5807"},
      {std::numeric_limits<std::int64_t>::min(), 4, "-922337203685477.5808"},
      {std::numeric_limits<std::int64_t>::min(), 18, "-9.223372036854775808"},
  };
  for (const Case& c : kCases) {
    std::string out = "x";
    AppendScaled(out, c.value, c.decimals);
    EXPECT_EQ(out, std::string("x") + c.want);
  }
}

TEST(Forms, DatesAndTimes) {
  std::string out;
  AppendDate(out, 1, 2, 3);
  out += ' ';
  AppendTime(out, 4, 5, 6, 0);
  out += ' ';
  AppendTime(out, 23, 59, 59, 7);
  EXPECT_EQ(out, "0001-02-03 04:05:06 23:59:59.007");
}

TEST(Transactions, WhatAStatementMeansToThem) {
  struct Case {
    std::string_view sql;
    Ending want;
  };
  constexpr Case kCases[] = {
      {"", Ending::None},
      {"-- nothing", Ending::None},
      {"/* nothing", Ending::None},
      {"insert into T values ('COMMIT')", Ending::None},
      {"(SELECT 1)", Ending::None},
      {" ;\r\n-- a\n# b\n/* c */commit work", Ending::Commit},
      {"Commit;", Ending::Commit},
      {"COMMITTED", Ending::Unknown},
      {"END TRANSACTION", Ending::Commit},
      {"ROLLBACK", Ending::Rollback},
      {"ROLLBACK AND NO CHAIN", Ending::Rollback},
      {"rollback /* as far as */ to S", Ending::None},
      {"ROLLBACK WORK TO SAVEPOINT S", Ending::None},
      {"ROLLBACK TRANSACTION TO S", Ending::None},
      {"ROLLBACK TRANSACTION", Ending::Rollback},
      {"ABORT", Ending::Rollback},
      {"SAVEPOINT S", Ending::None},
      {"CREATE TABLE T (I INTEGER)", Ending::Implicit},
      {"/*!50000 CREATE */ TABLE T (I INTEGER)", Ending::Unknown},
      {"BEGIN", Ending::Implicit},
      {"BEGIN NOT ATOMIC COMMIT; END", Ending::Unknown},
      {"SET autocommit = 1", Ending::Implicit},
      {"SET STATEMENT max_statement_time = 1 FOR CALL P()", Ending::Unknown},
      {"CALL P()", Ending::Unknown},
      {"{call P()}", Ending::Unknown},
  };
  for (const Case& c : kCases) EXPECT_EQ(EndingOf(c.sql), c.want) << c.sql;
}

TEST(Forms, Milliseconds) {
  std::string scratch;
  for (const auto& [text, want] : {std::pair{"14:30:05", "14:30:05"},
                                   {"14:30:05.5", "14:30:05.500"},
                                   {"14:30:05.12", "14:30:05.120"},
                                   {"14:30:05.123", "14:30:05.123"},
                                   {"14:30:05.999999", "14:30:05.999"}}) {
    EXPECT_EQ(ToMilliseconds(text, scratch), want);
  }
}

TEST(Forms, Numbers) {
  EXPECT_EQ(ToInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(ToFloat("1e-300"), 1e-300);
  EXPECT_EQ(ToFloat(FromFloat(0.1)), 0.1);
  for (const char* bad : {"", "12x", " 1", "9223372036854775808"}) {
    EXPECT_THROW(ToInteger(bad), data::DriverError) << bad;
  }
}

// The decimal that a real stands for: what 15 digits say.
TEST(Forms, DecimalsOfReals) {
  constexpr std::pair<double, const char*> kCases[] = {
      {0.1 + 0.2, "0.3"},
      {-0.0, "0"},
      {100, "100"},
      {-99'999'999'999.9999, "-99999999999.9999"},
      {700.0 / 107, "6.54205607476636"},
      {2.5e-5, "0.000025"},
      {1e-20, "0.00000000000000000001"},
      {123456789012345678, "123456789012346000"},
      {1e22, "10000000000000000000000"},
      {0.99999999999999989, "1"},
  };
  for (const auto& [value, want] : kCases) EXPECT_EQ(DecimalOf(value), want);
  for (const double none : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    EXPECT_THROW(DecimalOf(none), data::DriverError);
  }
  std::mt19937_64 random(14);
  for (int i = 0; i < 100'000; ++i) {  // amounts, which take a road of their own
    const auto scaled =
        static_cast<std::int64_t>(random() % 2'000'000'000'000'000) - 1'000'000'000'000'000;
    const std::int64_t few = scaled / (i % 2 == 0 ? 1 : 1'000'000);
    const double real = static_cast<double>(few) / 10'000;
    ASSERT_EQ(TenThousandthsOf(real), few);
    std::string digits;
    AppendScaled(digits, few, 4);
    ASSERT_EQ(ToFloat(DecimalOf(real)), ToFloat(digits));
    const double noisy = std::nextafter(real, HUGE_VAL);  // no amount's own real
    char plain[64];
    std::snprintf(plain, sizeof plain, "%.15g", noisy);
    ASSERT_EQ(ToFloat(DecimalOf(noisy)), ToFloat(plain)) << digits;
  }
}

TEST(Forms, DecimalsOfTexts) {
  std::string scratch;
  for (const auto& [text, want] : {std::pair{"12.50", "12.50"},
                                   {"-0.5", "-0.5"},
                                   {"+7", "7"},
                                   {".5", "0.5"},
                                   {"-.5", "-0.5"},
                                   {"5.", "5"},
                                   {"007", "007"}}) {
    EXPECT_EQ(ToDecimal(text, scratch), want);
  }
  for (const char* bad : {"", "-", ".", "abc", "1,200.50", "1e5", " 1", "1.2.3", "Inf"}) {
    EXPECT_THROW(ToDecimal(bad, scratch), data::DriverError) << bad;
  }
  EXPECT_THROW(sqlite::DecimalIn({}, "007", scratch), data::DriverError) << "a code";
  EXPECT_EQ(sqlite::DecimalIn({}, "-0.7", scratch), "-0.7");
}

TEST(Forms, Characters) {
  EXPECT_EQ(FirstCharacters("กขค  ", 4), "กขค ");
  EXPECT_EQ(FirstCharacters("a😀ก", 2), "a😀");
  EXPECT_EQ(FirstCharacters("ก", 5), "ก");
  EXPECT_EQ(FirstCharacters("ก", 0), "");
  EXPECT_EQ(TrimmedRight(" a b  "), " a b");
  EXPECT_EQ(TrimmedRight("  "), "");
  EXPECT_NO_THROW(RefuseZeroByte("a"));
  EXPECT_THROW(RefuseZeroByte(std::string_view("a\0b", 3)), data::DriverError);
}

TEST(HostName, HostAndPort) {
  struct Case {
    const char* name;
    const char* host;
    const char* port;
  };
  constexpr Case kCases[] = {
      {"", "", ""},
      {"db", "db", ""},
      {"db:3306", "db", "3306"},
      {"[::1]:5432", "::1", "5432"},
      {"[::1]", "::1", ""},
      {"fe80::1", "fe80::1", ""},
  };
  for (const Case& c : kCases) {
    const ServerAddress address = SplitHostName(c.name);
    EXPECT_EQ(address.host, c.host) << c.name;
    EXPECT_EQ(address.port, c.port) << c.name;
  }
  for (const char* bad : {"db:", "db:x", "db:0", "db:65536", "[::1]5432", "db:33 "}) {
    EXPECT_THROW(SplitHostName(bad), data::DriverError) << bad;
  }
}

TEST(Statements, AreMarkedAsEachClientWants) {
  const data::StatementParts statement{{"a = ", " OR b = ", " OR c = ", ""}, {1, 0, 1}};
  EXPECT_EQ(MarkedByQuestions(statement), "a = ? OR b = ? OR c = ?");
  const std::vector<data::ParameterValue> values = {std::int64_t{1}, "x"};
  const std::vector<data::ParameterValue> byPlace = {"x", std::int64_t{1}, "x"};
  EXPECT_EQ(ValuesByPlace(statement.places, values), byPlace);
  EXPECT_THROW(ValuesByPlace(statement.places, std::span(values).first(1)), data::DriverError);
}

// A mark that only tests for Null has a type, and is not one of the others.
TEST(Statements, TypedMarks) {
  const data::StatementParts statement{
      {"WHERE (", " IS NULL OR b = ", ") AND (", " IS NULL OR c = ", " OR c = ", ")"},
      {0, 0, 1, 1, 0}};
  const TypedStatement numbers = TypedByNumbers(statement);
  EXPECT_EQ(numbers.sql,
            "WHERE (CAST($1 AS SMALLINT) IS NULL OR b = $2) AND"
            " (CAST($3 AS SMALLINT) IS NULL OR c = $4 OR c = $2)");
  const TypedStatement questions = TypedByQuestions(statement);
  EXPECT_EQ(questions.sql,
            "WHERE (CAST(? AS SMALLINT) IS NULL OR b = ?) AND"
            " (CAST(? AS SMALLINT) IS NULL OR c = ? OR c = ?)");
  const std::vector<data::ParameterValue> values = {"x", std::monostate{}};
  const data::ParameterValue given = std::int64_t{0};
  const data::ParameterValue null;
  const data::ParameterValue x = "x";
  EXPECT_EQ(ValuesByMark(numbers, values), (std::vector{given, x, null, null}));
  EXPECT_EQ(ValuesByMark(questions, values), (std::vector{given, x, null, null, x}));
  EXPECT_THROW(ValuesByMark(numbers, std::span(values).first(1)), data::DriverError);
}

// In doubt a place compares: a test for Null would not see the value.
TEST(Statements, NullTests) {
  struct Case {
    const char* before;
    const char* behind;
    bool tests;
  };
  constexpr Case kCases[] = {
      {"WHERE (", " IS NULL OR", true},
      {"where a = 1 or ", "\n is\tnot null)", true},
      {"WHEN ", " IS NULL", true},
      {"WHERE a = 1 AND ", " IS NULL", true},
      {"WHERE d BETWEEN 1 AND t.e AND ", " IS NULL", true},
      {"WHERE (d BETWEEN 1 AND 2) AND ", " IS NULL", true},
      {"WHERE NOT ", " IS NULL", true},
      {"WHERE d BETWEEN 1 AND ", " IS NULL", false},
      {"WHERE d between (1 and 2) and ", " IS NULL", false},
      {"WHERE d BETWEEN 'x AND y' AND ", " IS NULL", false},
      {"WHERE d BETWEEN 1 -- AND\nAND ", " IS NULL", false},
      {"WHERE a = ", " IS NULL", false},
      {"WHERE a LIKE ", " IS NULL", false},
      {"WHERE a = -- OR\n ", " IS NULL", false},
      {"WHERE a = -- OR", " IS NULL", false},
      {"WHERE a = /* OR */ ", " IS NULL", false},
      {"WHERE a = 'OR' || ", " IS NULL", false},
      {"WHERE floor ", " IS NULL", false},
      {"WHERE (", " IS NOT DISTINCT FROM a", false},
      {"WHERE (", " IS NULLABLE", false},
      {"WHERE (", "", false},
      {"", " IS NULL", false},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(IsNullTest({{c.before, c.behind}, {0}}, 0), c.tests) << c.before << ":P" << c.behind;
  }
  EXPECT_FALSE(IsNullTest({{"WHERE d BETWEEN ", " AND ", " IS NULL"}, {0, 1}}, 1));
  EXPECT_TRUE(IsNullTest({{"WHERE d BETWEEN ", " AND ", " AND ", " IS NULL"}, {0, 1, 2}}, 2));
}

using sqlite::Amounts;
using sqlite::MarkedStatement;
using sqlite::ValueClass;

// With a place at each `?`, all for one moment.
data::StatementParts PartsOf(std::string_view sql) {
  data::StatementParts parts;
  for (;;) {
    const std::size_t place = sql.find('?');
    parts.texts.emplace_back(sql.substr(0, place));
    if (place == std::string_view::npos) return parts;
    parts.places.push_back(0);
    sql.remove_prefix(place + 1);
  }
}

// What SQLite gets of a moment, by what stands around its place; the values behind it.
TEST(SqliteStatements, PutMomentsByTheirPlaces) {
  const std::string each = "?, ?, ?, ?, ?";
  const std::string all =
      " 2026-11-25 00:00:00| 2026-11-25 00:00:00.000| 2026-11-25T00:00:00|"
      " 2026-11-25T00:00:00.000| 2026-11-25|";
  struct Case {
    const char* sql;
    std::string marked;
    std::string values;
  };
  const Case cases[] = {
      {"D >= ?", "D >= ?", " 2026-11-25|"},
      {"D<?", "D<?", " 2026-11-25|"},
      {"D > ?", "D > ?", " 2026-11-25 00:00:00.000|"},
      {"D <= /* > */ ?", "D <= /* > */ ?", " 2026-11-25 00:00:00.000|"},
      {"D BETWEEN ? AND ? AND ? <= D", "D BETWEEN ? AND ? AND ? <= D",
       " 2026-11-25| 2026-11-25 00:00:00.000| 2026-11-25|"},
      {"(? > D)", "(? > D)", " 2026-11-25|"},
      {"NOT ? < D", "NOT ? < D", " 2026-11-25 00:00:00.000|"},
      {"D = ? AND E", "D  IN (" + each + ") AND E", all},
      {"D == ?", "D  IN (" + each + ")", all},
      {"D <>?", "D  NOT IN (" + each + ")", all},
      {"D in (1, ?, 2)", "D in (1, " + each + ", 2)", all},
      {"D = ? || 'x'", "D = (? COLLATE MOMENT) || 'x'", " 2026-11-25|"},
      {"D = ? COLLATE NOCASE", "D = (? COLLATE MOMENT) COLLATE NOCASE", " 2026-11-25|"},
      {"? = D", "(? COLLATE MOMENT) = D", " 2026-11-25|"},
      {"F(?, 1) IN (2)", "F((? COLLATE MOMENT), 1) IN (2)", " 2026-11-25|"},
      {"D -> ?", "D -> (? COLLATE MOMENT)", " 2026-11-25|"},
      {"D IN (SELECT E WHERE (1, ?))", "D IN (SELECT E WHERE (1, (? COLLATE MOMENT)))",
       " 2026-11-25|"},
      {"'IN (' [=] \"<\" -- >=\n ?", "'IN (' [=] \"<\" -- >=\n (? COLLATE MOMENT)", " 2026-11-25|"},
      {"UPDATE T SET D = ?, E = (F > ?) WHERE D = ?",
       "UPDATE T SET D = ?, E = (F > ?) WHERE D  IN (" + each + ")",
       " 2026-11-25| 2026-11-25 00:00:00.000|" + all},
      {"UPDATE T SET D = CASE WHEN D = ? THEN 1 END, E = ?",
       "UPDATE T SET D = CASE WHEN D  IN (" + each + ") THEN 1 END, E = ?", all + " 2026-11-25|"},
  };
  const data::ParameterValue day = data::Moment{data::ColumnKind::Date, "2026-11-25"};
  const ValueClass classes[] = {sqlite::ClassOf(day)};
  for (const Case& c : cases) {
    const MarkedStatement marked(PartsOf(c.sql), classes, {.collations = true});
    EXPECT_EQ(marked.Text(), c.marked);
    std::string values;
    for (std::size_t i = 0; i < marked.Slots(); ++i) {
      data::ParameterValue made;
      values.append(" ")
          .append(std::get<std::string>(marked.Value(i, std::span(&day, 1), made)))
          .append("|");
    }
    EXPECT_EQ(values, c.values) << c.sql;
  }
  EXPECT_EQ(MarkedStatement(PartsOf("? = D"), classes, {}).Text(), "? = D") << "without collations";
}

TEST(SqliteStatements, PutEveryFormOfAMoment) {
  struct Case {
    data::Moment moment;
    const char* first;
    const char* last;
  };
  using enum data::ColumnKind;
  const Case cases[] = {
      {{TimeStamp, "2026-11-25 00:00:00"}, "2026-11-25", "2026-11-25 00:00:00.000"},
      {{TimeStamp, "2026-11-25 10:30:00"}, "2026-11-25 10:30:00", "2026-11-25 10:30:00.000"},
      {{TimeStamp, "2026-11-25 10:30:00.500"}, "2026-11-25 10:30:00.5", "2026-11-25 10:30:00.500"},
      {{Time, "00:00:00"}, "00:00:00", "00:00:00.000"},
  };
  for (const Case& c : cases) {
    const data::ParameterValue value = c.moment;
    const ValueClass classes[] = {sqlite::ClassOf(value)};
    const MarkedStatement marked(PartsOf("D >= ? AND D <= ? AND D = ?"), classes, {});
    const auto text = [&](std::size_t slot) {
      data::ParameterValue made;
      return std::get<std::string>(marked.Value(slot, std::span(&value, 1), made));
    };
    EXPECT_EQ(text(0), c.first);
    EXPECT_EQ(text(1), c.last);
    std::vector<std::string> each;
    for (std::size_t slot = 2; slot < marked.Slots(); ++slot) each.push_back(text(slot));
    EXPECT_THAT(each, testing::AllOf(testing::Contains(c.first), testing::Contains(c.last)));
  }
}

TEST(SqliteStatements, PutAmountsAsTheirColumnsKeepThem) {
  const auto put = [](const char* digits, Amounts amounts) {
    const data::ParameterValue value = data::Decimal{digits};
    const ValueClass classes[] = {sqlite::ClassOf(value)};
    const MarkedStatement marked(PartsOf("A = ?"), classes, {true, amounts});
    data::ParameterValue made;
    return std::pair(marked.Text(), marked.Value(0, std::span(&value, 1), made));
  };
  using Result = std::pair<std::string, data::ParameterValue>;
  EXPECT_EQ(put("-12.5000", Amounts::Numbers), Result("A = ?", -12.5));
  EXPECT_EQ(put("1230000000000000000000.00", Amounts::Numbers), Result("A = ?", 1.23e21));
  EXPECT_EQ(put("1.50", Amounts::Both), Result("A = ?", 1.5));
  EXPECT_EQ(put("1.50", Amounts::Texts), Result("A = (? COLLATE DECIMAL)", std::string("1.50")));
  for (const auto& [digits, amounts] : {std::pair{"123456789012.3456", Amounts::Numbers},
                                        {"0.1000000000000001", Amounts::Numbers},
                                        {"123456789012.3456", Amounts::Both},
                                        {"1000000000000000", Amounts::Both},
                                        {"0.00001", Amounts::Both},
                                        {"1,5", Amounts::Numbers}}) {
    EXPECT_THROW(put(digits, amounts), data::DriverError) << digits;
  }
}

}  // namespace
}  // namespace kvshare::drivers
