// What goes wrong between a program and a server.
#include <chrono>
#include <thread>

#include "kvshare/data/clientdataset.h"
#include "kvshare/data/provider.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlbatch.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/inifile.h"
#include "tests/company/faults.h"
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
TEST_F(Faults, NobodyListens) {
  const TIniFile file(GetDbxConnectFileName());
  std::string text = file.ReadString(kAlias, "Database", "");
  if (const std::size_t port = text.find("Port="); port != std::string::npos) {
    text.replace(port, text.find(';', port) - port, "Port=1");
    SetParameter("Database", text);
  } else {
    SetParameter("HostName", "127.0.0.1:1");
  }
  TSQLConnection connection;
  ConnectDBMS(connection, kAlias, true);
  EXPECT_FALSE(connection.Connected());
  EXPECT_THAT(Boxes(), SizeIs(1));
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
