// What goes wrong between a program and a server.
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/inifile.h"
#include "tests/company/faults.h"
#include "tests/servers/relay.h"
#include "tests/servers/serverprocess.h"

namespace kvshare {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

TEST_F(Faults, ThePasswordIsNowhere) {
  SetParameter("Password", "Wr0ng-Secret");
  TSQLConnection connection;
  ConnectDBMS(connection, kAlias, true);
  EXPECT_FALSE(connection.Connected());
  EXPECT_FALSE(CanConnectDBMS(connection, kAlias));
  const auto boxes = Boxes();
  ASSERT_THAT(boxes, SizeIs(2));
  for (const std::string& text : boxes) {
    EXPECT_THAT(text, HasSubstr("SQL Server Error: "));
    EXPECT_THAT(text, Not(HasSubstr("Secret")));
  }
  EXPECT_THAT(Log(), Not(HasSubstr("Secret")));
}

// The address is a parameter of its own, or stands in the connection string.
class Addresses : public Faults {
 protected:
  // The port that the connection file names; changes it.
  int TakePort(int other) {
    const TIniFile file(GetDbxConnectFileName());
    std::string text = file.ReadString(kAlias, "Database", "");
    if (const std::size_t port = text.find("Port="); port != std::string::npos) {
      const std::size_t digits = port + std::string_view("Port=").size();
      const std::string known = text.substr(digits, text.find(';', digits) - digits);
      SetParameter("Database", text.replace(digits, known.size(), std::to_string(other)));
      return std::stoi(known);
    }
    text = file.ReadString(kAlias, "HostName", "");
    SetParameter("HostName", "127.0.0.1:" + std::to_string(other));
    return std::stoi(text.substr(text.rfind(':') + 1));
  }
};

TEST_F(Addresses, NobodyListens) {
  TakePort(1);
  TSQLConnection connection;
  ConnectDBMS(connection, kAlias, true);
  EXPECT_FALSE(connection.Connected());
  EXPECT_THAT(Boxes(), SizeIs(1));
}

// Neither side learns of it: the bytes are taken and go nowhere.
TEST_F(Addresses, TheNetworkPathGoesDead) {
  const auto useless = [](TSQLConnection& connection, const std::function<void()>& work) {
    const auto began = std::chrono::steady_clock::now();
    try {
      work();
      ADD_FAILURE() << "answered";
    } catch (const EServerError& e) {
      EXPECT_TRUE(e.ConnectionLost());
      EXPECT_THAT(e.Message(), HasSubstr("The server has not answered for 600 milliseconds"));
    }
    EXPECT_THAT(MessageOf<EServerError>([&] { connection.ExecuteDirect("DELETE FROM T"); }),
                HasSubstr("The connection was lost"));
    connection.Close();
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(5));
  };
  Run("INSERT INTO T VALUES (1, 'a')");
  const int port = TakePort(0);
  const auto through = [&](Relay& relay) {
    TakePort(relay.Port());
    SetParameter("AnswerTimeout", "600");
    auto connection = Connected();
    EXPECT_TRUE(connection->Connected());
    return connection;
  };
  {
    Relay relay(port);
    const auto connection = through(relay);
    relay.GoDead();
    useless(*connection, [&] { connection->ExecuteDirect("DELETE FROM T"); });
  }
  Relay relay(port);
  const auto connection = through(relay);
  connection->StartTransaction({});
  connection->ExecuteDirect("DELETE FROM T");
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));  // nobody waits for an answer
  relay.GoDead();
  useless(*connection, [&] { connection->Commit({}); });
}

// Of transactions that leave the isolation to the connection file.
TEST_F(Faults, TheIsolationOfTheConnectionFile) {
  Run("INSERT INTO T VALUES (1, 'a')");
  for (const auto& [level, seen] : {std::pair("RepeatableRead", "a"), {"ReadCommited", "b"}}) {
    SetParameter("Interbase TransIsolation", level);
    const auto reader = Connected();
    Run("UPDATE T SET N = 'a'");
    const auto read = [&reader] {
      TSQLQuery query;
      query.SetSQLConnection(reader.get());
      query.SQL().Add("SELECT N FROM T");
      query.Open();
      return query.Fields(0).AsString();
    };
    reader->StartTransaction({.IsolationLevel = TTransIsolationLevel::xilCUSTOM});
    EXPECT_EQ(read(), "a");
    Run("UPDATE T SET N = 'b'");
    EXPECT_EQ(read(), seen) << level;
    reader->Commit({});
  }
}

