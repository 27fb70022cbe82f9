#include "apps/kvshare/data/sqltext.h"

#include <gtest/gtest.h>

namespace kvshare::app {
namespace {

TEST(SqlText, KindsOfStatements) {
  using enum SqlKind;
  const struct {
    SqlKind kind;
    const char* sql;
  } cases[] = {
      {Query, "select*FROM T"},
      {Query, "VALUES(1)"},
      {Query, "TABLE T"},
      {Query, "DESC T"},
      {Query, "Pragma foreign_keys"},
      {Query, "EXPLAIN INSERT INTO T VALUES (1)"},
      {Query, " -- a remark\n/* and\n another */ # a third\n((SELECT 1) UNION SELECT 2)"},
      {Query, "(/* ( */ (SELECT 1))"},
      {Query, "WITH A AS (SELECT 1) SELECT * FROM A"},
      {Query, "WITH A AS (INSERT INTO T VALUES (1) RETURNING X) SELECT * FROM A"},
      {Query, "WITH RECURSIVE A(N) AS (VALUES (1)), REPLACE AS (SELECT ')') TABLE A"},
      {Query, "WITH A AS (SELECT 1) SEARCH DEPTH FIRST BY X, UPDATE SET Y SELECT 1"},
      {Change, "WITH A AS (SELECT 1) INSERT INTO T SELECT * FROM A"},
      {Change, "with \"SELECT\"(N) as not materialized (select '(' /* ( */) update T set N = 1"},
      {Change, "WITH A AS (SELECT ')'), B AS (SELECT 1) DELETE FROM T"},
      {Change, "/* one */ INSERT INTO T WITH A AS (SELECT 1) SELECT * FROM A"},
      {Change, "INSERT INTO T VALUES ('RETURNING', 'it''s RETURNING') -- RETURNING"},
      {Change, "UPDATE T SET A = (SELECT RETURNING FROM U)"},
      {Change, "MERGE INTO T USING U ON 1 = 1 WHEN MATCHED THEN DELETE"},
      {ChangeWithRows, "DELETE FROM T returning ID"},
      {ChangeWithRows, "WITH A AS (SELECT 1) INSERT INTO T SELECT * FROM A RETURNING(ID)"},
      {ChangeWithRows, "INSERT INTO T VALUES ('it\\'s') RETURNING ID"},
      {ChangeWithRows, "INSERT INTO T VALUES ('C:\\') RETURNING ID"},
      {ChangeWithRows, "CALL P(1)"},
      {ChangeWithRows, "execute procedure P"},
      {Other, "CREATE TABLE SELECTED (X INTEGER)"},
      {Other, "SELECTED"},
      {Other, "-- nothing"},
      {Other, "/* nothing"},
      {Other, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(KindOfSql(c.sql), c.kind) << c.sql;
}

// What a batch of these lines is refused for; "" where it runs.
std::string Loss(std::string_view text) {
  TStringList lines;
  lines.SetText(text);
  return PrepareBatch(lines).value_or("");
}

TEST(SqlText, LinesThatWouldLoseSomething) {
  constexpr const char* kBehind =
      "what stands behind the first `;` would not be run: begin each statement on a line of its "
      "own: ";
  constexpr const char* kInText = "the `;` in the quoted text would end the statement:";
  constexpr const char* kInRemark = "the `;` in the remark would end the statement:";
  const struct {
    std::string text;
    std::string loss;  // how it begins
    const char* why;
  } cases[] = {
      {"A;\nB;", "", "a statement a line"},
      {"A\nB; -- said; done\nC; # so\nD; /* x */ ; -- y", "", "remarks behind may be lost"},
      {"A;;\n ; \n", "", "empty statements"},
      {"A;\n\nB; C\nD; E", std::string("line 3: ") + kBehind + "C", "the first such line"},
      {"A; B\x1B[2J", std::string("line 1: ") + kBehind + "B?[2J",
       "nothing that steers a terminal"},
      {"A; /* x */ B", std::string("line 1: ") + kBehind, "behind a remark"},
      {"A; /* x\n B */", std::string("line 1: ") + kBehind, "a remark that goes on"},
      {"A 'x;y'", std::string("line 1: ") + kInText, "in quotes"},
      {"A 'x; -- y'", std::string("line 1: ") + kInText, "what looks like a remark"},
      {"A\n'one\ntwo; -- x'", std::string("line 3: ") + kInText, "a text of several lines"},
      {"A 'x;\ny'", std::string("line 1: ") + kInText, "at the line's end"},
      {"A \"x;y\"", std::string("line 1: ") + kInText, "a quoted name"},
      {"A 'it''s';\nB 'one\ntwo';\nC", "", "texts that have ended"},
      {"A 'it\\'s'; -- x", "", "`\\` before a quote where it escapes"},
      {"A 'C:\\'; -- x", "", "and where it does not"},
      {"A 'C:\\'; B", std::string("line 1: ") + kBehind, "lost in every reading"},
      {"A -- it's\n;", "", "a quote in a remark opens nothing"},
      {"A -- all; of them\n;", std::string("line 1: ") + kInRemark, "in a remark"},
      {"A -- all;\nWHERE X;", std::string("line 1: ") + kInRemark, "at the remark's end"},
      {"/* A;\nB; */", std::string("line 1: ") + kInRemark, "a remark of lines"},
      {"-- A; B\n--\tC;\nA -- x\n -- B; C\n;", "", "lines that are remarks"},
      {"--A;", std::string("line 1: ") + kInRemark, "no remark to MariaDB"},
      {"A '\n-- x; y'", std::string("line 2: ") + kInText, "no remark inside a text"},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(Loss(c.text).starts_with(c.loss)) << c.why << ": " << Loss(c.text);
    EXPECT_EQ(Loss(c.text).empty(), c.loss.empty()) << c.why << ": " << Loss(c.text);
  }
  EXPECT_EQ(LossInStatement("-- a\nA;\n-- b"), std::nullopt);
  EXPECT_NE(LossInStatement("A;\nB"), std::nullopt) << "all that follows the `;`";
  EXPECT_NE(LossInStatement("-- a; b\nA"), std::nullopt) << "nothing would run";

  TStringList lines;
  lines.SetText("A\n-- x; y\n '\n-- z'\n;");
  EXPECT_EQ(PrepareBatch(lines), std::nullopt);
  EXPECT_EQ(lines.CommaText(), "A,,\" '\",\"-- z'\",;") << "a text keeps what looks like a remark";
}

}  // namespace
}  // namespace kvshare::app
