// connect, sql, rights and replication, against a SQLite file.
#include <fcntl.h>
#include <gmock/gmock.h>

#include <csignal>

#include "kvshare/rtl/formatsettings.h"
#include "tests/apps/shop.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

void ExpectDone(const Outcome& outcome) {
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
}

class DatabaseCommands : public Shop {
 protected:
  // Values that a table, CSV and JSON must each write in their own way.
  static void MakeItems() {
    ExpectDone(
        Batch("\xEF\xBB\xBF"
              "CREATE TABLE ITEM (CODE VARCHAR(8) PRIMARY KEY, NAME TEXT,\r\n"
              "  PRICE DECIMAL_TEXT(19,4) COLLATE DECIMAL, RATE DOUBLE, SOLD DATETIME, DAY DATE,\n"
              "  AT TIME, OPEN BOOLEAN, N INTEGER, P BLOB);\r\n"
              "INSERT INTO ITEM VALUES ('A', 'ปากกา', '12.5', 0.1, '2026-11-24', '2026-11-24',\n"
              "  '09:07:00.250', 1, NULL, x'00ff');\n"
              "INSERT INTO ITEM (CODE, NAME, PRICE, SOLD, N)\n"
              "VALUES ('B', 'a,\"b\"', '900719925474099.3125', '2026-11-24 10:11:12', 5)\n"
              "; -- in one transaction with the others\n"
              "INSERT INTO ITEM (CODE, NAME, N) VALUES ('C', '', -1)"));
  }
};

TEST_F(DatabaseCommands, RowsAsTableCsvAndJson) {
  MakeItems();
  const struct {
    std::vector<std::string> form;
    std::string columns, out;
  } cases[] = {
      {{},
       "CODE, NAME, PRICE, SOLD, N",
       "CODE  NAME                  PRICE  SOLD                  N\n"
       "----  -----  --------------------  -------------------  --\n"
       "A     ปากกา               12.5000  2026-11-24T00:00:00    \n"
       "B     a,\"b\"  900719925474099.3125  2026-11-24T10:11:12   5\n"
       "C                                                       -1\n"},
      {{"--csv"},
       "*",
       "CODE,NAME,PRICE,RATE,SOLD,DAY,AT,OPEN,N,P\r\n"
       "A,ปากกา,12.5000,0.1,2026-11-24T00:00:00,2026-11-24,09:07:00.250,true,,00FF\r\n"
       "B,\"a,\"\"b\"\"\",900719925474099.3125,,2026-11-24T10:11:12,,,,5,\r\n"
       "C,\"\",,,,,,,-1,\r\n"},
      {{"--json"},
       "NAME, PRICE, RATE, SOLD, AT, OPEN, N, P",
       R"({"NAME":"ปากกา","PRICE":"12.5000","RATE":0.1,"SOLD":"2026-11-24T00:00:00",)"
       R"("AT":"09:07:00.250","OPEN":true,"N":null,"P":"00FF"})"
       "\n"
       R"({"NAME":"a,\"b\"","PRICE":"900719925474099.3125","RATE":null,)"
       R"("SOLD":"2026-11-24T10:11:12","AT":null,"OPEN":null,"N":5,"P":null})"
       "\n"
       R"({"NAME":"","PRICE":null,"RATE":null,"SOLD":null,"AT":null,"OPEN":null,"N":-1,"P":null})"
       "\n"},
  };
  const TFormatSettings before = FormatSettings;
  FormatSettings.DecimalSeparator = ',';
  FormatSettings.TimeSeparator = '.';
  for (const auto& c : cases) {
    std::vector<std::string> arguments = {"sql", "--connect", "SHOP",
                                          "SELECT " + c.columns + " FROM ITEM ORDER BY CODE"};
    arguments.insert(arguments.end(), c.form.begin(), c.form.end());
    const Outcome got = Run(arguments);
    EXPECT_EQ(got.out, c.out);
    ExpectDone(got);
  }
  FormatSettings = before;
}

