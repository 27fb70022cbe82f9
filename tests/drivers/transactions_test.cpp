// Transactions, locks, and the kinds of errors that come of them.
#include <gmock/gmock.h>

#include <chrono>
#include <future>

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
