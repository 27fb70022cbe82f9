// Transactions, locks, and the kinds of errors that come of them.
#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <iterator>
#include <span>

#include "tests/drivers/server.h"

namespace kvshare {
namespace {

using data::Isolation;
using Kind = data::DriverError::Kind;
using testing::ElementsAre;

class Transactions : public testing::Test {
 protected:
  Transactions() {
    CreateTable(*first_, "kv_ledger", "k INTEGER NOT NULL PRIMARY KEY, v INTEGER");
    first_->Execute("INSERT INTO kv_ledger VALUES (1, 10)");
    first_->Execute("INSERT INTO kv_ledger VALUES (2, 20)");
  }

  static std::string Value(data::Connection& connection, int key) {
    return RowsOf(connection, "SELECT v FROM kv_ledger WHERE k = " + std::to_string(key))
        .at(0)
        .at(0);
  }
  static std::int64_t Set(data::Connection& connection, int key, int value) {
    return connection.Execute("UPDATE kv_ledger SET v = " + std::to_string(value) +
                              " WHERE k = " + std::to_string(key));
  }

  ConnectionPointer first_ = Connected();
  ConnectionPointer second_ = Connected();
};

TEST_F(Transactions, OutsideEachStatementCommitsItself) {
  EXPECT_EQ(Set(*first_, 1, 11), 1);
  EXPECT_EQ(Value(*second_, 1), "11");
}

TEST_F(Transactions, CommitAndRollback) {
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  EXPECT_EQ(Value(*first_, 1), "11");
  first_->Rollback();
  EXPECT_EQ(Value(*second_, 1), "10");

  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 12);
  first_->Commit();
  EXPECT_EQ(Value(*second_, 1), "12");
}

TEST_F(Transactions, ReadCommittedSeesWhatOthersCommit) {
  second_->Begin(Isolation::ReadCommitted);
  EXPECT_EQ(Value(*second_, 1), "10");
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  EXPECT_EQ(Value(*second_, 1), "10");
  first_->Commit();
  EXPECT_EQ(Value(*second_, 1), "11");
  second_->Commit();
}

TEST_F(Transactions, RepeatableReadDoesNot) {
  second_->Begin(Isolation::RepeatableRead);
  EXPECT_EQ(Value(*second_, 1), "10");
  Set(*first_, 1, 11);
  EXPECT_EQ(Value(*second_, 1), "10");
  second_->Commit();
  EXPECT_EQ(Value(*second_, 1), "11");
}

TEST_F(Transactions, DisconnectingRollsBack) {
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  first_->Disconnect();
  EXPECT_EQ(Value(*second_, 1), "10");
  EXPECT_THROW(first_->Execute("DELETE FROM kv_ledger"), data::DriverError);
}

TEST_F(Transactions, RowsFoundCountThoughNothingChanges) {
  EXPECT_EQ(first_->Execute("UPDATE kv_ledger SET v = 10 WHERE k = 1"), 1);
  EXPECT_EQ(first_->Execute("UPDATE kv_ledger SET v = v + 1"), 2);
  EXPECT_EQ(first_->Execute("DELETE FROM kv_ledger WHERE k = 99"), 0);
}

TEST_F(Transactions, ALockIsWaitedForAsLongAsTold) {
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  struct Case {
    std::int32_t wait;
    double atLeast;
    double atMost;
  };
  for (const Case& c : {Case{1000, 0.4, 5}, Case{0, 0, 0.9}}) {
    second_->SetLockTimeout(c.wait);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(KindOfFailure([this] { Set(*second_, 1, 12); }), Kind::Busy);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited.count(), c.atLeast);
    EXPECT_LE(waited.count(), c.atMost);
  }
  first_->Commit();
  EXPECT_EQ(Set(*second_, 1, 12), 1) << "the same succeeds later";
}

TEST_F(Transactions, ALockThatIsGivenBackInTimeIsNoError) {
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  auto waiting = std::async(std::launch::async, [this] { return Set(*second_, 1, 12); });
  EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(200)), std::future_status::timeout);
  first_->Commit();
  EXPECT_EQ(waiting.get(), 1);
  EXPECT_EQ(Value(*first_, 1), "12");
}

TEST_F(Transactions, ChangedBehindASnapshotIsAConflict) {
  if (!CurrentDialect().snapshotConflict)
    GTEST_SKIP() << "this server locks what it reads for update";
  first_->Begin(Isolation::RepeatableRead);
  EXPECT_EQ(Value(*first_, 1), "10");
  Set(*second_, 1, 12);
  EXPECT_EQ(KindOfFailure([this] { Set(*first_, 1, 11); }), Kind::Conflict);
  first_->Rollback();
  EXPECT_EQ(Value(*first_, 1), "12");
}