TEST_F(DatabaseCommands, RowsBeforeABadOneAreWritten) {
  ExpectDone(
      Batch("CREATE TABLE T (A TEXT);\nINSERT INTO T VALUES ('ok');\n"
            "INSERT INTO T VALUES (char(128512));\n"));
  const std::pair<const char*, const char*> cases[] = {{"--csv", "A\r\nok\r\n"},
                                                       {"--json", "{\"A\":\"ok\"}\n"}};
  for (const auto& [form, out] : cases) {
    const Outcome got = Run({"sql", "--connect", "SHOP", form, "SELECT A FROM T"});
    EXPECT_EQ(got.out, out);
    EXPECT_THAT(got.err, StartsWith("kvshare: row 2: Field 'A': No letter U+1F600"));
    EXPECT_EQ(got.status, 1);
  }
  EXPECT_EQ(Sql("SELECT A FROM T").out, "A\n--\nok\n");
}

TEST_F(DatabaseCommands, ControlCharactersSteerNoTerminal) {
  const Outcome got = Sql("SELECT 'a' || char(27) || '[2J' || char(10) AS X");
  EXPECT_EQ(got.out, "X\n------\na [2J \n");
  EXPECT_EQ(Sql("-- a remark\n/* and\n another */ SELECT 5 AS X").out, "X\n-\n5\n");
}

TEST_F(DatabaseCommands, StatementsTellWhatTheyChangeAndWhatFails) {
  MakeItems();
  ExpectDone(Sql("UPDATE ITEM SET N = 7 WHERE CODE = 'A'"));
  const char* remark = "UPDATE ITEM SET N = 8 WHERE CODE = 'A'; -- a remark";
  EXPECT_EQ(Run({"sql", "--json", "--connect", "SHOP", remark}).out, "{\"changed\":1}\n");
  EXPECT_EQ(Sql("UPDATE ITEM SET N = 1 WHERE X = 1").err,
            "kvshare: SQL Server Error: no such column: X\n");
  const struct {
    const char *sql, *err;
  } refused[] = {
      {"DELETE FROM ITEM; UPDATE ITEM SET NAME = 'ก'",
       "kvshare: what stands behind the first `;` would not be run: give one statement, or several "
       "as a --batch: UPDATE ITEM SET NAME = 'ก'\n"},
      {"UPDATE ITEM SET NAME = 'x;y' WHERE CODE = 'A'",
       "kvshare: the `;` in the quoted text would end the statement"},
  };
  for (const auto& r : refused) {
    const Outcome got = Sql(r.sql);
    EXPECT_THAT(got.err, StartsWith(r.err));
    EXPECT_EQ(got.out, "");
    EXPECT_EQ(got.status, 1);
  }
  const Outcome missing = Sql("SELECT 1 FROM NOWHERE");
  EXPECT_EQ(missing.err, "kvshare: SQL Server Error: no such table: NOWHERE\n");
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(Sql("SELECT 'a☃'").status, 2);
  EXPECT_EQ(Sql("").status, 2);
  EXPECT_EQ(Run({"sql", "--connect", "SHOP", "SELECT 1", "--batch", "-"}).status, 2);
  EXPECT_THAT(Sql("SELECT NAME, N FROM ITEM WHERE CODE = 'A'").out, HasSubstr("ปากกา  8\n"));
}

