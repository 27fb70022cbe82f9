// Whatever call into a driver fails, a program gets an exception of the library's.
#include <gmock/gmock.h>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/data/sql/sqlquery.h"
#include "tests/support.h"

namespace kvshare {
namespace {

struct Program {
  TSQLConnection connection;
  TSQLQuery query;
  TStringList names;

  Program(const char* entry, std::string_view fail) {
    connection.SetDriverName("FAILING");
    connection.LibraryName = FAILING_DRIVER;
    connection.GetDriverFunc = entry;
    connection.Params.SetValue("Fail", fail);
    connection.Params.SetValue("Database", "x");
    connection.Params.SetValue("LockTimeout", "1");
    query.SetSQLConnection(&connection);
    query.SQL().Add("SELECT :P");
  }
  void Begin() { connection.StartTransaction({}); }
  TField& Field() {
    query.Open();
    return query.Fields(0);
  }
  void Apply() {
    TDataSetProvider provider(connection);
    provider.TableName = "T";
    provider.KeyFields = "A B";
    TClientDataSet set;
    set.SetProvider(&provider);
    set.Open();
    set.Delete();
    set.ApplyUpdates(-1);
  }
};

TEST(Driver, FailuresAreExceptionsOfTheLibrary) {
  struct Case {
    const char* call;
    void (*action)(Program&);
  };
  constexpr Case kCases[] = {
      {"Connect", [](Program& p) { p.connection.Open(); }},
      {"SetLockTimeout", [](Program& p) { p.connection.Open(); }},
      {"Execute", [](Program& p) { p.connection.ExecuteDirect("x"); }},
      {"Query", [](Program& p) { p.query.Open(); }},
      {"Columns", [](Program& p) { p.query.Open(); }},
      {"Next", [](Program& p) { p.query.Open(); }},
      {"IsNull", [](Program& p) { p.Field().IsNull(); }},
      {"Integer", [](Program& p) { p.Field().AsInteger(); }},
      {"StatementLexis", [](Program& p) { p.query.Open(); }},
      {"Begin", [](Program& p) { p.Begin(); }},
      {"Commit", [](Program& p) { p.Begin(), p.connection.Commit({}); }},
      {"Rollback", [](Program& p) { p.Begin(), p.connection.Rollback({}); }},
      {"EarlyCommits", [](Program& p) { p.Begin(), p.connection.EarlyCommits(); }},
      {"TableNames", [](Program& p) { p.connection.GetTableNames(p.names, false); }},
      {"ServerVersion", [](Program& p) { p.connection.ServerVersion(); }},
      {"Quoted", [](Program& p) { p.Apply(); }},
      {"Exactly", [](Program& p) { p.Apply(); }},
      {"FailureEndsTransaction", [](Program& p) { p.Apply(); }},
  };
  for (const Case& c : kCases) {
    Program program("getFailing", c.call);
    const std::string field =
        c.call == std::string_view("IsNull") || c.call == std::string_view("Integer")
            ? "Field 'A B': "
            : "";
    EXPECT_EQ(MessageOf<EServerError>([&] { c.action(program); }),
              field + "SQL Server Error: no " + c.call);
  }
}

TEST(Driver, FailuresBeforeThereIsAConnection) {
  for (const std::string call : {"Entry", "MakeConnection", "DatabaseIsFile"}) {
    Program program(("getFailing" + call).c_str(), "");
    EXPECT_EQ(program.query.Params().Count(), 1) << "what its servers read is not known then";
    EXPECT_EQ(MessageOf<EServerError>([&] { program.connection.Open(); }),
              "SQL Server Error: no " + call);
    EXPECT_FALSE(program.connection.Connected());
  }
  Program program("getFailingStatementLexis", "nothing");
  EXPECT_EQ(program.query.Params().Count(), 1);
  program.connection.Open();
  EXPECT_EQ(program.query.Params().Count(), 1) << "the parameter takes the failure's place";
}

}  // namespace
}  // namespace kvshare
