#include "kvshare/database/sqlfunc.h"

#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlrights.h"
#include "kvshare/database/sqlsplit.h"
#include "kvshare/database/tablenames.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "tests/database/company.h"

namespace kvshare {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SqlFunc : public Company {
 protected:
  SqlFunc() { Run("CREATE TABLE T (ID INTEGER PRIMARY KEY, NAME VARCHAR(20))"); }
  std::string Count() { return Single("SELECT COUNT(*) FROM T"); }
};

std::string Box(std::string_view message, std::string_view statement) {
  return std::string("พบข้อผิดพลาด"_th) + "\r\n" + std::string(message) + "\r\n" +
         std::string("ขณะทำคำสั่ง"_th) + "\r\n" + std::string(statement);
}

TEST_F(SqlFunc, ConnectsByName) {
  TSQLConnection connection;
  EXPECT_FALSE(CanConnectDBMS(connection, "NONE"));
  EXPECT_FALSE(CanConnectDBMS(connection, ""));
  EXPECT_THAT(Boxes(), IsEmpty()) << "no connection, no question";
  EXPECT_TRUE(CanConnectDBMS(connection, "SHOP"));
  EXPECT_FALSE(connection.Connected());
  EXPECT_FALSE(CanConnectDBMS(connection, "GONE"));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("unable to open database file")));

  ConnectDBMS(connection, "SHOP", true);
  EXPECT_TRUE(connection.Connected());
  EXPECT_EQ(connection.ConnectionName() + connection.DriverName() + connection.LibraryName,
            "SHOPSQLITEkvshare-sqlite");
  EXPECT_FALSE(connection.LoginPrompt);
  ConnectDBMS(connection, " \t", true);
  EXPECT_FALSE(connection.Connected());
  ConnectDBMS(connection, "GONE", false);
  EXPECT_THAT(Boxes(), IsEmpty());
  ConnectDBMS(connection, "GONE", true);
  EXPECT_EQ(boxes_.messages.size(), 1u);
  EXPECT_EQ(boxes_.messages[0].type, TMsgDlgType::mtError);
  EXPECT_EQ(boxes_.messages[0].buttons, TMsgDlgButtons({TMsgDlgBtn::mbOK}));
  EXPECT_FALSE(connection.Connected());
  DisConnectDBMS(connection);
}

TEST_F(SqlFunc, QueriesStayOpenOrClosed) {
  TSQLQuery query;
  query.SetSQLConnection(&connection_);
  RunSQL(query, "SELECT 'a;b' AS X", true);
  EXPECT_EQ(query.FieldByName("x").AsString(), "a;b");
  RunSQL(query, "SELECT * FROM NONE", false);
  EXPECT_FALSE(query.Active());
  RunSQL(query, "SELECT * FROM NONE", true);
  EXPECT_THAT(Boxes(), ElementsAre("SQL Server Error: no such table: NONE"));
  RunSQLList(query, Lines({"SELECT 1 AS A,", "  2 AS B"}), true);
  EXPECT_EQ(query.FieldByName("B").AsInteger(), 2);
  EXPECT_EQ(query.SQL()[1], "  2 AS B") << "lines as they are";
}