TEST_F(Transactions, OfADeadlockOneIsUndone) {
  if (CurrentDialect().upperNames) GTEST_SKIP() << "found by this server only after ten seconds";
  first_->Begin(Isolation::ReadCommitted);
  second_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  Set(*second_, 2, 22);
  const auto cross = [](data::Connection& connection, int key) {
    try {
      Set(connection, key, 33);
    } catch (const data::DriverError& e) {
      return e.What();
    }
    return Kind::Other;
  };
  auto other = std::async(std::launch::async, [&] {
    const Kind kind = cross(*first_, 2);
    first_->Rollback();
    return kind;
  });
  const Kind mine = cross(*second_, 1);
  second_->Rollback();
  const Kind its = other.get();
  EXPECT_TRUE((mine == Kind::Conflict) != (its == Kind::Conflict));
}

TEST_F(Transactions, ErrorsCarryTheServersWords) {
  std::string text;
  EXPECT_EQ(
      KindOfFailure([this] { first_->Execute("INSERT INTO kv_ledger VALUES (1, 99)"); }, &text),
      Kind::Other);
  EXPECT_THAT(text,
              testing::AnyOf(testing::HasSubstr("Duplicate entry '1' for key 'PRIMARY'"),
                             testing::HasSubstr("duplicate key value violates unique constraint"),
                             testing::HasSubstr("violation of PRIMARY or UNIQUE KEY constraint")));
  EXPECT_EQ(KindOfFailure([this] { first_->Execute("SELEC 1"); }, &text), Kind::Other);
  EXPECT_EQ(KindOfFailure([this] { first_->Query("SELECT v FROM kv_nowhere"); }, &text),
            Kind::Other);
  EXPECT_THAT(text,
              testing::AnyOf(testing::HasSubstr("kv_nowhere"), testing::HasSubstr("KV_NOWHERE")));
  EXPECT_EQ(Value(*first_, 1), "10") << "the connection goes on";
}

TEST_F(Transactions, AFailureInsideLeavesTheRestToTheCaller) {
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  EXPECT_THROW(first_->Execute("INSERT INTO kv_ledger VALUES (2, 99)"), data::DriverError);
  first_->Rollback();
  EXPECT_EQ(Value(*first_, 1), "10");
}

// The server would answer the commit without an error, though it rolls back.
TEST_F(Transactions, ACommitThatDoesNotCommitIsAnError) {
  if (std::string(CurrentDialect().server) != "postgres") return;
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  EXPECT_THROW(first_->Execute("SELEC 1"), data::DriverError);
  EXPECT_THROW(first_->Commit(), data::DriverError);
  EXPECT_EQ(Value(*first_, 1), "10");
}

// By each of the ways to send a statement.
TEST_F(Transactions, GoOnBehindACommitOrRollbackAmongTheirStatements) {
  using Send = void (*)(data::Connection&, const std::string&);
  constexpr Send kWays[] = {
      [](data::Connection& c, const std::string& sql) { c.Execute(sql); },
      [](data::Connection& c, const std::string& sql) { EXPECT_EQ(c.Query(sql), nullptr); },
      [](data::Connection& c, const std::string& sql) {
        EXPECT_EQ(c.Query(WithPlaces(sql), {}), nullptr);
      },
      [](data::Connection& c, const std::string& sql) { c.Prepare(WithPlaces(sql))->Run({}); },
  };
  // PostgreSQL's ODBC driver cannot prepare them: it gives two plans one name.
  const bool prepares = std::string(CurrentDialect().server) != "odbc-postgres";
  int now = 10;
  for (const Send& send : std::span(kWays).first(prepares ? std::size(kWays) : 2)) {
    for (const bool commit : {true, false}) {
      SCOPED_TRACE(testing::Message()
                   << "way " << &send - kWays << (commit ? " COMMIT" : " ROLLBACK"));
      first_->Begin(Isolation::ReadCommitted);
      const auto open = first_->Query("SELECT k FROM kv_ledger ORDER BY k");
      ASSERT_TRUE(open->Next());
      Set(*first_, 1, now + 1);
      send(*first_, commit ? "COMMIT" : "ROLLBACK");
      EXPECT_EQ(first_->EarlyCommits(), commit ? 1 : 0);
      EXPECT_EQ(first_->EarlyRollbacks(), commit ? 0 : 1);
      Set(*first_, 2, 22);
      EXPECT_EQ(Value(*second_, 2), "20");
      first_->Rollback();
      now += commit ? 1 : 0;
      EXPECT_EQ(Value(*second_, 1), std::to_string(now));
      EXPECT_EQ(Value(*second_, 2), "20");
      EXPECT_TRUE(open->Next()) << "a cursor keeps its rows";
      EXPECT_EQ(Set(*first_, 2, 20), 1);
      EXPECT_EQ(Value(*second_, 2), "20");
    }
  }
  first_->Begin(Isolation::ReadCommitted);
  EXPECT_EQ(first_->EarlyCommits() + first_->EarlyRollbacks(), 0) << "of this transaction";
  first_->Rollback();
}

