// The suite of all drivers on the server that this program runs beside.
#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqlfunc.h"
#include "tests/company/company.h"
#include "tests/data/amounts_suite.h"
#include "tests/data/updates_suite.h"

namespace kvshare {
namespace {

// A connection file for the suite, which has no fixture of ours.
class Connections : public ServerCompany {
 public:
  void TestBody() override {}
  static void Configure(TSQLConnection& connection) {
    static const auto company = std::make_unique<Connections>();
    connection.SetDriverName(GetdbxTradeName(kAlias));
    connection.LibraryName = GetdbxLibraryName(kAlias);
    connection.GetDriverFunc = GetdbxDriverFunc(kAlias);
    GetdbxParams(kAlias, connection.Params);
  }
};

DriverCase OnServer() {
  DriverCase test;
  test.name = "Server";
  test.configure = Connections::Configure;
  const std::string server = ServerName();
  test.streams = !server.starts_with("odbc-");
  if (OnMariaDB()) {
    test.memo = "LONGTEXT";
    test.blob = "LONGBLOB";
    test.real = "DOUBLE";
    test.quote = "`";
    test.time = "TIME(3)";
    test.moment = "DATETIME(3)";
    test.foreignLetter = "CHAR(0x4E2D USING utf16)";
    test.ddlRollsBack = false;
  } else if (server.ends_with("postgres")) {
    test.blob = "BYTEA";
    test.foreignLetter = "chr(20013)";
  } else if (server == "firebird") {
    test.money = "NUMERIC(18,4)";
    test.round = "CAST(";  // its ROUND takes decimals away from what it is multiplied with
    test.toFour = " AS NUMERIC(18,4))";
    test.memo = "BLOB SUB_TYPE TEXT";
    test.foreignLetter =
        "(SELECT CAST(x'E4B8AD' AS VARCHAR(1) CHARACTER SET UTF8) FROM RDB$DATABASE)";
  } else {  // SQLite through ODBC, which brings no functions and collations of ours
    test.money = "DECIMAL_REAL(19,4)";
    test.foreignLetter = "char(20013)";
    test.wholeCurrency = false;
    test.tellsDecimals = false;
    test.exactSums = false;
    test.comparesDays = false;
  }
  return test;
}

INSTANTIATE_TEST_SUITE_P(Server, DriverSuite, testing::Values(OnServer()),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Server, AmountsSuite, testing::Values(OnServer()),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Server, UpdatesSuite, testing::Values(OnServer()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kvshare
