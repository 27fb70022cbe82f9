// Statements with parameters, as the real server reads them; values that have no form.
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/format.h"
#include "tests/apps/tempfile.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// A parameter's value: text, whole number, or Null.
struct Given {
  std::string_view name;
  std::string_view text = "";
  std::int64_t number = 0;
};

void Give(TSQLQuery& query, const Given& given) {
  TParam& param = query.ParamByName(given.name);
  if (given.number != 0) return param.SetAsInteger(given.number);
  if (!given.text.empty()) return param.SetAsString(given.text);
  param.Clear();
}

class Places : public ServerCompany {
 protected:
  // The first value of the statement's rows.
  std::string Answer(std::string_view sql, std::initializer_list<Given> values) const {
    TSQLQuery query;
    query.SetSQLConnection(connection_.get());
    query.SQL().Add(sql);
    for (const Given& value : values) Give(query, value);
    query.Open();
    return query.Eof() ? "(none)" : query.Fields(0).AsString();
  }
  static bool On(std::string_view servers) {
    return servers.find("|" + ServerName() + "|") != std::string_view::npos;
  }
};

constexpr std::string_view kMariaDB = "|mariadb|odbc-mariadb|";
constexpr std::string_view kPostgres = "|postgres|";
constexpr std::string_view kPostgresBoth = "|postgres|odbc-postgres|";
constexpr std::string_view kFirebird = "|firebird|";
constexpr std::string_view kSqlite = "|sqlite|";

// Each with a real parameter beside what only looks like one.
TEST_F(Places, ParametersAreWhereTheServerReadsThem) {
  struct Case {
    std::string_view servers, sql, want;
    std::string_view value = "v";
  };
  constexpr Case kCases[] = {
      {kMariaDB, R"(SELECT CONCAT('it\'s :x ? ', :P))", "it's :x ? v"},
      {kMariaDB, R"(SELECT CONCAT("\":x", :P, '?\\'))", R"(":xv?\)"},
      {kMariaDB, "SELECT :P # :x ?\n", "v"},
      {kMariaDB, "SELECT CONCAT(5--2, :P) -- :x", "7v"},
      {kMariaDB, "SELECT @v:=:P", "v"},
      {kMariaDB, "SELECT /*! :P */", "v"},
      {kMariaDB, "SELECT `a?:b` FROM (SELECT :P AS `a?:b`) AS U", "v"},
      {kPostgresBoth, R"(SELECT E'it\'s :x ? ' || :P)", "it's :x ? v"},
      {kPostgresBoth, R"(SELECT '\' || :P || '?\')", R"(\v?\)"},
      {kPostgresBoth, "SELECT $$:x ?$$ || :P || $a$ $b$ :y $a$", ":x ?v $b$ :y "},
      {kPostgresBoth, "SELECT /* /* :x */ :y */ :P || ''", "v"},
      {kPostgresBoth, "SELECT :P::text", "v"},
      {kPostgres, R"(SELECT ('{"v":1}'::jsonb ? :P)::text)", "true"},
      {kPostgres, R"(SELECT ('{"v":1}'::jsonb ?| ARRAY[:P])::text)", "true"},
      {kPostgres, R"(SELECT ('{"v":1}'::jsonb ?& ARRAY[:P])::text)", "true"},
      {kPostgres, R"(SELECT ('{"v":1}'::jsonb @? '$.v')::text || :P)", "truev"},
      {kPostgresBoth,
       "SELECT array_to_string((ARRAY['a','b','c'])[1:n], ',') || :P FROM (SELECT 2 AS n) AS U",
       "a,bv"},
      {kPostgres, "SELECT (ARRAY['a','b','c'])[:P]", "b", "2"},
      {kFirebird, "SELECT q'{it's :x ?}' || CAST(:P AS VARCHAR(9)) FROM RDB$DATABASE",
       "it's :x ?v"},
      {kFirebird,
       "EXECUTE BLOCK (x VARCHAR(9) = :P) RETURNS (z VARCHAR(20)) AS BEGIN z = :x || '?';"
       " SUSPEND; END",
       "v?"},
      {kSqlite, "SELECT [a:b] || :P FROM (SELECT 'x' AS [a:b])", "xv"},
  };
  for (const Case& c : kCases) {
    if (!On(c.servers)) continue;
    EXPECT_EQ(Answer(c.sql, {{"P", c.value}}), c.want) << c.sql;
  }
}

TEST_F(Places, FollowTheSessionsMode) {
  if (ServerName() != "mariadb") return;
  Run("SET SESSION sql_mode = CONCAT(@@sql_mode, ',NO_BACKSLASH_ESCAPES')");
  EXPECT_EQ(Answer(R"(SELECT CONCAT('\', :P, '?\'))", {{"P", "v"}}), R"(\v?\)");
  Run("SET SESSION sql_mode = 'ANSI_QUOTES'");
  EXPECT_EQ(Answer(R"(SELECT CONCAT("a\", :P, '\'') FROM (SELECT 'x' AS "a\") AS U)", {{"P", "v"}}),
            "xv'");
}

