// Connections, cursors that overlap, and a server that goes away.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/drivers/server.h"
#include "tests/servers/serverprocess.h"

namespace kvshare {
namespace {

using data::Isolation;
using Kind = data::DriverError::Kind;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr int kRows = 2000;

std::string Named(const std::string& name) {
  std::string upper = name;
  if (CurrentDialect().upperNames) std::ranges::transform(upper, upper.begin(), ::toupper);
  return upper;
}

// 1 to kRows, with a text that is as long as the number says.
void FillNumbers(data::Connection& connection) {
  CreateTable(connection, "kv_numbers", "n INTEGER NOT NULL PRIMARY KEY, t VARCHAR(20)");
  connection.Begin(Isolation::ReadCommitted);
  for (int n = 1; n <= kRows; ++n) {
    const std::vector<data::ParameterValue> row = {std::int64_t{n}, "ลำดับ " + std::to_string(n)};
    connection.Query(WithPlaces("INSERT INTO kv_numbers VALUES (?, ?)"), row);
  }
  connection.Commit();
}

void ExpectRow(const data::Cursor& cursor, int n) {
  ASSERT_EQ(cursor.Integer(0), n);
  ASSERT_EQ(cursor.Text(1), "ลำดับ " + std::to_string(n));
}

class Overlapping : public testing::Test {
 protected:
  static void SetUpTestSuite() { FillNumbers(*Connected()); }

  std::unique_ptr<data::Cursor> Numbers(bool byParameter) {
    const std::vector<data::ParameterValue> zero = {std::int64_t{0}};
    return byParameter ? connection_->Query(
                             WithPlaces("SELECT n, t FROM kv_numbers WHERE n > ? ORDER BY n"), zero)
                       : connection_->Query("SELECT n, t FROM kv_numbers ORDER BY n");
  }

  // Reads on from row `n` to the end.
  static void ExpectRest(data::Cursor& cursor, int n) {
    ExpectRow(cursor, n);
    while (n < kRows) {
      ASSERT_TRUE(cursor.Next());
      ExpectRow(cursor, ++n);
    }
    EXPECT_FALSE(cursor.Next());
  }

