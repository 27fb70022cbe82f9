#include "kvshare/database/dbxconf.h"

#include <gtest/gtest.h>

#include "kvshare/os/files.h"
#include "kvshare/rtl/filebytes.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class ConnectionFile : public testing::Test {
 protected:
  static void Write(std::string_view bytes) {
    os::ForceDirectories(GetKovraShareDataPath());
    WriteFileBytes(GetDbxConnectFileName(), bytes);
  }
  static void WriteAlias(const std::string& lines) { Write("[A]\r\n" + lines); }

  TemporaryHome home;
};

TEST_F(ConnectionFile, FoldersAndFileOfTheSuite) {
  EXPECT_EQ(GetKovraShareDataPath(), R"(C:\ProgramData\QXN\Share\)");
  EXPECT_EQ(GetKovraProgramPath(), R"(C:\Program Files\QXN\Share\)");
  EXPECT_EQ(GetDbxConnectFileName(), R"(C:\ProgramData\QXN\Share\DConnect.ini)");
}

void ExpectDefaults(std::string_view alias) {
  TStringList params;
  params.Add("earlier");
  GetdbxParams(alias, params);
  EXPECT_EQ(params.Count(), 0);
  EXPECT_FALSE(Isdbx(alias));
  EXPECT_FALSE(IsdbxAccess(alias));
  EXPECT_FALSE(NeedGenKey(alias));
  struct Case {
    std::string (*read)(std::string_view);
    std::string_view want;
  };
  constexpr Case kCases[] = {
      {GetdbxTradeName, "MYSQL"},
      {GetdbxDriverName, ""},
      {GetdbxDriverFunc, "getSQLDriverMYSQL"},
      {GetdbxLibraryName, "dbexpmys.dll"},
      {GetdbxVendorLib, "LIBMYSQL.dll"},
      {GetdbxUserName, ""},
      {GetdbxPassword, ""},
      {GetdbxFileName, ""},
      {GetGenKeyServer, "127.0.0.1"},
  };
  for (const Case& c : kCases) EXPECT_EQ(c.read(alias), c.want);
  EXPECT_EQ(GetGenKeyPort(alias), 10023);
}

TEST_F(ConnectionFile, MissingFileSectionAndAliasGiveDefaults) {
  TStringList names;
  names.Add("earlier");
  GetConnectNames(names);
  EXPECT_EQ(names.Count(), 0);
  ExpectDefaults("A");
  ExpectDefaults("");
  Write("[dbConnect]\r\nB=MSSQL\r\n[B]\r\nDriverName=ADO\r\nDatabase=x\r\n");
  ExpectDefaults("A");
}

TEST_F(ConnectionFile, ListsConnections) {
  Write(
      "[DBCONNECT]\n zebra = MSSQL\n;comment=x\nกข=FIREBIRD\nEmpty=\nGone=UNDEFINE\n"
      "Other=undefine\n[zebra]\nTradeName=\n[Own]\nTradeName=postgresql\n");
  TStringList names;
  GetConnectNames(names);
  EXPECT_EQ(names.CommaText(), "zebra,กข,Empty,Gone,Other");
  struct Case {
    std::string_view alias;
    bool is;
    std::string_view tradeName;
    const char* why;
  };
  constexpr Case kCases[] = {
      {"ZEBRA", true, "MSSQL", "letter case; an empty TradeName counts as none"},
      {"Empty", true, "", "listed without a trade name"},
      {"Gone", false, "UNDEFINE", "the marker of a missing one"},
      {"Other", true, "UNDEFINE", "only that spelling is the marker"},
      {"Own", false, "POSTGRESQL", "a section alone is no connection"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Isdbx(c.alias), c.is);
    EXPECT_EQ(GetdbxTradeName(c.alias), c.tradeName);
  }
}