TEST_F(SqlFunc, TextsMayLieInWhatTheyAreGivenTo) {
  const std::string sql = "SELECT 5 AS \"SELECT 'a name that is long' AS X\"";
  TSQLQuery query;
  query.SetSQLConnection(&connection_);
  query.SQL().Add(sql);
  RunSQL(query, query.SQL()[0], true);
  ASSERT_TRUE(query.Active());
  EXPECT_EQ(query.Fields(0).AsInteger(), 5);
  RunSQL(query, query.Fields(0).FieldName(), true);
  EXPECT_EQ(query.FieldByName("X").AsString(), "a name that is long");
  RunSQLList(query, query.SQL(), true);
  EXPECT_EQ(query.FieldByName("X").AsString(), "a name that is long");

  std::string TSQLConnection::*const texts[] = {&TSQLConnection::LibraryName,
                                                &TSQLConnection::VendorLib};
  for (const auto text : texts) {
    TSQLConnection connection;
    connection.*text = "SHOP";
    ConnectDBMS(connection, connection.*text, true);
    EXPECT_TRUE(connection.Connected());
  }
  TSQLConnection connection(nullptr, "Con");
  connection.SetConnectionName("WORKSHOP");
  EXPECT_TRUE(CanConnectDBMS(connection, std::string_view{connection.ConnectionName()}.substr(4)));
  connection.Params.Assign(Lines({"another parameter with a long name", "SHOP"}));
  ConnectDBMS(connection, connection.Params[1], true);
  EXPECT_TRUE(connection.Connected());
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(SqlFunc, OneStatement) {
  const std::int32_t before = KovraTranactionId;
  EXPECT_FALSE(RunExecSQL(connection_, "", true));
  EXPECT_FALSE(RunExecSQL(connection_, " \r\n\t", true));
  EXPECT_EQ(KovraTranactionId, before) << "no transaction";
  EXPECT_TRUE(RunExecSQL(connection_, " INSERT INTO T VALUES (1, 'a') ; DROP TABLE T", true));
  EXPECT_EQ(KovraTranactionId, before + 1);
  EXPECT_EQ(Count(), "1");
  EXPECT_FALSE(RunExecSQL(connection_, " INSERT INTO T VALUES (2, 'a;b')", true));
  EXPECT_THAT(Boxes(), ElementsAre(Box("SQL Server Error: unrecognized token: \"'a\"",
                                       " INSERT INTO T VALUES (2, 'a;b')")))
      << "cut in a quoted text; shown as passed";
  EXPECT_FALSE(RunExecSQL(connection_, "INSERT INTO T VALUES (1, 'b')", false));
  EXPECT_EQ(KovraTranactionId, before + 3) << "a failure takes a number too";
  EXPECT_FALSE(connection_.InTransaction());
}

TEST_F(SqlFunc, AListAsOneStatement) {
  EXPECT_FALSE(RunExecSQLList(connection_, Lines({}), true));
  EXPECT_TRUE(RunExecSQLList(
      connection_, Lines({"INSERT INTO T", "", "  VALUES ; gone", ";", "(1, 'a')"}), true));
  EXPECT_EQ(Count(), "1");
  EXPECT_EQ(OneSqlStatement(Lines({" A ", "", "\t", "B;C", ";", "D"})), "A\r\nB\r\n\r\nD");
  EXPECT_FALSE(RunExecSQLList(connection_, Lines({"BAD", " LINE;"}), true));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("\r\nBAD\r\n LINE;\r\n"))) << "the whole list";
}

TEST_F(SqlFunc, StatementsOfAList) {
  std::vector<std::string> found;
  const auto lines = Lines({"", " A", "B ; C", ";", "D", "  ", "E"});
  ForEachSqlStatement(lines, [&](const SqlStatement& statement) {
    found.push_back(std::to_string(statement.number) + "@" + std::to_string(statement.firstLine) +
                    ":" + statement.text);
  });
  EXPECT_THAT(found, ElementsAre("1@2:A\r\nB \r\n", "2@4:\r\n", "3@5:D\r\nE\r\n"));
}

TEST_F(SqlFunc, EachStatementForItself) {
  EXPECT_TRUE(RunMultipleExecSQLList(connection_, Lines({}), true));
  const auto lines = Lines({"INSERT INTO T", "VALUES (1, 'a');", "INSERT INTO T",
                            "VALUES (1, 'b'); x", "INSERT INTO T VALUES (3, 'c')"});
  EXPECT_FALSE(RunMultipleExecSQLList(connection_, lines, true));
  EXPECT_EQ(Count(), "2");
  EXPECT_THAT(Boxes(), ElementsAre(Box("SQL Server Error: UNIQUE constraint failed: T.ID",
                                       "INSERT INTO T\r\nVALUES (1, 'b')\r\n")));
}