TEST_F(DatabaseCommands, ABatchThatFailsNamesTheStatementAndWritesNothing) {
  MakeItems();
  const Outcome failed = Batch(
      "DELETE FROM ITEM;\n\nINSERT INTO ITEM (CODE)\nVALUES ('D');\n"
      "INSERT INTO ITEM (CODE) VALUES ('D'); -- again");
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.err,
            "kvshare: -: Statement 3 (line 5): SQL Server Error: UNIQUE constraint failed: "
            "ITEM.CODE\nNothing was written.\n");
  EXPECT_THAT(Sql("SELECT COUNT(*) AS N FROM ITEM").out, HasSubstr("\n3\n"));

  const struct {
    std::string_view text;
    std::string_view err;
  } refused[] = {
      {std::string_view("DELETE FROM ITEM;\n\0", 19), "kvshare: -: a zero byte, at byte 19\n"},
      {"DELETE FROM ITEM; -- \xFF", "kvshare: -: "},
      {"DELETE FROM ITEM;\nUPDATE ITEM SET N = 1; UPDATE ITEM SET N = 2;",
       "kvshare: -: line 2: what stands behind the first `;` would not be run: begin each "
       "statement on a line of its own: UPDATE ITEM SET N = 2;\n"},
      {"DELETE FROM ITEM;\nUPDATE ITEM SET NAME = 'a; -- b';", "kvshare: -: line 2: the `;` in "},
      {"DELETE FROM ITEM WHERE NAME = '☃'", "kvshare: -: No letter U+2603"},
  };
  for (const auto& r : refused) {
    const Outcome got = Batch(r.text);
    EXPECT_THAT(got.err, StartsWith(std::string(r.err)));
    EXPECT_EQ(got.status, 1);
  }
  EXPECT_THAT(Run({"sql", "--connect", "SHOP", "--batch", "/no/such/file"}).err,
              HasSubstr("/no/such/file: No such file"));
  EXPECT_THAT(Sql("SELECT COUNT(*) AS N FROM ITEM").out, HasSubstr("\n3\n"));
  ExpectDone(Batch(""));
  ExpectDone(Batch("-- DELETE FROM ITEM; all of them\nUPDATE ITEM SET N = 3; -- said; done\n"));
  EXPECT_THAT(Sql("SELECT COUNT(*) AS N FROM ITEM WHERE N = 3").out, HasSubstr("\n3\n"));
}

TEST_F(DatabaseCommands, ConnectionsAreShownWithoutTheirSecrets) {
  EXPECT_EQ(Run({"connect", "list"}).out,
            "SHOP\tSQLITE\tkvshare-sqlite\nFARAWAY\tMYSQL\tkvshare-none\n");
  EXPECT_THAT(Run({"connect", "test", "SHOP"}).out, StartsWith("SHOP\tSQLite 3."));
  const Outcome shown = Run({"connect", "show", "FARAWAY", "--json"});
  EXPECT_EQ(shown.out,
            "{\"key\":\"LibraryName\",\"value\":\"kvshare-none\"}\n"
            "{\"key\":\"User_Name\",\"value\":\"som\"}\n"
            "{\"key\":\"password\",\"value\":\"***\"}\n"
            "{\"key\":\"MasterPWD\",\"value\":\"***\"}\n"
            "{\"key\":\"Database\",\"value\":\"Server=x;Pwd=***;Port=1\"}\n");
  const Outcome away = Run({"connect", "test", "FARAWAY"});
  EXPECT_THAT(away.err, StartsWith("kvshare: Unable to Load kvshare-none\n"));
  EXPECT_THAT(away.err, Not(HasSubstr("secret")));
  EXPECT_EQ(away.status, 1);
  EXPECT_EQ(Run({"connect", "show", "NONE"}).err,
            "kvshare: no connection 'NONE' in " +
                (home_.Drive() / "ProgramData/QXN/Share/DConnect.ini").string() +
                ", which has SHOP, FARAWAY\n");
  ExpectDone(Sql("CREATE TABLE ITEM (CODE TEXT)"));
  EXPECT_EQ(Run({"connect", "tables", "SHOP"}).out, "ITEM\n");
}

TEST_F(DatabaseCommands, AConnectionFileThatCannotBeUsed) {
  const std::filesystem::path file = home_.Drive() / "ProgramData/QXN/Share/DConnect.ini";
  home_.Make("ProgramData/QXN/Share/DConnect.ini", "[dbConnect]\r\nร้านดี=SQLITE\r\n");
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"connect", "list"}, {"connect", "test", "SHOP"}}) {
    const Outcome got = Run(command);
    EXPECT_THAT(got.err, StartsWith("kvshare: " + file.string() + ": Invalid byte 89 at position"));
    EXPECT_THAT(got.err, HasSubstr("iconv"));
    EXPECT_EQ(got.status, 1);
  }
  std::filesystem::remove(file);
  EXPECT_THAT(Run({"sql", "--connect", "SHOP", "SELECT 1"}).err,
              StartsWith("kvshare: there is no connection file " + file.string() + ": copy"));
}

