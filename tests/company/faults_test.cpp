// What goes wrong: the contract's report, no half-written batch, no hang.
#include "tests/company/faults.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare {
namespace {

using ::testing::HasSubstr;
using ::testing::SizeIs;

constexpr std::string_view kBoxBegins = "พบข้อผิดพลาด\r\n"_th;

TEST_F(Faults, AFailedBatchIsShownLoggedAndGone) {
  const TStringList batch =
      Lines({"INSERT INTO T VALUES (1, 'a');", "INSERT INTO NOWHERE VALUES (2)"});
  EXPECT_FALSE(RunExecSQLBatch(*connection_, batch, true));
  const auto boxes = Boxes();
  ASSERT_THAT(boxes, SizeIs(1));
  EXPECT_TRUE(boxes[0].starts_with(kBoxBegins)) << boxes[0];
  EXPECT_TRUE(boxes[0].ends_with(batch.Text())) << boxes[0];
  EXPECT_THAT(Log(), HasSubstr("<SqlFunc> <ExecSQLBatch> "));
  EXPECT_THAT(Log(), HasSubstr("<> INSERT INTO NOWHERE VALUES (2)\r\n"));
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
}

TEST_F(Faults, LettersAndBytesThatAreNone) {
  for (const std::string_view text : {std::string_view("INSERT INTO T VALUES (1, 'a\0b')", 31),
                                      std::string_view("INSERT INTO T VALUES (1, '\xFF')")}) {
    EXPECT_FALSE(RunExecSQL(*connection_, text, true));
    EXPECT_THAT(Boxes(), SizeIs(1));
  }
  EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
}

TEST_F(Faults, AStatementOfTenMegabytes) {
  constexpr std::size_t kSize = std::size_t{10} << 20;
  std::string sql = "INSERT INTO T VALUES (1, 'a')";
  sql.append(kSize - sql.size(), ' ').append("\r\n, (2, 'b')");
  const bool done = RunExecSQL(*connection_, sql, false);
  if (ServerName() == "firebird") {
    EXPECT_FALSE(done) << "its statements have 10 MB at most, and one row";
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "0");
  } else {
    EXPECT_TRUE(done);
    EXPECT_EQ(Ask("SELECT COUNT(*) FROM T"), "2");
  }
}

// A colleague keeps a row: the wait ends when it should, with the report, and nothing is written.
TEST_F(Faults, TheWaitForALockIsBounded) {
  Run("INSERT INTO T VALUES (1, 'a')");
  Run("INSERT INTO T VALUES (2, 'b')");
  SetParameter("LockTimeout", "300");
  const auto second = Connected();
  ASSERT_TRUE(second->Connected());
  const TTransactionDesc description;
  connection_->StartTransaction(description);
  connection_->ExecuteDirect("UPDATE T SET N = 'kept' WHERE ID = 2");
  const TDateTime before = Now();
  EXPECT_FALSE(RunExecSQLBatch(
      *second, Lines({"UPDATE T SET N = 'x' WHERE ID = 1;", "UPDATE T SET N = 'x' WHERE ID = 2"}),
      true));
  constexpr double kSecond = 1.0 / (24 * 60 * 60);
  EXPECT_LT((Now().Days() - before.Days()) / kSecond, 5);
  const auto boxes = Boxes();
  ASSERT_THAT(boxes, SizeIs(1));
  EXPECT_TRUE(boxes[0].starts_with(kBoxBegins)) << boxes[0];
  connection_->Commit(description);
  EXPECT_EQ(Ask("SELECT N FROM T WHERE ID = 1"), "a");
  EXPECT_EQ(Ask("SELECT N FROM T WHERE ID = 2"), "kept");
}

TEST_F(Faults, ALogFolderThatIsAFile) {
  home_.Make("Log");
  EXPECT_FALSE(RunExecSQLBatch(*connection_, Lines({"nothing"}), false));
  const auto boxes = Boxes();
  ASSERT_THAT(boxes, SizeIs(2)) << "one for each of the two entries";
  EXPECT_THAT(boxes[0], HasSubstr("C:\\Log\\event.log"));
}

}  // namespace
}  // namespace kvshare
