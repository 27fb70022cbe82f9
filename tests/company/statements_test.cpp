// Statements of every kind from the command line, as each server understands them.
#include <gmock/gmock.h>

#include "kvshare/rtl/strutils.h"
#include "tests/apps/tempfile.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using app::Outcome;

class Statements : public ServerCompany {
 protected:
  Statements() { MakeTable("T", "ID INTEGER NOT NULL, NAME VARCHAR(20)"); }

  // By the command, on a connection of its own.
  Outcome Sql(const std::string& sql, std::vector<std::string> more = {"--csv"}) const {
    connection_->Close();
    more.insert(more.begin(), {"sql", "--connect", kAlias, sql});
    Outcome got = app::Kvshare(more);
    got.out = UpperCase(got.out);  // PostgreSQL gives names in small letters
    return got;
  }
  std::string Names() const {
    TSQLQuery query;
    query.SetSQLConnection(connection_.get());
    query.SQL().Add("SELECT ID, NAME FROM T ORDER BY ID");
    std::string names;
    for (query.Open(); !query.Eof(); query.Next()) {
      names += query.Fields(0).AsString() + query.Fields(1).AsString() + " ";
    }
    return names;
  }
  // Makes it anew; `drop` fails where it is not there.
  void MakeProcedure(const std::string& name, const std::string& create) {
    try {
      Run("DROP PROCEDURE " + name);
    } catch (const EDatabaseError&) {
      connection_->Close();
    }
    Run(create);
  }
};

TEST_F(Statements, AChangeTellsItsRows) {
  const bool named = OnSqlite() || ServerName().ends_with("postgres");
  const struct {
    const char* sql;
    const char* out;
    bool runs;
  } cases[] = {
      {"INSERT INTO T VALUES (1, 'a')", "{\"CHANGED\":1}\n", true},
      {"-- a remark\nUPDATE T SET NAME = 'b'; -- all", "{\"CHANGED\":1}\n", true},
      {"DELETE FROM T WHERE ID = 9", "{\"CHANGED\":0}\n", true},
      {"INSERT INTO T WITH N AS (SELECT ID + 1 AS X FROM T) SELECT X, 'w' FROM N",
       "{\"CHANGED\":1}\n", true},
      {"WITH N AS (SELECT ID FROM T) INSERT INTO T SELECT ID + 2, 'x' FROM N", "{\"CHANGED\":2}\n",
       named},
      {"WITH N AS (SELECT 4 AS X) DELETE FROM T WHERE ID IN (SELECT X FROM N)", "{\"CHANGED\":1}\n",
       named},
      {"CREATE VIEW V AS SELECT * FROM T", "", true},
      {"DROP VIEW V", "", true},
  };
  for (const auto& c : cases) {
    if (!c.runs) continue;
    const Outcome got = Sql(c.sql, {"--json"});
    EXPECT_EQ(got.out + got.err, c.out) << c.sql;
    EXPECT_EQ(got.status, 0) << c.sql;
  }
  EXPECT_EQ(Names(), named ? "1b 2w 3x " : "1b 2w ");
  EXPECT_EQ(Sql("DELETE FROM T").out, "") << "for the person at a terminal alone";
  EXPECT_EQ(Names(), "");
}

TEST_F(Statements, AChangeGivesTheRowsThatItReturns) {
  const Outcome made = Sql("INSERT INTO T VALUES (7, 'it''s; -- r') RETURNING ID, NAME");
  EXPECT_EQ(made.out + made.err, "ID,NAME\r\n7,IT'S; -- R\r\n");
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(Names(), "7it's; -- r ");
  const Outcome failed = Sql("INSERT INTO T VALUES (NULL, 'x') RETURNING ID");
  EXPECT_EQ(failed.out, "");
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(Names(), "7it's; -- r ");
}

TEST_F(Statements, ACallRunsOnceAndMayGiveRows) {
  if (OnSqlite()) {
    const Outcome set = Sql("PRAGMA foreign_keys = OFF");
    EXPECT_EQ(set.out + set.err, "");
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(Sql("PRAGMA foreign_keys").out, "FOREIGN_KEYS\r\n1\r\n") << "of each connection";
    return;
  }
  std::string call = "CALL P()";
  std::string ask = "CALL Q()";
  if (OnMariaDB()) {
    MakeProcedure("P", "CREATE PROCEDURE P() INSERT INTO T VALUES (8, 'p')");
    MakeProcedure("Q", "CREATE PROCEDURE Q() SELECT 5 AS ID");
  } else if (ServerName().ends_with("postgres")) {
    MakeProcedure("P", "CREATE PROCEDURE P() LANGUAGE SQL AS 'INSERT INTO T VALUES (8, ''p'')'");
    MakeProcedure("Q", "CREATE PROCEDURE Q(INOUT ID INTEGER) LANGUAGE SQL AS 'SELECT 5'");
    ask = "CALL Q(1)";
  } else {
    MakeProcedure("P", "CREATE PROCEDURE P AS BEGIN INSERT INTO T VALUES (8, 'p'); END");
    MakeProcedure("Q", "CREATE PROCEDURE Q RETURNS (ID INTEGER) AS BEGIN ID = 5; END");
    call = "EXECUTE PROCEDURE P";
    ask = "EXECUTE PROCEDURE Q";
  }
  const Outcome called = Sql(call);
  EXPECT_EQ(called.out + called.err, "");
  EXPECT_EQ(called.status, 0);
  EXPECT_EQ(Names(), "8p ");
  const Outcome asked = Sql(ask);
  EXPECT_EQ(asked.out + asked.err, "ID\r\n5\r\n");
  EXPECT_EQ(asked.status, 0);
  for (const char* name : {"P", "Q"}) Run(std::string("DROP PROCEDURE ") + name);
}

TEST_F(Statements, ASelectMayMakeATable) {
  if (!ServerName().ends_with("postgres")) return;
  DropTable("u");
  const Outcome made = Sql("SELECT 5 AS ID INTO U");
  EXPECT_EQ(made.out + made.err, "");
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(Ask("SELECT ID FROM U"), "5");
  Run("DROP TABLE U");
}

}  // namespace
}  // namespace kvshare
