// Tables that other programs of the server have made.
#include "kvshare/database/sqlfunc.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

class Names : public ServerCompany {
 protected:
  // Runs BEFORE "SNOW☃" BEHIND, which no text of ours can hold, as each server can be made to.
  void RunWithSnowman(const std::string& before, const std::string& behind) {
    const std::string start = "'" + before + "\"SNOW' || ";
    const std::string end = " || '\"" + behind + "'";
    if (OnMariaDB()) {
      Run("CREATE OR REPLACE PROCEDURE SNOWS() EXECUTE IMMEDIATE CONCAT('" + before +
          "`SNOW', CHAR(0xE29883 USING utf8mb4), '`" + behind + "')");
      Run("CALL SNOWS()");
      Run("DROP PROCEDURE SNOWS");
    } else if (ServerName().ends_with("postgres")) {
      Run("DO $do$ BEGIN EXECUTE " + start + "chr(9731)" + end + "; END $do$");
    } else {
      Run("EXECUTE BLOCK AS BEGIN EXECUTE STATEMENT " + start + "_UTF8 x'E29883'" + end + "; END");
    }
  }
};

TEST_F(Names, ATableThatCannotBeSpelledIsLeftOut) {
  MakeTable("T", "ID INTEGER");
  if (OnSqlite()) {
    MakeTable("SNOW", "X INTEGER");
    Run("PRAGMA writable_schema = ON");
    Run("UPDATE sqlite_master SET name = 'SNOW' || char(9731), tbl_name = 'SNOW' || char(9731), "
        "sql = 'CREATE TABLE \"SNOW' || char(9731) || '\" (X INTEGER)' WHERE name = 'SNOW'");
  } else {
    RunWithSnowman("CREATE TABLE ", " (X INTEGER)");
  }
  TStringList names;
  GetAllTableNames(*connection_, names);
  EXPECT_GE(names.IndexOf("T"), 0);
  for (const std::string& name : names) EXPECT_FALSE(name.starts_with("SNOW")) << name;
  EXPECT_TRUE(ExistTable(*connection_, "T"));
  EXPECT_FALSE(ExistTable(*connection_, "SNOW?"));
  if (!OnSqlite()) RunWithSnowman("DROP TABLE ", "");
}

}  // namespace
}  // namespace kvshare
