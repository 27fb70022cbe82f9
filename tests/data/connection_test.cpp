#include <gmock/gmock.h>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/sql/secrets.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/data/sqlite.h"
#include "tests/support.h"

namespace kvshare {
namespace {

std::string ErrorOf(TSQLConnection& connection) {
  return MessageOf<EDatabaseError>([&] { connection.Open(); });
}

TEST(Connection, ADriversNameResetsWhatBelongsToIt) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  connection.VendorLib = "sqlite3.dll";
  connection.Open();
  connection.SetDriverName("SQLITE");
  EXPECT_TRUE(connection.Connected()) << "the same name";
  connection.SetDriverName("MYSQL");
  EXPECT_FALSE(connection.Connected());
  EXPECT_EQ(connection.LibraryName + connection.GetDriverFunc + connection.VendorLib, "");
  UseSqlite(connection, folder.File("x.db"));
  connection.Open();
  connection.SetConnectionName("LEDGER");
  EXPECT_FALSE(connection.Connected());
}

TEST(Connection, WhatIsMissingIsNamed) {
  const TemporaryFolder folder;
  TSQLConnection connection(nullptr, "Con");
  EXPECT_EQ(ErrorOf(connection), "Con: Missing DriverName property");
  connection.SetDriverName("X");
  EXPECT_EQ(ErrorOf(connection), "Con: DLL/Shared Library Name not Set");
  connection.LibraryName = "dbexpnone.dll";
  EXPECT_THAT(ErrorOf(connection),
              testing::AllOf(testing::StartsWith("Con: Unable to Load dbexpnone.dll\r\n"),
                             testing::HasSubstr("/libdbexpnone.so\r\n")));
  connection.LibraryName = "kvshare-sqlite";
  connection.GetDriverFunc = "getSQLDriverNONE";
  EXPECT_THAT(
      ErrorOf(connection),
      testing::MatchesRegex(
          "Con: Unable to Find Procedure getSQLDriverNONE\r\nin /.+/libkvshare-sqlite\\.so"));
  connection.GetDriverFunc = "getSQLDriverSQLITE";
  connection.VendorLib = "libnone-client.so";
  EXPECT_THAT(ErrorOf(connection), testing::StartsWith("Con: Unable to Load libnone-client.so"));
  connection.VendorLib = "LIBMYSQL.dll";
  EXPECT_EQ(ErrorOf(connection), "Con: SQL Server Error: the parameter Database names no file");
}

TEST(Connection, ThePasswordIsInNoMessage) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("secret/x.db"));
  connection.Params.SetValue("Password", "secret");
  EXPECT_EQ(ErrorOf(connection),
            "SQL Server Error: unable to open database file: " + folder.File("***/x.db"));
}

TEST(Connection, SecretsAreNotShown) {
  const struct {
    std::string_view name, value, shown;
    const char* why;
  } cases[] = {
      {"Password", "s3cret", "***", "the key of the file"},
      {"pwd", "s3cret", "***", "as some drivers call it"},
      {"EncryptPwd", "s3cret", "***", "part of a name"},
      {"Client_Secret", "s3cret", "***", "another word"},
      {"Password", "", "", "no password stays none"},
      {"Database", "Driver={X};UID=a;Password=s3cret", "Driver={X};UID=a;Password=***",
       "in a connection string"},
      {"Database", "PWD=s3cret;Server=db", "PWD=***;Server=db", "not at its end"},
      {"Database", "A=b; pwd = {s3;c}}ret} ;C=d", "A=b; pwd = *** ;C=d", "in braces"},
      {"Database", "A;Pwd=\"s3;cret\";C=d", "A;Pwd=***;C=d", "in quotes"},
      {"Database", "PWD={s3cret;C=d", "PWD=***", "braces without an end"},
      {"Database", "host=db password=s3cret dbname=x", "host=db password=***",
       "blanks between: too much rather than too little"},
      {"Database", "postgres://ann:s3@cret@db/x", "postgres://ann:***@db/x", "an address"},
      {"HostName", "db:5432", "db:5432", "no secret"},
      {"Database", "C:\\a=b;c@d.db", "C:\\a=b;c@d.db", "no secret"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(data::WithoutSecrets(c.name, c.value), c.shown) << c.why;
  }
  TStringList params;
  params.Add("Database=Server=db;PWD={a}");
  params.Add("Password=a long one");
  params.Add("EncryptPwd=a long one");
  EXPECT_EQ(data::SecretsOf(params), (std::vector<std::string>{"a long one", "{a}", "a"}))
      << "the longest first, so that no piece of it is left";
}

TEST(Connection, ParametersThatNobodyCanFulfil) {
  struct Case {
    const char* parameter;
    std::string_view error;  // its beginning; "" for none
  };
  const Case cases[] = {
      {"LockTimeout=soon", "'soon' is "},
      {"LockTimeout=-1", "'-1' is "},
      {"AnswerTimeout=x", "'x' is "},
      {"BlobSize=32", "The parameter BlobSize cannot be 32: "},
      {"AutoCommit=False", "The parameter AutoCommit cannot be False: "},
      {"Custom String=x", "SQL Server Error: the parameter Custom String has no meaning"},
      {"X TransIsolation=Serial", "The parameter X TransIsolation cannot be Serial"},
      {"AnswerTimeout=0", ""},
      {"BlobSize=-1", ""},
      {"AUTOCOMMIT=true", ""},
      {"Custom String=", ""},
      {"X TransIsolation=readcommited", ""},
  };
  const TemporaryFolder folder;
  for (const Case& c : cases) {
    TSQLConnection connection;
    UseSqlite(connection, folder.File("x.db"));
    connection.Params.Add(c.parameter);
    if (c.error.empty()) {
      EXPECT_NO_THROW(connection.Open()) << c.parameter;
    } else {
      EXPECT_THAT(ErrorOf(connection), testing::StartsWith(std::string(c.error))) << c.parameter;
    }
    EXPECT_EQ(connection.Connected(), c.error.empty());
  }
}

TEST(Connection, ServersTextsOfAnyLetters) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  connection.ExecuteDirect("CREATE TABLE T (X TEXT)");
  connection.ExecuteDirect(
      "CREATE TRIGGER G BEFORE INSERT ON T BEGIN SELECT RAISE(ABORT, 'ห้าม') ; END"_th);
  EXPECT_EQ(MessageOf<EServerError>([&] { connection.ExecuteDirect("INSERT INTO T VALUES (1)"); }),
            std::string("SQL Server Error: ") + std::string("ห้าม"_th));
}

// Statements connect by themselves; a second connection finds the driver again after it was let go.
TEST(Connection, OpensByItselfAndAgain) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  for (int i = 0; i < 3; ++i) {
    connection.ExecuteDirect("SELECT 1");
    EXPECT_TRUE(connection.Connected());
    connection.SetConnected(true);
    connection.SetConnected(false);
    connection.SetConnected(false);
  }
  connection.StartTransaction({});
  EXPECT_TRUE(connection.InTransaction());
  connection.Close();
  EXPECT_FALSE(connection.InTransaction());
}

}  // namespace
}  // namespace kvshare