TEST_F(Faults, TheServerIsKilledInTheMiddleOfABatch) {
  TStringList batch;
  constexpr int kMoreThanItGetsThrough = 500'000;
  for (int i = 0; i < kMoreThanItGetsThrough; ++i) {
    batch.Add("INSERT INTO T VALUES (" + std::to_string(i) + ", 'a');");
  }
  std::thread killer([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    KillServer();
  });
  const TSQLBatchReport report = RunSQLBatch(*connection_, batch);
  killer.join();
  EXPECT_FALSE(report.Committed || report.InDoubt);
  EXPECT_GT(report.Statement, 1);
  EXPECT_THAT(report.Text(), HasSubstr("Nothing was written."));
  connection_->Close();
  EXPECT_FALSE(RunExecSQL(*connection_, "DELETE FROM T", true)) << "nobody there";
  EXPECT_THAT(Boxes(), SizeIs(1));

  RunServerAgain();
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
  EXPECT_TRUE(RunExecSQL(*connection_, "INSERT INTO T VALUES (1, 'a')", true));
}

// A batch whose connection is lost when its line `at` is read.
class LinesThatLose : public TStringList {
 public:
  LinesThatLose(const TStringList& lines, int at, std::function<void()> lose)
      : at_(at), lose_(std::move(lose)) {
    Assign(lines);
  }
  const std::string& operator[](int index) const override {
    if (index == at_) std::exchange(lose_, [] {})();
    return TStringList::operator[](index);
  }

 private:
  int at_;
  mutable std::function<void()> lose_;
};

TEST_F(Faults, WhatIsInDoubtWhenTheConnectionIsLost) {
  struct Case {
    const char* why;
    TStringList lines;
    int at;
    int statement;
    bool doubt;
    const char* written;
  };
  constexpr const char* kNothing = "\r\nNothing was written.";
  constexpr const char* kDoubt = "\r\nIt is not known whether the batch was written.";
  // There a savepoint is set first: the statement itself is never sent.
  const bool asks = OnMariaDB();
  const Case cases[] = {
      {"before a statement", Lines({"INSERT INTO T VALUES (1, 'a');", "DELETE FROM T"}), 1, 2,
       false, kNothing},
      {"before the commit", Lines({"INSERT INTO T VALUES (1, 'a');", ""}), 1, 0, true, kDoubt},
      {"before a COMMIT of its own", Lines({"INSERT INTO T VALUES (1, 'a');", "COMMIT"}), 1, 2,
       !asks, asks ? kNothing : kDoubt},
      {"before its ROLLBACK", Lines({"INSERT INTO T VALUES (1, 'a');", "ROLLBACK"}), 1, 2, false,
       kNothing},
      {"behind its COMMIT",
       Lines({"INSERT INTO T VALUES (2, 'a');", "COMMIT;", "INSERT INTO T VALUES (1, 'a');", ""}),
       3, 0, true,
       "\r\nStatements 1 to 2 had been committed before; it is not known whether anything else was"
       " written."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    const TSQLBatchReport report = RunSQLBatch(*connection_, LinesThatLose(c.lines, c.at, [] {
      KillServer();
      RunServerAgain();
    }));
    EXPECT_FALSE(report.Committed);
    EXPECT_EQ(report.Statement, c.statement) << report.Text();
    EXPECT_EQ(report.InDoubt, c.doubt) << report.Text();
    EXPECT_THAT(report.Text(), testing::EndsWith(c.written));
    connection_ = Connected();
    EXPECT_FALSE(Holds("ID = 1"));
  }
}

TEST_F(Faults, TheServerIsKilledWhileChangesAreApplied) {
  constexpr int kMoreThanItGetsThrough = 100'000;
  TDataSetProvider provider(*connection_);
  provider.TableName = "T";
  provider.KeyFields = "ID";
  TClientDataSet set;
  set.SetProvider(&provider);
  set.Open();
  const auto add = [&set](int records) {
    for (int i = 0; i < records; ++i) {
      set.Append();
      set.FieldByName("ID").SetAsInteger(i);
      set.FieldByName("N").SetAsString("a");
      set.Post();
    }
  };
  add(kMoreThanItGetsThrough);
  bool asked = false;
  set.OnReconcileError = [&](auto&&...) { asked = true; };
  std::thread killer([] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    KillServer();
  });
  try {
    set.ApplyUpdates(-1);
    ADD_FAILURE() << "applied";
  } catch (const EServerError& e) {
    EXPECT_TRUE(e.ConnectionLost()) << e.Message();
  }
  killer.join();
  EXPECT_FALSE(asked);
  EXPECT_EQ(set.ChangeCount(), kMoreThanItGetsThrough);
  EXPECT_FALSE(connection_->InTransaction());

  RunServerAgain();
  connection_->Close();
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
  set.CancelUpdates();
  add(100);
  EXPECT_EQ(set.ApplyUpdates(0), 0);
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "100");
}

}  // namespace
}  // namespace kvshare