TEST_F(SqlFunc, ABatchIsWrittenWholeOrNotAtAll) {
  const std::int32_t before = KovraTranactionId;
  EXPECT_TRUE(RunExecSQLBatch(connection_, Lines({}), true));
  EXPECT_EQ(KovraTranactionId, before);
  EXPECT_TRUE(RunExecSQLBatch(
      connection_, Lines({"INSERT INTO T", "VALUES (1, 'a');", "INSERT INTO T VALUES (2, 'b')"}),
      true));
  EXPECT_EQ(Count(), "2");
  EXPECT_EQ(KovraTranactionId, before + 1);

  std::filesystem::create_directories(os::NativePath("C:\\Log"));
  KovraLogDatabaseName = "C:\\Log\\";
  KovraLogTableName = "event.log";
  const auto bad = Lines({"INSERT INTO T VALUES (3, 'c');", "INSERT INTO T VALUES (1, 'd')"});
  EXPECT_FALSE(RunExecSQLBatch(connection_, bad, false));
  EXPECT_THAT(Boxes(), IsEmpty());
  EXPECT_EQ(Count(), "2");
  std::stringstream log;
  log << std::ifstream(os::NativePath("C:\\Log\\event.log")).rdbuf();
  EXPECT_THAT(log.str(), testing::ContainsRegex("<SqlFunc> <ExecSQLBatch> .*<> SQL Server Error: "
                                                "UNIQUE constraint failed: T.ID\r\n"));
  EXPECT_THAT(log.str(), HasSubstr("<> INSERT INTO T VALUES (3, 'c');\r\n"));
  EXPECT_FALSE(RunExecSQLBatch(connection_, bad, true));
  EXPECT_THAT(Boxes(),
              ElementsAre(Box("SQL Server Error: UNIQUE constraint failed: T.ID", bad.Text())));
  KovraLogDatabaseName = KovraLogTableName = "";
}

TEST_F(SqlFunc, ABatchReportsWhatFailed) {
  const auto report =
      RunSQLBatch(connection_, Lines({"INSERT INTO T VALUES (1, 'a');", "", "INSERT INTO T",
                                      "VALUES (1, 'b');", "INSERT INTO T VALUES (3, 'c')"}));
  EXPECT_FALSE(report.Committed || report.InDoubt);
  EXPECT_EQ(report.Statement, 2);
  EXPECT_EQ(report.Line, 3);
  EXPECT_EQ(report.StatementText, "INSERT INTO T\r\nVALUES (1, 'b')\r\n");
  EXPECT_EQ(report.Text(),
            "Statement 2 (line 3): SQL Server Error: UNIQUE constraint failed: "
            "T.ID\r\nNothing was written.");
  EXPECT_EQ(Count(), "0");
  Run("CREATE TABLE C (P INTEGER REFERENCES T DEFERRABLE INITIALLY DEFERRED)");
  const auto atEnd = RunSQLBatch(connection_, Lines({"INSERT INTO C VALUES (9)"}));
  EXPECT_EQ(atEnd.Statement, 0) << "the commit failed";
  EXPECT_THAT(atEnd.Text(), HasSubstr("FOREIGN KEY constraint failed\r\nNothing was written."));
  EXPECT_EQ(Single("SELECT COUNT(*) FROM C"), "0");
  EXPECT_EQ(RunSQLBatch(connection_, Lines({"INSERT INTO T VALUES (1, 'a')"})).Text(), "");
}

