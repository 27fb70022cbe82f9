// Tables that other programs of the server have made.
#include "kvshare/database/sqlfunc.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using Names = ServerCompany;

// How each server is told the name of a table which no text of ours can hold.
std::string WithSnowman(const std::string& before, const std::string& behind) {
  const std::string start = "'" + before + "\"SNOW' || ";
  const std::string end = " || '\"" + behind + "'";
  if (ServerName().ends_with("mariadb")) {
    return "EXECUTE IMMEDIATE CONCAT('" + before + "`SNOW', CHAR(0xE29883 USING utf8mb4), '`" +
           behind + "')";
  }
  if (ServerName().ends_with("postgres")) {
    return "DO $do$ BEGIN EXECUTE " + start + "chr(9731)" + end + "; END $do$";
  }
  return "EXECUTE BLOCK AS BEGIN EXECUTE STATEMENT " + start + "UNICODE_CHAR(9731)" + end + "; END";
}

TEST_F(Names, ATableThatCannotBeSpelledIsLeftOut) {
  MakeTable("T", "ID INTEGER");
  if (OnSqlite()) {
    MakeTable("SNOW", "X INTEGER");
    Run("PRAGMA writable_schema = ON");
    Run("UPDATE sqlite_master SET name = 'SNOW' || char(9731), tbl_name = 'SNOW' || char(9731), "
        "sql = 'CREATE TABLE \"SNOW' || char(9731) || '\" (X INTEGER)' WHERE name = 'SNOW'");
  } else {
    Run(WithSnowman("CREATE TABLE ", " (X INTEGER)"));
  }
  TStringList names;
  GetAllTableNames(*connection_, names);
  EXPECT_GE(names.IndexOf("T"), 0);
  for (const std::string& name : names) EXPECT_FALSE(name.starts_with("SNOW")) << name;
  EXPECT_TRUE(ExistTable(*connection_, "T"));
  EXPECT_FALSE(ExistTable(*connection_, "SNOW?"));
  if (!OnSqlite()) Run(WithSnowman("DROP TABLE ", ""));
}

}  // namespace
}  // namespace kvshare