// Without a value nothing of a statement is taken out, and the server refuses what it does not
// know.
TEST_F(Places, WithoutValuesAreUntouched) {
  if (On(kPostgres)) {
    EXPECT_EQ(Ask(R"(SELECT ('{"v":1}'::jsonb ? 'v')::text)"), "true");
  }
  MakeTable("T", "I INTEGER");
  for (const std::string_view place : {":x", "?"}) {
    const std::string insert = Format("INSERT INTO T VALUES (%s)", {place});
    EXPECT_THROW(Run(insert), EServerError) << place;
    EXPECT_THROW(Ask(Format("SELECT I FROM T WHERE I = %s", {place})), EServerError) << place;
  }
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
  if (!OnSqlite()) return;
  const auto refusal = [](std::string_view place) {
    return Format("SQL Server Error: The parameter %s has been given no value", {place});
  };
  for (const std::string_view place : {":x", "?", "?5", "@x", "$x"}) {
    EXPECT_EQ(MessageOf<EServerError>([&] { Run(Format("INSERT INTO T VALUES (%s)", {place})); }),
              refusal(place));
  }
  for (const std::string_view place : {"?5", "@x", "$x"}) {
    const std::string sql = Format("SELECT %s, :P", {place});
    EXPECT_EQ(MessageOf<EServerError>([&] { Answer(sql, {{"P", "v"}}); }), refusal(place));
  }
}

// One name has one value.
TEST_F(Places, OneNameInSeveralPlaces) {
  MakeTable("T", "I INTEGER");
  for (const char* id : {"1", "2", "3"}) Run(Format("INSERT INTO T VALUES (%s)", {id}));
  EXPECT_EQ(Answer("SELECT COUNT(*) FROM T WHERE I = :I OR I = :J OR I = :I + 1",
                   {{"I", "", 1}, {"J", "", 3}}),
            "3");
}

TEST_F(Places, ANameIsTestedForNullBesideItsOtherPlaces) {
  MakeTable("T", "I INTEGER, N VARCHAR(10)");
  Run("INSERT INTO T VALUES (1, 'a')");
  Run("INSERT INTO T VALUES (2, 'b')");
  Run("INSERT INTO T VALUES (3, 'b')");
  constexpr std::string_view kSearch =
      "SELECT COUNT(*) FROM T WHERE (:I IS NULL OR I = :I) AND (:N IS NULL OR N = :N)";
  EXPECT_EQ(Answer(kSearch, {{"I"}, {"N"}}), "3");
  EXPECT_EQ(Answer(kSearch, {{"I", "", 2}, {"N"}}), "1");
  EXPECT_EQ(Answer(kSearch, {{"I"}, {"N", "b"}}), "2");
  EXPECT_EQ(Answer(kSearch, {{"I", "", 1}, {"N", "b"}}), "0");
  EXPECT_EQ(Answer("SELECT COUNT(*) FROM T WHERE :N IS NOT NULL", {{"N", "x"}}), "3");
  EXPECT_EQ(Answer("SELECT COUNT(*) FROM T WHERE :N IS NOT NULL", {{"N"}}), "0");
}

// Where the place tells the server no type the value does, also in a transaction, which stays.
TEST_F(Places, PostgreSQLTakesTheTypeOfAValue) {
  if (ServerName() != "postgres") return;
  struct Case {
    std::string_view sql;
    Given value;
    std::string_view want;
  };
  constexpr Case kCases[] = {
      {"SELECT concat(:P, 'x')", {"P", "", 7}, "7x"},
      {"SELECT concat(:P, 'x')", {"P"}, "x"},
      {"SELECT concat(:P, 'x')", {"P", "v"}, "vx"},
      {"SELECT :P", {"P", "v"}, "v"},
      {"SELECT :P", {"P"}, ""},
      {"SELECT (:P IS NULL)::text", {"P"}, "true"},
      {"SELECT (1 = 1 AND :P IS NULL)::text", {"P", "v"}, "false"},
      {"SELECT jsonb_build_object('a', :P)::text", {"P", "", 7}, R"({"a": 7})"},
      {"SELECT jsonb_build_object('a', :P)::text", {"P", "7"}, R"({"a": "7"})"},
      {"SELECT :P + :P", {"P", "", 7}, "14"},
      {"SELECT to_char(:P, '999')", {"P", "", 7}, "   7"},
      {"SELECT count(*) FROM T WHERE COALESCE(:P, :P) = S", {"P", "", 7}, "1"},
  };
  MakeTable("T", "S SMALLINT, B BOOLEAN, U UUID");
  Run("INSERT INTO T VALUES (7, true, '00000000-0000-0000-0000-000000000001')");
  for (const bool inside : {false, true}) {
    if (inside) connection_->StartTransaction({});
    for (const Case& c : kCases) EXPECT_EQ(Answer(c.sql, {c.value}), c.want) << c.sql;
    if (inside) connection_->Commit({});
    connection_->Close();  // knows no statement any more
  }
  connection_->StartTransaction({});
  EXPECT_THROW(Answer("SELECT nowhere(:P)", {{"P", "v"}}), EServerError);
  EXPECT_THAT(MessageOf<EServerError>([&] { connection_->Commit({}); }), HasSubstr("rolled back"));
  connection_->Rollback({});
}