// The first error is shown, not the rollback's; the outer transaction is gone.
TEST_F(SqlFunc, ATransactionOfTheProgramsOwnMakesARunnerFail) {
  connection_.StartTransaction({});
  Run("INSERT INTO T VALUES (1, 'a')");
  EXPECT_FALSE(RunExecSQL(connection_, "INSERT INTO T VALUES (2, 'b')", true));
  EXPECT_THAT(Boxes(), ElementsAre(HasSubstr("A transaction is already active")));
  EXPECT_FALSE(connection_.InTransaction());
  EXPECT_EQ(Count(), "0");
}

TEST_F(SqlFunc, Questions) {
  Run("INSERT INTO T VALUES (1, 'a'), (2, 'b')");
  EXPECT_TRUE(AnyData(connection_, "SELECT COUNT(*) AS RECORDCOUNT FROM T"));
  EXPECT_FALSE(AnyData(connection_, "SELECT COUNT(*) AS RECORDCOUNT FROM T WHERE ID > 5"));
  EXPECT_EQ(CountData(connection_, "SELECT COUNT(*) AS recordcount FROM T"), 2);
  EXPECT_EQ(StringData(connection_, "SELECT NAME AS MYDATA FROM T ORDER BY ID DESC"), "b");
  EXPECT_EQ(StringData(connection_, "SELECT NAME AS MYDATA FROM T WHERE ID = 9"), "");
  EXPECT_TRUE(ExistFieldName(connection_, "SELECT * FROM T", "name"));
  EXPECT_FALSE(ExistFieldName(connection_, "SELECT * FROM T", "none"));
  EXPECT_TRUE(ExistTableBySQL(connection_, "T", "ID"));
  EXPECT_FALSE(ExistTableBySQL(connection_, "T", "NONE"));
  EXPECT_FALSE(ExistTableBySQL(connection_, "NONE", "ID"));
  EXPECT_TRUE(ExistTable(connection_, "t"));
  EXPECT_FALSE(ExistTable(connection_, "U"));
  EXPECT_THAT(Boxes(), IsEmpty());
  EXPECT_FALSE(ExistFieldName(connection_, "SELECT * FROM NONE", "ID"));
  EXPECT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { CountData(connection_, "SELECT * FROM NONE"); }),
            "Field 'RECORDCOUNT' not found");
  EXPECT_EQ(Boxes().size(), 1u) << "shown, then thrown";
}

TEST_F(SqlFunc, TableNamesLoseTheirQuotes) {
  struct Case {
    std::vector<std::string> names, want;
    const char* why;
  };
  const Case cases[] = {
      {{"ALPHA", "B"}, {"ALPHA", "B"}, "upper case, no quotes"},
      {{"\"A\"", "\"BC\""}, {"A", "BC"}, "quoted"},
      {{"\"O\".\"A\"", "\"O\".\"B\""}, {"A", "B"}, "owner and name"},
      {{"\"A\"", "PLAIN"}, {"A", ""}, "the first name decides"},
      {{"alpha", "banana"}, {"lph", "n"}, "a lower-case letter is taken for a quote"},
      {{"x'y'x", "B"}, {"'y'", ""}, "the first and last letter"},
      {{"_a_b_", "B"}, {"_a_b_", "B"}, "an odd number is none"},
      {{"", "B"}, {"", "B"}, "a name without a letter"},
      {{}, {}, "no name"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    TStringList names;
    for (const std::string& name : c.names) names.Add(name);
    StripTableNames(names);
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()), c.want);
  }
}