TEST_F(Transactions, KeepTheirIsolationBehindACommit) {
  first_->Begin(Isolation::RepeatableRead);
  first_->Execute("COMMIT");
  EXPECT_EQ(Value(*first_, 1), "10");
  Set(*second_, 1, 12);
  EXPECT_EQ(Value(*first_, 1), "10");
  first_->Commit();
  EXPECT_EQ(Value(*first_, 1), "12");
}

// The server rolls back there; a second try must not be answered with yes.
TEST_F(Transactions, ACommitThatFailedFailsAgain) {
  if (!std::string(CurrentDialect().server).ends_with("postgres")) return;
  CreateTable(*first_, "kv_late", "k INTEGER UNIQUE DEFERRABLE INITIALLY DEFERRED");
  first_->Begin(Isolation::ReadCommitted);
  first_->Execute("INSERT INTO kv_late VALUES (1)");
  first_->Execute("INSERT INTO kv_late VALUES (1)");
  EXPECT_EQ(KindOfFailure([this] { first_->Commit(); }), Kind::Other);
  EXPECT_EQ(KindOfFailure([this] { first_->Commit(); }), Kind::Conflict);
  first_->Rollback();
  first_->Begin(Isolation::ReadCommitted);
  first_->Execute("INSERT INTO kv_late VALUES (2)");
  first_->Execute("INSERT INTO kv_late VALUES (2)");
  EXPECT_EQ(KindOfFailure([this] { first_->Execute("COMMIT"); }), Kind::Other);
  EXPECT_EQ(first_->EarlyCommits() > 0, first_->EarlyRollbacks() > 0) << "not as if it had";
  EXPECT_EQ(KindOfFailure([this] { first_->Commit(); }), Kind::Conflict);
  first_->Rollback();
  first_->Execute("INSERT INTO kv_late VALUES (3)");
  EXPECT_THAT(RowsOf(*second_, "SELECT k FROM kv_late"), ElementsAre(ElementsAre("3")));
}

// Whatever was noticed of the loss before.
TEST_F(Transactions, ACommitOfALostConnectionIsNeverAnsweredWithYes) {
  if (CurrentDialect().kill == nullptr) GTEST_SKIP() << "no connection that can be lost";
  struct Case {
    bool works;    // before the loss
    bool notices;  // by a statement after it
  };
  for (const Case& c :
       {Case{true, false}, Case{false, false}, Case{true, true}, Case{false, true}}) {
    SCOPED_TRACE(testing::Message() << c.works << c.notices);
    const auto lost = Connected();
    const std::string number = RowsOf(*lost, CurrentDialect().ownNumber).at(0).at(0);
    lost->Begin(Isolation::ReadCommitted);
    if (c.works) Set(*lost, 1, 66);
    std::string kill = CurrentDialect().kill;
    second_->Query(kill.replace(kill.find('%'), 1, number));
    if (c.notices) {
      EXPECT_EQ(KindOfFailure([&] { Set(*lost, 2, 66); }), Kind::ConnectionLost);
    }
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(KindOfFailure([&] { lost->Commit(); }), Kind::ConnectionLost);
    }
    EXPECT_EQ(KindOfFailure([&] { Set(*lost, 2, 66); }), Kind::ConnectionLost);
    lost->Disconnect();
    EXPECT_EQ(Value(*first_, 1) + " " + Value(*first_, 2), "10 20");
    lost->Connect(ServerParameters());
    EXPECT_EQ(Set(*lost, 2, 20), 1) << "another connection of the same";
  }
}

TEST_F(Transactions, TheLockTimeoutOutlivesARollback) {
  second_->Begin(Isolation::ReadCommitted);
  second_->SetLockTimeout(0);
  second_->Rollback();
  first_->Begin(Isolation::ReadCommitted);
  Set(*first_, 1, 11);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(KindOfFailure([this] { Set(*second_, 1, 12); }), Kind::Busy);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace kvshare