TEST_F(DatabaseCommands, RightsAreShownAndChecked) {
  ExpectDone(
      Batch("CREATE TABLE SCTYTAB (SEC_TEMPDEF INTEGER, SEC_POSN INTEGER, SEC_READ CHAR(1),\n"
            "SEC_WRITE CHAR(1), SEC_INSERT CHAR(1), SEC_DELETE CHAR(1), SEC_EXECUTE CHAR(1));\n"
            "INSERT INTO SCTYTAB VALUES (10, 2, 'Y', 'y', 'N', NULL, 'Y');"));
  EXPECT_EQ(Run({"rights", "show", "--connect", "SHOP"}).out, "10\t2\tY\ty\tN\t\tY\n");
  EXPECT_EQ(Run({"rights", "check", "--connect", "SHOP", "2", "10"}).out,
            "read\tY\nwrite\tN\ninsert\tN\ndelete\tN\nexecute\tY\n");
  const auto status = [](const char* position, const char* screen, const char* right) {
    return Run({"rights", "check", "--connect", "SHOP", position, screen, right}).status;
  };
  EXPECT_EQ(status("2", "10", "Read"), 0);
  EXPECT_EQ(status("2", "10", "write"), 1);
  EXPECT_EQ(status("10", "2", "read"), 1);
  EXPECT_EQ(status("0", "10", "write"), 0);
  EXPECT_EQ(status("2", "10", "print"), 2);
}

TEST_F(DatabaseCommands, TheSendNumberIsShownTakenAndMovedOn) {
  ExpectDone(
      Batch("CREATE TABLE KOVRASYNC (SYN_KEY INTEGER PRIMARY KEY, SYN_TABLENAME VARCHAR(20),\n"
            "SYN_LASTSEND VARCHAR(17), SYN_LASTUPD VARCHAR(17));\n"
            "CREATE TABLE KOVRAVERSION (VER_KEY INTEGER, VER_GUID TEXT, VER_DATA_ID TEXT);\n"
            "INSERT INTO KOVRAVERSION VALUES (1, '{A}', 'D1');"));
  const auto run = [](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "replication");
    arguments.insert(arguments.begin() + 2, {"--connect", "SHOP"});
    return Run(arguments).out;
  };
  EXPECT_EQ(run({"show"}), "lastsend\t00000000000000000\nchanged\t\norigin\t{A}\ndata\tD1\n");
  EXPECT_EQ(run({"take"}), "00000000000000001\n");
  EXPECT_EQ(run({"update", "00000000000000020"}), "00000000000000020\n");
  EXPECT_EQ(run({"update", "7"}), "00000000000000021\n");
  EXPECT_EQ(run({"take", "--json"}), "{\"number\":\"00000000000000022\"}\n");
  EXPECT_THAT(run({"show"}), StartsWith("lastsend\t00000000000000022\nchanged\t20"));
}

TEST_F(DatabaseCommands, AReaderThatLeavesEndsTheRows) {
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::close(ends[0]);
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  const TempFile in;
  const TempFile err;
  const int status =
      RunCommandLine({"sql", "--connect", "SHOP",
                      "WITH RECURSIVE C(N) AS (VALUES (1) UNION ALL SELECT N + 1 FROM C) "
                      "SELECT N FROM C"},
                     {in.Fd(), ends[1], err.Fd()});
  std::signal(SIGPIPE, before);
  ::close(ends[1]);
  EXPECT_EQ(status, 141);
  EXPECT_EQ(err.Content(), "");
}

}  // namespace
}  // namespace kvshare::app
