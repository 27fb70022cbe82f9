// The suite on SQLite, and what is its own.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "kvshare/data/errors.h"
#include "kvshare/rtl/cp874.h"
#include "tests/data/sqlite.h"
#include "tests/data/updates_suite.h"
#include "tests/support.h"

namespace kvshare {
namespace {

const TemporaryFolder& SuiteFolder() {
  static const TemporaryFolder folder;
  return folder;
}

DriverCase OnSqlite(const std::string& name, const std::string& money, bool wholeCurrency) {
  DriverCase test;
  test.name = name;
  test.configure = [name](TSQLConnection& connection) {
    UseSqlite(connection, SuiteFolder().File(name + ".db"));
  };
  test.money = money;
  test.foreignLetter = "char(20013)";
  test.wholeCurrency = wholeCurrency;
  return test;
}

INSTANTIATE_TEST_SUITE_P(Sqlite, DriverSuite,
                         testing::Values(OnSqlite("SqliteExact", std::string(kExactMoney), true),
                                         OnSqlite("SqliteNumeric", "DECIMAL(19,4)", false)),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Sqlite, UpdatesSuite,
                         testing::Values(OnSqlite("SqliteUpdates", std::string(kExactMoney), true)),
                         [](const auto& test) { return test.param.name; });

std::string ErrorOf(TSQLConnection& connection, std::string_view sql) {
  return MessageOf<EServerError>([&] { connection.ExecuteDirect(sql); });
}

TEST(Sqlite, FilesAreNamedAsThePlatformNamesThem) {
  const TemporaryFolder folder;
  std::filesystem::create_directories(folder.File("drive_c/Data"));
  ASSERT_EQ(setenv("KVSHARE_HOME", folder.Path().c_str(), 1), 0);
  TSQLConnection connection;
  UseSqlite(connection, std::string("C:\\Data\\ร้าน.db"_th));
  connection.Open();
  connection.ExecuteDirect("CREATE TABLE T (X INTEGER)");
  EXPECT_TRUE(std::filesystem::exists(folder.File("drive_c/Data/ร้าน.db")));
}

// A mistyped name must not open an empty company.
TEST(Sqlite, AMissingFileIsAnErrorUnlessItIsToBeMade) {
  const TemporaryFolder folder;
  const std::string file = folder.File("none.db");
  TSQLConnection connection(nullptr, "Ledger");
  UseSqlite(connection, file);
  connection.Params.SetValue("CreateDatabase", "");
  EXPECT_EQ(MessageOf<EServerError>([&] { connection.Open(); }),
            "Ledger: SQL Server Error: unable to open database file: " + file);
  EXPECT_FALSE(connection.Connected());
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(Sqlite, DamagedAndReadOnlyFiles) {
  const TemporaryFolder folder;
  const std::string file = folder.File("shop.db");
  std::ofstream(file) << std::string(5000, 'x');
  TSQLConnection connection;
  UseSqlite(connection, file);
  EXPECT_THAT(MessageOf<EServerError>([&] { connection.Open(); }),
              testing::HasSubstr("file is not a database"));

  std::filesystem::remove(file);
  connection.Open();
  connection.ExecuteDirect("CREATE TABLE T (X TEXT)");
  connection.StartTransaction({});
  for (int i = 0; i < 200; ++i) {
    connection.ExecuteDirect("INSERT INTO T VALUES (hex(zeroblob(500)))");
  }
  connection.Commit({});
  connection.Close();
  std::filesystem::resize_file(file, 20'480);
  EXPECT_THAT(MessageOf<EServerError>([&] { connection.Open(); }), testing::HasSubstr("malformed"));
}

TEST(Sqlite, AFullDiskWritesNothing) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("full.db"));
  connection.ExecuteDirect("CREATE TABLE T (X TEXT)");
  connection.ExecuteDirect("PRAGMA max_page_count = 20");
  connection.StartTransaction({});
  std::string message = "no error";
  for (int i = 0; i < 100 && message == "no error"; ++i) {
    message = ErrorOf(connection, "INSERT INTO T VALUES (hex(zeroblob(1000)))");
  }
  EXPECT_EQ(message, "SQL Server Error: database or disk is full");
  // The server has undone the transaction: what follows must not stand alone.
  EXPECT_NE(ErrorOf(connection, "INSERT INTO T VALUES ('alone')"), "no error");
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { connection.Commit({}); }),
            "The server undid the transaction");
  connection.Rollback({});
  TSQLQuery rows;
  rows.SetSQLConnection(&connection);
  rows.SQL().Add("SELECT COUNT(*) FROM T");
  rows.Open();
  EXPECT_EQ(rows.Fields(0).AsInteger(), 0);
}

