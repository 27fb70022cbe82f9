// The suite on SQLite, and what is its own.
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "tests/data/amounts_suite.h"
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

constexpr const char* kMoney = "DECIMAL_REAL(19,4)";

INSTANTIATE_TEST_SUITE_P(Sqlite, DriverSuite,
                         testing::Values(OnSqlite("SqliteExact", std::string(kExactMoney), true),
                                         OnSqlite("SqliteNumeric", "DECIMAL(19,4)", false),
                                         OnSqlite("SqliteReal", kMoney, false)),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Sqlite, AmountsSuite,
                         testing::Values(OnSqlite("SqliteAmounts", kMoney, false)),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Sqlite, UpdatesSuite,
                         testing::Values(OnSqlite("SqliteUpdates", std::string(kExactMoney), true),
                                         OnSqlite("SqliteRealUpdates", kMoney, false)),
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

class SqliteFile : public testing::Test {
 protected:
  SqliteFile() {
    UseSqlite(connection_, folder_.File("x.db"));
    query_.SetSQLConnection(&connection_);
  }
  void Run(std::string_view sql) { connection_.ExecuteDirect(sql); }
  void Write(std::string_view sql, const std::function<void(TParam&)>& set) {
    query_.SQL().SetText(sql);
    for (int i = 0; i < query_.Params().Count(); ++i) set(query_.Params()[i]);
    query_.ExecSQL();
  }
  // The rows of what is open or about to be, as `1 a;2 null`; a field that cannot be read is `!`.
  std::string Read() {
    std::string rows;
    for (query_.Open(); !query_.Eof(); query_.Next()) {
      if (!rows.empty()) rows += ';';
      for (int i = 0; i < query_.FieldCount(); ++i) {
        if (i != 0) rows += ' ';
        const TField& field = query_.Fields(i);
        try {
          rows += field.IsNull() ? "null" : field.AsString();
        } catch (const EDatabaseError& e) {
          EXPECT_THAT(e.Message(), testing::HasSubstr("Field '" + field.FieldName() + "': "));
          rows += '!';
        }
      }
    }
    return rows;
  }
  std::string Rows(std::string_view sql) {
    query_.SQL().SetText(sql);
    return Read();
  }
  std::string Rows(std::string_view sql, const std::function<void(TParam&)>& set) {
    query_.SQL().SetText(sql);
    for (int i = 0; i < query_.Params().Count(); ++i) set(query_.Params()[i]);
    return Read();
  }

  const TemporaryFolder folder_;
  TSQLConnection connection_;
  TSQLQuery query_;
};

std::function<void(TParam&)> Amount(Currency amount) {
  return [amount](TParam& param) { param.SetAsCurrency(amount); };
}

// The first row says whether numbers or texts; each value stays what it is, or is refused.
TEST_F(SqliteFile, ColumnsWithoutAType) {
  using enum TFieldType;
  struct Case {
    const char* values;
    TFieldType type;
    const char* rows;
  };
  constexpr Case kCases[] = {
      {"(100), (100.25), (1234.56)", ftFMTBcd, "100;100.25;1234.56"},
      {"(0.1 + 0.2), (1e15), (1e-5), (-0.0)", ftFMTBcd, "0.3;1000000000000000;0.00001;0"},
      {"(0), ('12.50'), (NULL), ('note'), (x'31')", ftFMTBcd, "0;12.5;null;!;!"},
      {"(1), ('007'), (9e999)", ftFMTBcd, "1;!;!"},
      {"('note'), (0), (12.50), (1e20)", ftString, "note;0;12.5;100000000000000000000"},
      {"(NULL), (99.75)", ftString, "null;99.75"},
      {"(x'3132'), (7)", ftBlob, "12;7"},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(Rows(std::string("SELECT column1 AS X FROM (VALUES ").append(c.values) + ")"),
              c.rows);
    EXPECT_EQ(query_.Fields(0).DataType(), c.type) << c.values;
  }
  Run("CREATE TABLE T (I INTEGER, D DATE)");
  Run("INSERT INTO T VALUES (1, '2026-11-25')");
  EXPECT_EQ(
      Rows("SELECT I, D FROM T UNION ALL SELECT 99.75, D FROM T"),
      "1 " + DateToStr(EncodeDate(2026, 11, 25)) + ";99.75 " + DateToStr(EncodeDate(2026, 11, 25)));
  EXPECT_EQ(query_.Fields(1).DataType(), ftDate);
  EXPECT_EQ(Rows("SELECT COUNT(*) AS RECORDCOUNT FROM (VALUES (1), (2))"), "2");
  query_.Close();
  query_.Open();
  EXPECT_EQ(query_.FieldByName("RECORDCOUNT").AsInteger(), 2);
}

TEST_F(SqliteFile, ValuesHaveTheFormOfTheirColumn) {
  struct Case {
    const char* type;
    const char* values;
    const char* rows;
  };
  constexpr Case kCases[] = {
      {"INTEGER", "(8.0), (7.9), ('abc'), (-9007199254740993)", "8;!;!;-9007199254740993"},
      {"BIGINT", "(1e3), (1e300), (x'31')", "1000;!;!"},
      {"BOOLEAN", "(0), (1), (2), ('true')", "False;True;!;!"},
      {"DOUBLE", "(0.5), (3), ('x'), (9e999)", "0.5;3;!;!"},
      {"DECIMAL(15,4)", "(100), (0.1 + 0.2), ('abc'), ('1,200.50')", "100;0.3;!;!"},
      {"DECIMAL_TEXT(19,4)", "('12345678901234.5678'), ('.5'), ('007'), ('x')",
       "12345678901234.5678;0.5;7;!"},
      {"VARCHAR(20)", "(5), ('x'), (1.5)", "5;x;1.5"},
  };
  for (const Case& c : kCases) {
    Run("DROP TABLE IF EXISTS T");
    Run(std::string("CREATE TABLE T (X ").append(c.type) + ")");
    Run(std::string("INSERT INTO T VALUES ").append(c.values));
    EXPECT_EQ(Rows("SELECT X FROM T"), c.rows) << c.type;
  }
}

TEST_F(SqliteFile, AmountsThatARealCannotKeepAreRefused) {
  Run("CREATE TABLE R (A DECIMAL_REAL(19,4))");
  Run("CREATE TABLE X (A " + std::string(kExactMoney) + ", V VARCHAR(20))");
  Run("CREATE TABLE B (A " + std::string(kExactMoney) + ", M MONEY)");
  constexpr Currency kLong = 12345678901234.5678_baht;
  for (const char* sql : {"INSERT INTO R VALUES (:P)", "UPDATE R SET A = :P", "SELECT :P",
                          "SELECT A FROM R WHERE A + 1 > :P", "INSERT INTO B (A) VALUES (:P)",
                          "SELECT X.A FROM X, R WHERE X.A = :P AND R.A = 1"}) {
    EXPECT_THAT(MessageOf<EServerError>([&] { Write(sql, Amount(kLong)); }),
                testing::HasSubstr("12345678901234.5678 has more than 15 digits"))
        << sql;
  }
  Write("INSERT INTO X VALUES (:P, 'a')", Amount(kLong));
  Write("INSERT INTO X VALUES (:P, 'b')", Amount(100_baht));
  Write("INSERT INTO B VALUES (:P, :P)", Amount(100_baht));
  Write("UPDATE B SET A = :P WHERE M = :P", Amount(100_baht));
  EXPECT_EQ(Rows("SELECT typeof(A), A FROM X"), "text 12345678901234.5678;text 100");
  EXPECT_EQ(Rows("SELECT A, typeof(A), M FROM B"), "100 text 100");
  // Texts that compare as numbers, beside sums of them too.
  EXPECT_EQ(Rows("SELECT V FROM X WHERE A > :P", Amount(99.5_baht)), "a;b");
  EXPECT_EQ(Rows("SELECT V FROM X WHERE A = :P", Amount(kLong)), "a");
  EXPECT_EQ(Rows("SELECT V FROM X GROUP BY V HAVING SUM(A) > :P", Amount(99.5_baht)), "a;b");
  EXPECT_EQ(Rows("SELECT V FROM X GROUP BY V HAVING MAX(A) < :P", Amount(99.5_baht)), "");
}

// As exact decimals have it: what a real cannot hold is seen by nobody.
TEST_F(SqliteFile, SumsAndRoundingAreExact) {
  constexpr std::pair<const char*, const char*> kCases[] = {
      {"SELECT SUM(column1) = 1, SUM(column1) FROM (VALUES (0.1),(0.2),(0.3),(0.4))", "1 1"},
      {"SELECT SUM(column1) = 0.3 FROM (VALUES (0.1),(0.2))", "1"},
      {"SELECT SUM(column1), TOTAL(column1) FROM (VALUES (1),(2))", "3 3"},
      {"SELECT typeof(SUM(column1)) FROM (VALUES (1),(2))", "integer"},
      {"SELECT typeof(SUM(column1)), SUM(column1) FROM (VALUES (1),(0.5))", "real 1.5"},
      {"SELECT SUM(column1) = 1.3 FROM (VALUES ('0.1'),(1.2))", "1"},
      {"SELECT SUM(column1) FROM (VALUES (99999999999.9999),(0.0001),(-0.00000001))",
       "100000000000"},
      {"SELECT SUM(column1) = 1e300 FROM (VALUES (1e300),(1))", "1"},
      {"SELECT AVG(column1) = 0.1 FROM (VALUES (0.1),(0.1),(0.1))", "1"},
      {"SELECT AVG(column1), AVG(-column1) FROM (VALUES (1),(2),(2))",
       "1.66666666666667 -1.66666666666667"},
      {"SELECT AVG(column1), SUM(column1), TOTAL(column1) FROM (VALUES (NULL))", "null null 0"},
      {"SELECT AVG(column1) OVER (ROWS 1 PRECEDING) FROM (VALUES (0.1),(0.3),(0.4))",
       "0.1;0.2;0.35"},
      {"SELECT ROUND(2.675, 2), ROUND(-2.675, 2), ROUND(2.34495, 4)", "2.68 -2.68 2.345"},
      {"SELECT ROUND(0.5), ROUND(-1.5), ROUND(5, 1), ROUND(9.995, 2)", "1 -2 5 10"},
      {"SELECT ROUND('12.345', 2), ROUND('x', 2), ROUND(1.5, NULL), ROUND(NULL)",
       "12.35 0 null null"},
      {"SELECT ROUND(1e15 + 0.5), ROUND(1.23456789, 8), ROUND(1.5, -1)",
       "1000000000000001 1.23456789 2"},
      {"SELECT typeof(ROUND(5)), ROUND(0.00005, 4) = 0.0001", "real 1"},
  };
  for (const auto& [sql, want] : kCases) EXPECT_EQ(Rows(sql), want) << sql;
}

TEST_F(SqliteFile, DaysLieAsTheyWereGivenAndAreFound) {
  const TDateTime day = EncodeDate(2026, 11, 25);
  const auto asDay = [day](TParam& param) { param.SetAsDate(day); };
  const auto asMoment = [day](TParam& param) { param.SetAsDateTime(day); };
  Run("CREATE TABLE T (ID INTEGER PRIMARY KEY, D DATE, S DATETIME)");
  Run("CREATE INDEX TD ON T (D)");
  Write("INSERT INTO T (D, S) VALUES (:P, :P)", asDay);
  Write("INSERT INTO T (D, S) VALUES (:P, :P)", asMoment);
  Run("INSERT INTO T (D, S) VALUES ('2026-11-25T00:00:00', '2026-11-25 00:00:00.000')");
  Run("INSERT INTO T (D, S) VALUES ('2026-11-26', '2026-11-25 00:00:00.001')");
  EXPECT_EQ(Rows("SELECT CAST(D AS TEXT) || '|' || S FROM T WHERE ID < 3"),
            "2026-11-25|2026-11-25;2026-11-25 00:00:00|2026-11-25 00:00:00");
  Write("UPDATE T SET D = :P WHERE D = :P AND ID = 2", asDay);
  EXPECT_EQ(Rows("SELECT CAST(D AS TEXT) FROM T WHERE ID = 2"), "2026-11-25");
  for (const auto& set : {std::function<void(TParam&)>(asDay), {asMoment}}) {
    for (const auto& [condition, ids] : {std::pair{"D = :P", "1;2;3"},
                                         {"S = :P", "1;2;3"},
                                         {":P = S", "1;2;3"},
                                         {"S <> :P", "4"},
                                         {"S IN ('x', :P)", "1;2;3"},
                                         {"S > :P", "4"},
                                         {"S >= :P", "1;2;3;4"},
                                         {"S IS :P", "1;2;3"}}) {
      EXPECT_EQ(
          Rows(std::string("SELECT ID FROM T WHERE ").append(condition) + " ORDER BY ID", set), ids)
          << condition;
    }
    for (const char* condition :
         {"D = :P", "D >= :P", "D < :P", "D BETWEEN :P AND :P", ":P <= D"}) {
      EXPECT_THAT(Rows(std::string("EXPLAIN QUERY PLAN SELECT ID FROM T WHERE ") + condition, set),
                  testing::HasSubstr("SEARCH T USING COVERING INDEX TD"))
          << condition;
    }
  }
}

// As docs/database-profile.md tells it.
TEST_F(SqliteFile, AnEarlierFileIsConverted) {
  Run("CREATE TABLE ITEM (CODE VARCHAR(10) PRIMARY KEY, A DECIMAL(15,4))");
  Run("INSERT INTO ITEM VALUES ('A', 100), ('B', '99.75'), ('C', 99999999999.9999), ('D', -0.0001),"
      " ('E', NULL), ('F', 0)");
  const char* const kDigits = "SELECT CODE, A FROM ITEM ORDER BY CODE";
  const std::string before = Rows(kDigits);
  EXPECT_EQ(Rows("SELECT A * 7 / 107 FROM ITEM WHERE CODE = 'A'"), "6");
  query_.Close();
  connection_.StartTransaction({});
  Run("CREATE TABLE ITEM_NEW (CODE VARCHAR(10) PRIMARY KEY, A DECIMAL_REAL(19,4))");
  Run("INSERT INTO ITEM_NEW SELECT * FROM ITEM");
  Run("DROP TABLE ITEM");
  Run("ALTER TABLE ITEM_NEW RENAME TO ITEM");
  connection_.Commit({});
  EXPECT_EQ(Rows(kDigits), before);
  EXPECT_EQ(Rows("SELECT A * 7 / 107 FROM ITEM WHERE CODE = 'A'"), "6.54205607476636");
  EXPECT_EQ(Rows("SELECT DISTINCT typeof(A) FROM ITEM ORDER BY 1"), "null;real");
  EXPECT_EQ(Rows("SELECT CODE FROM ITEM WHERE A = :P", Amount(99999999999.9999_baht)), "C");
}

// The server has computed the amount, and keeps more of it than is read.
TEST_F(SqliteFile, AComputedAmountIsChangedWithoutAConflict) {
  Run("CREATE TABLE ITEM (ID INTEGER PRIMARY KEY, A DECIMAL_REAL(19,4), B DECIMAL(15,4))");
  Run("INSERT INTO ITEM VALUES (1, 0.1 + 0.2, 1.1 * 1.1)");
  TDataSetProvider provider(connection_);
  provider.Query().SQL().Add("SELECT * FROM ITEM");
  provider.KeyFields = "ID";
  TClientDataSet set;
  set.SetProvider(&provider);
  set.Open();
  EXPECT_EQ(set.FieldByName("A").AsString(), "0.3");
  set.Edit();
  set.FieldByName("B").SetAsString("7");
  set.Post();
  EXPECT_EQ(set.ApplyUpdates(0), 0);
  EXPECT_EQ(Rows("SELECT A, B FROM ITEM"), "0.3 7");
}

// A query may have them; a packet with both could not be read again.
TEST_F(SqliteFile, TwoColumnsOfOneNameAreNotSaved) {
  TDataSetProvider provider(connection_);
  provider.Query().SQL().Add("SELECT 1 AS A, 2 AS A");
  TClientDataSet set;
  set.SetProvider(&provider);
  set.Open();
  EXPECT_EQ(set.Fields(1).AsInteger(), 2);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set.XMLData(); }), "Duplicate field name 'A'");
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