TEST_F(ConnectionFile, AnswersFromTheAliassSection) {
  WriteAlias(
      "DriverName=Firebird\nGetDriverFunc=f\nLibraryName=l\nVendorLib=\"v\"\n"
      "Database=srv:/d/acc.fdb\nUser_Name=sysdba\nPASSWORD= 'p w' \nKeyGenEnable=true\n"
      "KeyGenServer=keys\nKeyGenPort=0x20\nIsolation=2\nDriverName=second\n");
  EXPECT_EQ(GetdbxDriverName("a"), "Firebird");
  EXPECT_EQ(GetdbxDriverFunc("A"), "f");
  EXPECT_EQ(GetdbxLibraryName("A"), "l");
  EXPECT_EQ(GetdbxVendorLib("A"), "v");
  EXPECT_EQ(GetdbxUserName("A"), "sysdba");
  EXPECT_EQ(GetdbxPassword("A"), "p w");
  EXPECT_EQ(GetdbxFileName("A"), "SRV:/D/ACC.FDB");
  EXPECT_TRUE(NeedGenKey("A"));
  EXPECT_EQ(GetGenKeyServer("A"), "keys");
  EXPECT_EQ(GetGenKeyPort("A"), 32);
  TStringList params;
  GetdbxParams("A", params);
  EXPECT_EQ(params.Count(), 12) << "those it does not know and repeated ones too";
  EXPECT_EQ(params.Values("isolation"), "2");
  EXPECT_EQ(params[11], "DriverName=Firebird");

  WriteAlias("KeyGenEnable=1\nKeyGenServer=\nKeyGenPort=many\nDatabase=" + std::string(3000, 'x') +
             "\nDriverName=INTERBASE\n");
  EXPECT_FALSE(NeedGenKey("A")) << "a change counts at once";
  EXPECT_EQ(GetGenKeyServer("A"), "127.0.0.1");
  EXPECT_EQ(GetGenKeyPort("A"), 10023);
  EXPECT_EQ(GetdbxFileName("A"), std::string(2047, 'X'));
}

TEST_F(ConnectionFile, AnEncryptedLoginIsNone) {
  const std::string encrypted = "EncryptUser=1\nDecryptUser=1\nEncryptPwd=1\nDecryptPwd=1\n";
  WriteAlias(encrypted);
  EXPECT_EQ(GetdbxUserName("A"), "");
  WriteAlias(encrypted + "Password=p\n");
  EXPECT_EQ(GetdbxPassword("A"), "p");
  EXPECT_EQ(GetdbxUserName("A"), "");
}

TEST_F(ConnectionFile, DatabaseFileOfAConnectionString) {
  const std::string path80 = "c:\\" + std::string(77, 'd');
  struct Case {
    std::string database, want;
    const char* why;
  };
  const Case cases[] = {
      {"Provider=X;Data Source=c:\\data\\acc.mdb;Persist Security Info=False", "C:\\DATA\\ACC.MDB",
       "the usual one"},
      {"Driver={Access};DBQ=c:\\a=b.mdb;x.mdb", "C:\\A=B.MDB", "first = and first .MDB"},
      {"DBQ=c:\\q.mdb;Data Source=c:\\s.mdb", "C:\\S.MDB", "DATA SOURCE before DBQ"},
      {"c:\\data\\acc.mdb", "C:\\DATA\\ACC.MDB", "no connection string: the whole"},
      {"Data Source=" + path80 + ".mdb;", "C:\\" + std::string(77, 'D') + ".MDB", "96 bytes"},
      {"Data Source=" + path80 + "123456.mdb", "C:\\" + std::string(77, 'D') + "123456.M",
       "cut 100 bytes from the marker"},
      {"Data Source=c:\\acc.accdb;User=x", "C:\\ACC.ACCDB;USER=X", "only .MDB ends a path"},
      {"Data Source c:\\a.mdb", "DATA SOURCE C:\\A.MDB", "without ="},
      {"", "", "nothing"},
  };
  for (const char* driver : {"ado", "OpenOdbcAccess", "DBXMSJETACCESS"}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.why);
      WriteAlias("DriverName=" + std::string(driver) + "\nDatabase=" + c.database + "\n");
      EXPECT_TRUE(IsdbxAccess("A"));
      EXPECT_EQ(GetdbxFileName("A"), c.want);
      EXPECT_EQ(GetdbxFileName(""), "");
    }
  }
  WriteAlias("DriverName=MYSQL\nDatabase=ledger\n");
  EXPECT_FALSE(IsdbxAccess("A"));
  EXPECT_EQ(GetdbxFileName("A"), "") << "a server's database is no file";
}

}  // namespace
}  // namespace kvshare