// A batch that has to wait for another one fails before its first statement.
TEST(Sqlite, ABatchFailsEarly) {
  const TemporaryFolder folder;
  TSQLConnection one;
  TSQLConnection two;
  for (TSQLConnection* connection : {&one, &two}) UseSqlite(*connection, folder.File("x.db"));
  two.Params.SetValue("LockTimeout", "0");
  one.StartTransaction({});
  try {
    two.StartTransaction({});
    FAIL() << "the file is locked";
  } catch (const EServerError& e) {
    EXPECT_TRUE(e.Busy());
    EXPECT_EQ(e.Message(), "SQL Server Error: database is locked");
  }
  EXPECT_FALSE(two.InTransaction());
}

TEST(Sqlite, OneStatementAtATime) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  connection.ExecuteDirect("CREATE TABLE T (X INTEGER); -- a comment");
  EXPECT_THAT(ErrorOf(connection, "DELETE FROM T; DROP TABLE T"),
              testing::HasSubstr("only one statement"));
  connection.ExecuteDirect(
      "CREATE TRIGGER G AFTER INSERT ON T BEGIN DELETE FROM T; DELETE FROM T; END");
  EXPECT_EQ(connection.ExecuteDirect(" \r\n"), 0);
}

// Sums of exact amounts: the server's own would go through a double.
TEST(Sqlite, SumsOfExactAmounts) {
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  connection.ExecuteDirect("CREATE TABLE T (G INTEGER, M " + std::string(kExactMoney) + ")");
  const auto single = [&](std::string_view sql) {
    TSQLQuery rows;
    rows.SetSQLConnection(&connection);
    rows.SQL().Add(sql);
    rows.Open();
    return rows.Fields(0).IsNull() ? std::string("null") : rows.Fields(0).AsString();
  };
  EXPECT_EQ(single("SELECT SUM(M) FROM T"), "null");
  connection.ExecuteDirect(
      "INSERT INTO T VALUES (1, '900000000000000.0001'), (1, '-0.0002'), (2, '0.1'), (2, NULL)");
  EXPECT_EQ(single("SELECT SUM(M) FROM T WHERE G = 1"), "899999999999999.9999");
  EXPECT_EQ(single("SELECT SUM(M) FROM T"), "900000000000000.0999");
  EXPECT_EQ(single("SELECT SUM(M) FROM T WHERE M < 0"), "-0.0002");
  EXPECT_EQ(single("SELECT SUM(G) FROM T"), "6") << "integers stay integers";
  EXPECT_EQ(single("SELECT SUM(G * 0.5) FROM T"), "3");
  EXPECT_EQ(single("SELECT SUM(M) OVER (ORDER BY rowid ROWS 1 PRECEDING) FROM T LIMIT 1 OFFSET 2"),
            "0.0998");
  connection.ExecuteDirect("INSERT INTO T VALUES (3, 'none'), (3, '2')");
  EXPECT_EQ(single("SELECT SUM(M) FROM T WHERE G = 3"), "2") << "as the server's own";
  EXPECT_EQ(single("SELECT COUNT(*) FROM T WHERE M = '00.10'"), "1");
}

TEST(Sqlite, DeclaredTypes) {
  struct Case {
    std::string declared;
    TFieldType type;
    int size, precision;
  };
  using enum TFieldType;
  const Case cases[] = {
      {"smallint", ftInteger, 0, 0},
      {"MONEY", ftFMTBcd, 4, 19},
      {"decimal(12, 2)", ftBCD, 2, 12},
      {"NUMERIC(9)", ftBCD, 0, 9},
      {"NVARCHAR(30)", ftString, 30, 0},
      {"CHARACTER", ftString, 8192, 0},
      {"VARCHAR(9000)", ftMemo, 0, 0},
      {"Memo", ftMemo, 0, 0},
      {"IMAGE", ftBlob, 0, 0},
      {"BOOLEAN", ftBoolean, 0, 0},
      {"DATETIME", ftTimeStamp, 0, 0},
      {std::string(kExactMoney), ftFMTBcd, 4, 19},
      {"double precision", ftFloat, 0, 0},
      {"", ftString, 8192, 0},
  };
  const TemporaryFolder folder;
  TSQLConnection connection;
  UseSqlite(connection, folder.File("x.db"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.declared);
    connection.ExecuteDirect("DROP TABLE IF EXISTS T");
    connection.ExecuteDirect("CREATE TABLE T (X " + c.declared + ")");
    TSQLQuery rows;
    rows.SetSQLConnection(&connection);
    rows.SQL().Add("SELECT X FROM T");
    rows.Open();
    EXPECT_EQ(rows.Fields(0).DataType(), c.type);
    EXPECT_EQ(rows.Fields(0).Size(), c.size);
    EXPECT_EQ(rows.Fields(0).Precision(), c.precision);
  }
}

}  // namespace
}  // namespace kvshare