// The server's own way where the place decides.
TEST_F(Places, PostgreSQLKeepsTheTypeOfThePlace) {
  if (ServerName() != "postgres") return;
  connection_->StartTransaction({});
  Run("CREATE TYPE KV_MOOD AS ENUM ('low', 'high')");
  Run("CREATE TABLE KV_T (S SMALLINT, B BOOLEAN, U UUID, M KV_MOOD, D DATE)");
  constexpr std::string_view kUuid = "00000000-0000-0000-0000-000000000001";
  const std::initializer_list<Given> values = {
      {"S", "", 7}, {"B", "", 1}, {"U", kUuid}, {"M", "high"}, {"D", "2004-02-29"}};
  TSQLQuery insert;
  insert.SetSQLConnection(connection_.get());
  insert.SQL().Add("INSERT INTO KV_T VALUES (:S, :B, :U, :M, :D)");
  for (const Given& value : values) Give(insert, value);
  insert.ExecSQL();
  constexpr std::string_view kSearch =
      "SELECT COUNT(*) FROM KV_T WHERE (:S IS NULL OR S = :S) AND (:B IS NULL OR B = :B)"
      " AND (:U IS NULL OR U = :U) AND (:M IS NULL OR M = :M) AND (:D IS NULL OR D = :D)";
  EXPECT_EQ(Answer(kSearch, values), "1");
  EXPECT_EQ(Answer(kSearch, {{"S"}, {"B"}, {"U"}, {"M"}, {"D"}}), "1");
  EXPECT_EQ(Answer(kSearch, {{"S"}, {"B"}, {"U"}, {"M", "low"}, {"D"}}), "0");
  EXPECT_EQ(Answer("SELECT concat(:N, M) FROM KV_T WHERE M = :M", {{"N", "", 7}, {"M", "high"}}),
            "7high");
  connection_->Rollback({});
}

// The server has them, and no field can: whoever reads one gets an error that names it, and the
// program goes on.
TEST_F(Places, ValuesWithoutAFormNameTheirField) {
  struct Case {
    std::string_view servers, value;
  };
  constexpr Case kCases[] = {
      {"|mariadb|", "TIMEDIFF('-01:00:00', '900:00:00')"},
      {"|mariadb|", "CAST('24:00:00' AS TIME)"},
      {kPostgres, "'infinity'::timestamp"},
      {kPostgres, "'NaN'::numeric"},
      {kPostgres, "'10000-01-01'::date"},
      {kPostgres, "'0044-03-15 BC'::date"},
  };
  for (const Case& c : kCases) {
    if (!On(c.servers)) continue;
    SCOPED_TRACE(c.value);
    const std::string sql = Format("SELECT 1 AS A, %s AS BAD, 'z' AS Z", {c.value});
    TSQLQuery query(nullptr, "Qry");
    query.SetSQLConnection(connection_.get());
    query.SQL().Add(sql);
    query.Open();
    EXPECT_THAT(MessageOf<EDatabaseError>([&] { query.FieldByName("BAD").AsString(); }),
                HasSubstr("Field '" + query.Fields(1).FieldName() + "': "));
    EXPECT_EQ(query.FieldByName("A").AsInteger(), 1) << "the others of the row stay";
    EXPECT_EQ(query.FieldByName("Z").AsString(), "z");
    query.Next();
    EXPECT_TRUE(query.Eof());
    const app::Outcome shown = app::Kvshare({"sql", "--connect", kAlias, sql});
    EXPECT_EQ(shown.status, 1);
    EXPECT_THAT(shown.err, StartsWith("kvshare: "));
    EXPECT_THAT(shown.err, HasSubstr("Field '" + query.Fields(1).FieldName() + "': "));
  }
  EXPECT_EQ(Ask(ServerName() == "firebird" ? "SELECT 1 FROM RDB$DATABASE" : "SELECT 1"), "1");
}

}  // namespace
}  // namespace kvshare
