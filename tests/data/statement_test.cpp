// How each server reads statements.
#include "kvshare/data/sql/statement.h"

#include <gmock/gmock.h>

namespace kvshare::data {
namespace {

constexpr Lexis kStandard;
constexpr Lexis kMariaDb{.backslashEscapes = true,
                         .escapesInDoubleQuotes = true,
                         .hashComments = true,
                         .dashesNeedBlank = true,
                         .codeComments = true,
                         .backticks = true};
constexpr Lexis kNamesInDoubleQuotes{.backslashEscapes = true};
constexpr Lexis kPostgres{.nestedComments = true,
                          .dollarQuotes = true,
                          .escapeTexts = true,
                          .subscripts = true,
                          .questionOperators = true};
constexpr Lexis kFirebird{.alternativeQuotes = true, .blocks = true};
constexpr Lexis kSqlite{.backticks = true, .brackets = true};
constexpr Lexis kSqlServer{.brackets = true, .nestedComments = true};

struct Case {
  const char* sql;
  const char* places;  // the statement with `<name>` in its places
  const char* why = "";
};

void ExpectPlaces(const char* server, const Lexis& lexis, std::initializer_list<Case> cases) {
  SCOPED_TRACE(server);
  for (const Case& c : cases) {
    const ParsedStatement parsed = ParseStatement(c.sql, lexis);
    std::string places = parsed.texts.front();
    for (std::size_t i = 0; i < parsed.names.size(); ++i) {
      places.append("<").append(parsed.names[i]).append(">").append(parsed.texts.at(i + 1));
    }
    EXPECT_EQ(places, c.places) << c.sql << "  " << c.why;
  }
}

TEST(Statement, OnEveryServer) {
  for (const Lexis& lexis : {kStandard, kMariaDb, kPostgres, kFirebird, kSqlite, kSqlServer}) {
    ExpectPlaces("any", lexis,
                 {{"", ""},
                  {"SELECT 1", "SELECT 1"},
                  {"a=:A,b=:b_2;", "a=<A>,b=<b_2>;"},
                  {"a=? AND b IN (?,?)", "a=<> AND b IN (<>,<>)"},
                  {":\xA1\xD2 :a$", "<\xA1\xD2> <a>$", "Thai letters, and none that names lack"},
                  {"'it''s :x' :y", "'it''s :x' <y>"},
                  {"\"a?\"\"b:c\" :y", "\"a?\"\"b:c\" <y>"},
                  {"-- :x\r\n:y /* :z */ :w", "-- :x\r\n<y> /* :z */ <w>"},
                  {"x::text 12:30 : := :1 ?5", "x::text 12:30 : := :1 ?5", "no names"},
                  {"x::text::c :::d", "x::text::c ::<d>"},
                  {":a::int", "<a>::int"},
                  {"a - :a / :b", "a - <a> / <b>"},
                  {"'open :x", "'open :x"},
                  {"\"open :x", "\"open :x"},
                  {"/* open :x", "/* open :x"},
                  {"/*/ :x", "/*/ :x", "does not end at once"},
                  {"-- :x", "-- :x"},
                  {":x '", "<x> '"},
                  {"?", "<>"},
                  {":", ":"}});
  }
}

TEST(Statement, OnMariaDB) {
  ExpectPlaces("MariaDB", kMariaDb,
               {{"'it\\'s :x ' :P", "'it\\'s :x ' <P>"},
                {"'\\\\' :P '", "'\\\\' <P> '", "an escaped backslash"},
                {"\"\\\":x\" :P", "\"\\\":x\" <P>"},
                {"'a''\\':x' :P", "'a''\\':x' <P>"},
                {"`a\\` :P `:x``?`", "`a\\` <P> `:x``?`", "names have no escapes"},
                {"# :x ?\n:P", "# :x ?\n<P>"},
                {"1--:P", "1--<P>", "minus a negative number"},
                {"--\t:x\n:P", "--\t:x\n<P>"},
                {"--\n:P", "--\n<P>"},
                {"--", "--"},
                {"@v:=:P", "@v:=<P>"},
                {"/*! :P */ /*M!100000 ? */ /* :x */", "/*! <P> */ /*M!100000 <> */ /* :x */"},
                {"/* /* :x */ :P", "/* /* :x */ <P>", "no nesting"},
                {"'\\", "'\\", "never closed"},
                {"[a:b] $$:P$$", "[a<b>] $$<P>$$", "no quotes here"}});
  ExpectPlaces("MariaDB without escapes", {.hashComments = true},
               {{"'\\' :P '\\'", "'\\' <P> '\\'"}});
  ExpectPlaces("MariaDB with ANSI quotes", kNamesInDoubleQuotes,
               {{"\"a\\\" :P '\\'?'", "\"a\\\" <P> '\\'?'"}});
}

TEST(Statement, OnPostgreSQL) {
  ExpectPlaces("PostgreSQL", kPostgres,
               {{"'\\' :P '?'", "'\\' <P> '?'", "no escapes"},
                {"E'\\':x' e'\\\\' :P", "E'\\':x' e'\\\\' <P>", "but here"},
                {"E'a''b\\':x' :P", "E'a''b\\':x' <P>", "behind a doubled quote"},
                {"E'a'\n  'b\\':x' :P", "E'a'\n  'b\\':x' <P>", "goes on in the next line"},
                {"E'a' '\\' :P", "E'a' '\\' <P>", "not in the same one"},
                {"CASE'\\' :P '?'", "CASE'\\' <P> '?'", "that E ends a word"},
                {"\xA1\x45'\\' :P", "\xA1\x45'\\' <P>", "and this one a Thai one"},
                {"$$:x ?$$ :P", "$$:x ?$$ <P>"},
                {"$a$ $b$ :x $$ $a$ :P", "$a$ $b$ :x $$ $a$ <P>"},
                {"a$b$c :P $b$", "a$b$c <P> $b$", "part of a name"},
                {"$1 :P $2$ :Q", "$1 <P> $2$ <Q>", "numbers begin no tag"},
                {"$x$ :P $x", "$x$ :P $x", "never closed"},
                {"$x :P", "$x <P>"},
                {"/* /* :x */ :y */ :P", "/* /* :x */ :y */ <P>"},
                {"/* /* */ :x", "/* /* */ :x", "never closed"},
                {"a[1:n] = :P", "a[1:n] = <P>"},
                {"a[b:c] a[f(x):d] \"a\"[b[1]:e]", "a[b:c] a[f(x):d] \"a\"[b[1]:e]"},
                {"a[:n] ARRAY[:x, :y]", "a[<n>] ARRAY[<x>, <y>]", "elements"},
                {"a[:l : :u]", "a[<l> : <u>]"},
                {"a[1] :P [", "a[1] <P> ["},
                {"] x:P", "] x<P>", "no bracket is open"},
                {"j ?| :P AND j ?& k AND j @? p", "j ?| <P> AND j ?& k AND j @? p"},
                {"j ? 'a' AND i = :P", "j ? 'a' AND i = <P>", "an operator beside names"},
                {"j ?| a AND i = ?", "j ?| a AND i = <>"},
                {"LIKE ?||'%'", "LIKE <>||'%'"},
                {"x::text = :P::text", "x::text = <P>::text"},
                {"# `:P`", "# `<P>`", "an operator, and no quote"}});
}

TEST(Statement, OnFirebird) {
  ExpectPlaces(
      "Firebird", kFirebird,
      {{"q'{it's :x}' :P", "q'{it's :x}' <P>"},
       {"q'[:x]' Q'(:y)' q'<:z>' q'!:w!' :P", "q'[:x]' Q'(:y)' q'<:z>' q'!:w!' <P>"},
       {"q'{:x} :y'", "q'{:x} :y'", "never closed"},
       {"q'", "q'"},
       {"aq'{' :P '}'", "aq'{' <P> '}'", "that Q ends a word"},
       {"EXECUTE BLOCK (x INT = :P, y INT = ?) RETURNS (z INT) AS BEGIN z = :x; END",
        "EXECUTE BLOCK (x INT = <P>, y INT = <>) RETURNS (z INT) AS BEGIN z = :x; END"},
       {"-- :a\n execute/* AS */block(x INT=:P)as begin end:x",
        "-- :a\n execute/* AS */block(x INT=<P>)as begin end:x"},
       {"EXECUTE BLOCK AS BEGIN :x", "EXECUTE BLOCK AS BEGIN :x"},
       {"EXECUTE BLOCK (x NUMERIC(9) = :P", "EXECUTE BLOCK (x NUMERIC(9) = <P>"},
       {"EXECUTE PROCEDURE AS_(:P)", "EXECUTE PROCEDURE AS_(<P>)"},
       {"CREATE OR ALTER PROCEDURE X AS BEGIN :a", "CREATE OR ALTER PROCEDURE X AS BEGIN :a"},
       {"SELECT 1 AS CREATED, :P", "SELECT 1 AS CREATED, <P>"}});
}

TEST(Statement, OnSqliteAndSqlServer) {
  ExpectPlaces("SQLite", kSqlite,
               {{"[a:b] `c?` :P", "[a:b] `c?` <P>"},
                {"@a $b ?5 :P", "@a $b ?5 <P>", "the server's own parameters"},
                {"[open :x", "[open :x"},
                {"/* /* */ :P", "/* /* */ <P>"}});
  ExpectPlaces("SQL Server", kSqlServer,
               {{"[a]]:b] @v :P", "[a]]:b] @v <P>"}, {"/* /* */ :x */ :P", "/* /* */ :x */ <P>"}});
}

}  // namespace
}  // namespace kvshare::data
