// What a batch has written where the server commits, or the batch itself, before its end.
#include "kvshare/database/sqlbatch.h"
#include "kvshare/rtl/strutils.h"
#include "tests/company/faults.h"

namespace kvshare {
namespace {

constexpr std::string_view kNothing = "Nothing was written.";
constexpr std::string_view kDoubt = "It is not known whether the batch was written.";

struct BatchCase {
  const char* why;
  std::vector<std::string_view> statements;  // the last one fails
  std::string_view written;                  // how the report ends
  const char* left;                          // the keys in the table
};

class Batches : public Faults {
 protected:
  ~Batches() override {
    if (OnMariaDB()) Run("UNLOCK TABLES");
    for (const char* table : {"KV_U", "KV_V"}) DropTable(table);
  }

  static std::string Insert(int key) {
    return "INSERT INTO T VALUES (" + std::to_string(key) + ", 'a')";
  }
  // A number alone stands for the insert of that key.
  static TStringList LinesOf(const BatchCase& c) {
    TStringList lines;
    for (const std::string_view statement : c.statements) {
      const bool key = statement.find_first_not_of("0123456789") == std::string_view::npos;
      lines.Add((key ? Insert(std::stoi(std::string(statement))) : std::string(statement)) + ";");
    }
    return lines;
  }
  std::string Keys() const {
    TSQLQuery query;
    query.SetSQLConnection(connection_.get());
    query.SQL().Add("SELECT ID FROM T ORDER BY ID");
    std::string keys;
    for (query.Open(); !query.Eof(); query.Next()) keys += query.Fields(0).AsString() + " ";
    return std::string(Trim(keys));
  }
  void ExpectReport(const BatchCase& c) {
    SCOPED_TRACE(c.why);
    connection_ = Connected();
    Run("DELETE FROM T");
    const TSQLBatchReport report = RunSQLBatch(*connection_, LinesOf(c));
    EXPECT_FALSE(report.Committed);
    EXPECT_EQ(report.Statement, static_cast<int>(c.statements.size()));
    EXPECT_THAT(report.Text(), testing::EndsWith("\r\n" + std::string(c.written)));
    EXPECT_EQ(report.InDoubt, c.written == kDoubt);
    EXPECT_EQ(report.Written.empty(), c.written == kNothing || c.written == kDoubt);
    if (OnMariaDB()) Run("UNLOCK TABLES");
    EXPECT_EQ(Keys(), c.left);
    // What comes next is committed by itself again, and in a transaction where it asks for one.
    Run(Insert(99));
    connection_->StartTransaction({});
    Run(Insert(98));
    connection_->Rollback({});
    connection_ = Connected();
    EXPECT_EQ(Holds("ID = 99"), true);
    EXPECT_EQ(Holds("ID = 98"), false);
    for (const char* table : {"KV_U", "KV_V"}) DropTable(table);
  }
};

TEST_F(Batches, TheirOwnCommitsAreReported) {
  const BatchCase cases[] = {
      {"COMMIT",
       {"11", "COMMIT", "12", "11"},
       "Statements 1 to 2 had been committed before; nothing else was written.",
       "11"},
      {"behind a comment",
       {"11", "/* half */ COMMIT", "12", "11"},
       "Statements 1 to 2 had been committed before; nothing else was written.",
       "11"},
      {"one after the other",
       {"11", "COMMIT", "COMMIT", "12", "COMMIT", "13", "11"},
       "Statements 1 to 5 had been committed before; nothing else was written.",
       "11 12"},
      {"ROLLBACK takes back", {"11", "ROLLBACK", "12", "12"}, kNothing, ""},
      {"and so before a COMMIT",
       {"11", "ROLLBACK", "12", "COMMIT", "13", "12"},
       "Statements 3 to 4 had been committed before; nothing else was written.",
       "12"},
      {"and between two",
       {"11", "COMMIT", "12", "ROLLBACK", "13", "COMMIT", "14", "13"},
       "Statements 1 to 2 and 5 to 6 had been committed before; nothing else was written.",
       "11 13"},
      {"a savepoint ends nothing",
       {"11", "SAVEPOINT KV_S", "12", "ROLLBACK TO SAVEPOINT KV_S", "11"},
       kNothing,
       ""},
      {"its end in between",
       {"SAVEPOINT KV_S", "11", "RELEASE SAVEPOINT KV_S", "11"},
       kNothing,
       ""},
  };
  for (const BatchCase& c : cases) ExpectReport(c);
}

TEST_F(Batches, ThatCreateTables) {
  const bool commits = OnMariaDB();
  const BatchCase cases[] = {
      {"the next one is in a transaction again",
       {"11", "CREATE TABLE KV_U (I INTEGER)", "12", "11"},
       commits ? "Statements 1 to 2 had been committed before; nothing else was written."
               : kNothing,
       commits ? "11" : ""},
      {"nothing before it",
       {"CREATE TABLE KV_U (I INTEGER)", "11", "11"},
       commits ? "Statement 1 had been committed before; nothing else was written." : kNothing,
       ""},
      {"two of them",
       {"CREATE TABLE KV_U (I INTEGER)", "CREATE TABLE KV_V (I INTEGER)", "11", "11"},
       commits ? "Statements 1 to 2 had been committed before; nothing else was written."
               : kNothing,
       ""},
      {"one that fails commits all the same",
       {"11", "CREATE TABLE T (I INTEGER)"},
       commits ? "Statement 1 had been committed before; nothing else was written." : kNothing,
       commits ? "11" : ""},
  };
  for (const BatchCase& c : cases) ExpectReport(c);
}

// MariaDB commits at more than that; where a procedure did it, the driver knows only that.
TEST_F(Batches, ThatCommitInOtherWays) {
  if (!OnMariaDB()) return;
  for (const char* name : {"KV_BOTH", "KV_BACK", "KV_NONE"})
    Run(std::string("DROP PROCEDURE IF EXISTS ") + name);
  Run("CREATE PROCEDURE KV_BOTH() BEGIN COMMIT; INSERT INTO T VALUES (50, 'b'); END");
  Run("CREATE PROCEDURE KV_BACK() BEGIN DECLARE EXIT HANDLER FOR SQLEXCEPTION BEGIN ROLLBACK; "
      "RESIGNAL; END; INSERT INTO T VALUES (50, 'b'); INSERT INTO T VALUES (50, 'b'); END");
  Run("CREATE PROCEDURE KV_NONE() INSERT INTO T VALUES (50, 'b')");
  constexpr std::string_view kTwo =
      "Statements 1 to 2 had been committed before; nothing else was written.";
  const BatchCase cases[] = {
      {"it begins another one", {"11", "START TRANSACTION", "12", "11"}, kTwo, "11"},
      {"likewise", {"11", "BEGIN", "12", "11"}, kTwo, "11"},
      {"it goes on", {"11", "COMMIT AND CHAIN", "12", "11"}, kTwo, "11"},
      {"and so back", {"11", "ROLLBACK AND CHAIN", "12", "12"}, kNothing, ""},
      {"autocommit", {"11", "SET autocommit = 1", "12", "11"}, kTwo, "11"},
      {"locks", {"11", "LOCK TABLES T WRITE", "12", "11"}, kTwo, "11"},
      {"a variable", {"11", "SET @x = 1", "11"}, kNothing, ""},
      {"a table of this connection alone",
       {"11", "CREATE TEMPORARY TABLE KV_T (I INTEGER)", "11"},
       kNothing,
       ""},
      {"a procedure that ends nothing", {"11", "CALL KV_NONE()", "11"}, kNothing, ""},
      {"that commits", {"11", "CALL KV_BOTH()", "12", "11"}, kDoubt, "11"},
      {"that takes back and fails", {"11", "CALL KV_BACK()"}, kDoubt, ""},
  };
  for (const BatchCase& c : cases) ExpectReport(c);
}

TEST_F(Batches, OneThatIsCommittedSaysNothingOfIt) {
  const TSQLBatchReport report =
      RunSQLBatch(*connection_, LinesOf({"", {"11", "COMMIT", "12"}, "", ""}));
  EXPECT_TRUE(report.Committed);
  EXPECT_FALSE(report.InDoubt);
  EXPECT_EQ(report.Text(), "");
  EXPECT_THAT(report.Written, testing::IsEmpty());
  EXPECT_EQ(Keys(), "11 12");
}

}  // namespace
}  // namespace kvshare