  ConnectionPointer connection_ = Connected();
};

TEST_F(Overlapping, TwoQueriesAndAStatementShareAConnection) {
  for (const bool byParameter : {false, true}) {
    const auto outer = Numbers(byParameter);
    const auto unread = Numbers(byParameter);
    for (int n = 1; n <= 700; ++n) ASSERT_TRUE(outer->Next());
    EXPECT_EQ(connection_->Execute("UPDATE kv_numbers SET n = n WHERE n = 5"), 1);
    EXPECT_EQ(RowsOf(*connection_, "SELECT COUNT(*) FROM kv_numbers").at(0).at(0),
              std::to_string(kRows));
    ExpectRest(*outer, 700);
    ASSERT_TRUE(unread->Next());
    ExpectRest(*unread, 1);
  }
}

TEST_F(Overlapping, TheEndOfATransactionLosesNoRow) {
  for (const bool commit : {true, false}) {
    connection_->Begin(Isolation::ReadCommitted);
    const auto cursor = Numbers(false);
    for (int n = 1; n <= 3; ++n) ASSERT_TRUE(cursor->Next());
    commit ? connection_->Commit() : connection_->Rollback();
    ExpectRest(*cursor, 3);
  }
}

TEST_F(Overlapping, ACursorThatIsLeftEarlyFreesTheConnection) {
  for (const bool byParameter : {false, true}) {
    Numbers(byParameter)->Next();
    Numbers(byParameter).reset();
    EXPECT_EQ(connection_->Execute("DELETE FROM kv_numbers WHERE n = 0"), 0);
  }
}

// An error in a later row belongs to the query that has it, not to the statement that made room.
TEST_F(Overlapping, AnErrorInALaterRowComesWhereTheRowWouldBe) {
  if (CurrentDialect().viaOdbc || std::string(CurrentDialect().server) == "mariadb")
    return;  // divides to null
  const auto cursor = connection_->Query("SELECT 1 / (1500 - n) FROM kv_numbers");
  ASSERT_TRUE(cursor->Next());
  connection_->Execute("DELETE FROM kv_numbers WHERE n = 0");
  int rows = 1;
  EXPECT_THROW(
      {
        while (cursor->Next()) ++rows;
      },
      data::DriverError);
  EXPECT_GE(rows, 1400) << "every row before it";
  EXPECT_LT(rows, kRows);
  EXPECT_FALSE(cursor->Next());
}

TEST_F(Overlapping, DisconnectingIsNotTheEndOfTheRows) {
  const auto cursor = Numbers(false);
  ASSERT_TRUE(cursor->Next());
  connection_->Disconnect();
  ExpectRow(*cursor, 1);
  EXPECT_EQ(KindOfFailure([&cursor] { cursor->Next(); }), Kind::ConnectionLost);
}

TEST(Statements, WithoutRowsGiveNoCursor) {
  const auto connection = Connected();
  CreateTable(*connection, "kv_none", "n INTEGER");
  EXPECT_EQ(connection->Query("INSERT INTO kv_none VALUES (1)"), nullptr);
  connection->Execute("SELECT n FROM kv_none");
  EXPECT_THAT(RowsOf(*connection, "SELECT n FROM kv_none"), ElementsAre(ElementsAre("1")));
}

TEST(Statements, WantTheirParameters) {
  const auto connection = Connected();
  CreateTable(*connection, "kv_wanted", "n INTEGER, t VARCHAR(9)");
  const std::vector<data::ParameterValue> two = {std::int64_t{1}, std::int64_t{2}};
  EXPECT_THROW(connection->Query(WithPlaces("SELECT n FROM kv_wanted WHERE n = ?"), two),
               data::DriverError);
  EXPECT_THROW(connection->Query("SELECT n FROM kv_wanted WHERE n = ?"), data::DriverError);
  const std::vector<data::ParameterValue> one = {std::int64_t{1}};
  const data::StatementParts amongOthers{
      {"SELECT n FROM kv_wanted /* why? */ WHERE t <> '?' AND n = ", " -- really?"}, {0}};
  EXPECT_FALSE(connection->Query(amongOthers, one)->Next());
}

TEST(Names, OfTablesAndViewsWithoutTheSystems) {
  const auto connection = Connected();
  CreateTable(*connection, "kv_named", "n INTEGER");
  try {
    connection->Execute("DROP VIEW kv_view");
  } catch (const data::DriverError&) {
    // The first run of this test on this server.
  }
  connection->Execute("CREATE VIEW kv_view AS SELECT n FROM kv_named");
  const auto own = connection->TableNames(false);
  EXPECT_THAT(own, Contains(Named("kv_named")));
  EXPECT_THAT(own, Contains(Named("kv_view")));
  EXPECT_THAT(own, Not(Contains(testing::AnyOf("RDB$RELATIONS", "pg_class", "COLUMNS"))));
  const auto system = connection->TableNames(true);
  EXPECT_GT(system.size(), 10U);
  EXPECT_THAT(system, Not(Contains(Named("kv_named"))));
  connection->Execute("DROP VIEW kv_view");
}

TEST(Connecting, TellsTheServersVersion) {
  EXPECT_THAT(Connected()->ServerVersion(), testing::StartsWith(CurrentDialect().version));
}

TEST(Connecting, AnotherContractGetsNoDriver) {
  EXPECT_EQ(CurrentDriverEntry()(data::kDriverContract + 1), nullptr);
}

TEST(Connecting, TheFirstOfDoublesCountsInAnyLetterCase) {
  auto parameters = ServerParameters();
  for (auto& [key, value] : parameters) std::ranges::transform(key, key.begin(), ::toupper);
  parameters.emplace_back("Password", "another");
  parameters.emplace_back("No Such Parameter", "1");
  EXPECT_NO_THROW(MakeConnection()->Connect(parameters));
}

TEST(Connecting, AWrongPasswordIsRefusedAndNotRepeated) {
  auto parameters = ServerParameters();
  for (auto& [key, value] : parameters) {
    if (key == "Password") value = "not-The-Pw}7";
  }
  const auto connection = MakeConnection();
  std::string text;
  const Kind kind = KindOfFailure([&] { connection->Connect(parameters); }, &text);
  // Some ODBC drivers tell any failed login alike.
  if (!CurrentDialect().viaOdbc) {
    EXPECT_EQ(kind, Kind::Other);
  }
  EXPECT_NE(text, "");
  EXPECT_THAT(text, Not(testing::HasSubstr("not-The-Pw")));
  EXPECT_THROW(connection->Execute("SELECT 1"), data::DriverError);
  connection->Connect(ServerParameters());
  EXPECT_NO_THROW(connection->TableNames(false)) << "a second try with the right one";
}

TEST(Connecting, NobodyThere) {
  auto parameters = ServerParameters();
  for (auto& [key, value] : parameters) {
    if (key == "HostName") value = "127.0.0.1:9";
    if (const auto port = value.find("Port="); port != std::string::npos)
      value = value.substr(0, port) + "Port=9";
  }
  EXPECT_EQ(KindOfFailure([&] { MakeConnection()->Connect(parameters); }), Kind::ConnectionLost);
}

TEST(Killed, TheServerInTheMiddleOfATransaction) {
  const bool streams =
      !CurrentDialect().viaOdbc;  // its drivers have read all rows before the first
  const auto connection = Connected();
  const auto other = Connected();
  FillNumbers(*connection);
  connection->Begin(Isolation::ReadCommitted);
  connection->Execute("DELETE FROM kv_numbers WHERE n = 1");
  const auto idle = Connected();
  idle->Begin(Isolation::ReadCommitted);
  const auto cursor = other->Query(
      streams ? "SELECT a.n FROM kv_numbers a, kv_numbers b, kv_numbers c" : "SELECT 1");
  ASSERT_TRUE(cursor->Next());

  KillServer();
  if (streams) {  // what was on its way may still come; the rest is an error, never an end
    EXPECT_EQ(KindOfFailure([&cursor] {
                while (cursor->Next()) continue;
              }),
              Kind::ConnectionLost);
  }
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(KindOfFailure([&connection] { connection->Commit(); }), Kind::ConnectionLost);
    EXPECT_EQ(KindOfFailure([&idle] { idle->Commit(); }), Kind::ConnectionLost);
  }
  EXPECT_EQ(KindOfFailure([&connection] { connection->TableNames(false); }), Kind::ConnectionLost);
  connection->Disconnect();
  EXPECT_EQ(KindOfFailure([&connection] { connection->Connect(ServerParameters()); }),
            Kind::ConnectionLost);

  RunServerAgain();
  connection->Connect(ServerParameters());
  EXPECT_THAT(RowsOf(*connection, "SELECT COUNT(*) FROM kv_numbers WHERE n = 1"),
              ElementsAre(ElementsAre("1")))
      << "what was not committed is undone";
}

}  // namespace
}  // namespace kvshare