TEST_F(SqlFunc, TableNamesOfAnyFormComeWhole) {
  struct Case {
    std::vector<std::string> tables;
    const char* mark;
    const char* why;
  };
  const Case cases[] = {
      {{"ALPHA", "beta"}, "\"", "the server's own mark"},
      {{"alpha", "banana", "B"}, "\"", "a first name that begins and ends alike"},
      {{"a", "B"}, "\"", "one letter"},
      {{"_a_b_", "__"}, "\"", "underlines"},
      {{"B\"", "alpha"}, "`", "the mark at the end of a name"},
      {{"alpha", "\"A\"", "O.A", "\"O\".\"A\""}, "`", "names that look quoted"},
      {{"`a`", "a\"b", "[c]", "d;e f"}, "'", "two marks, and brackets"},
      {{"กอก", "A"}, "\"", "Thai letters"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    TSQLConnection connection;
    UseSqlite(connection, ":memory:");
    std::vector<std::string> want;
    for (const std::string& table : c.tables) {
      want.push_back(Utf8ToCp874(table));
      const std::string quoted = StringReplace(want.back(), "\"", "\"\"", {.ReplaceAll = true});
      connection.ExecuteDirect("CREATE TABLE \"" + quoted + "\" (X)");
    }
    TStringList names;
    connection.GetTableNames(names, false);
    EXPECT_EQ(names[0], c.mark + want[0] + c.mark);
    GetAllTableNames(connection, names);
    EXPECT_EQ(std::vector<std::string>(names.begin(), names.end()), want);
    for (const std::string& name : want) EXPECT_TRUE(ExistTable(connection, name)) << name;
    TStringList sorted;
    sorted.SetSorted(true);
    GetAllTableNames(connection, sorted);
    EXPECT_EQ(sorted.Count(), names.Count()) << "a list that keeps its order";
  }
}

TEST_F(SqlFunc, OrderAndEdit) {
  EXPECT_EQ(SQLOrderBy("CODE", 0), "ORDER BY CODE ASC");
  EXPECT_EQ(SQLOrderBy("CODE", 2), "ORDER BY CODE DESC");
  TSQLQuery query;
  query.SetSQLConnection(&connection_);
  RunSQL(query, "SELECT * FROM T", true);
  EXPECT_FALSE(InEdit(query));
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { EditDataSet(query); }),
            "Cannot modify a read-only dataset");
}

TEST_F(SqlFunc, Rights) {
  EXPECT_TRUE(MayICanRead(connection_, 0, 7));
  EXPECT_TRUE(MayICanDelete(connection_, 7, 0));
  EXPECT_THAT(Boxes(), IsEmpty()) << "no table, no question";
  Run("CREATE TABLE SCTYTAB (SEC_TEMPDEF INTEGER, SEC_POSN INTEGER, SEC_READ VARCHAR(3), "
      "SEC_WRITE VARCHAR(3), SEC_INSERT VARCHAR(3), SEC_DELETE VARCHAR(3), SEC_EXECUTE "
      "VARCHAR(3))");
  Run("INSERT INTO SCTYTAB VALUES (10, 2, 'N', 'Y', NULL, 'y', 'YY')");
  Run("INSERT INTO SCTYTAB VALUES (11, 2, 'Y', 'N', 'Y', 'Y', 'Y')");
  EXPECT_FALSE(MayICanRead(connection_, 2, 10));
  EXPECT_TRUE(MayICanWrite(connection_, 2, 10));
  EXPECT_FALSE(MayICanInsert(connection_, 2, 10)) << "Null";
  EXPECT_FALSE(MayICanDelete(connection_, 2, 10)) << "lower case";
  EXPECT_FALSE(MayICanExecute(connection_, 2, 10)) << "more letters";
  EXPECT_TRUE(MayICanReadOrWrite(connection_, 2, 10));
  EXPECT_TRUE(MayICanInsertOrWrite(connection_, 2, 10));
  EXPECT_TRUE(MayICanInsertOrWrite(connection_, 2, 11));
  EXPECT_FALSE(MayICanReadOrWrite(connection_, 10, 2)) << "template and position changed over";
  EXPECT_TRUE(MayICanExecute(connection_, 2, 11));
  Run("DROP TABLE SCTYTAB");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { MayICanRead(connection_, 2, 10); }),
            "Field 'SEC_READ' not found");
  EXPECT_EQ(Boxes().size(), 1u);
}

}  // namespace
}  // namespace kvshare
