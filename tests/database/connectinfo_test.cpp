#include "kvshare/database/connectinfo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/dbxconf.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/os/files.h"
#include "kvshare/os/folders.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/format.h"
#include "kvshare/settings/globals.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

constexpr const char* kFields[] = {"Alias_Name",     "Alias_Alias",    "Alias_LogFile",
                                   "Alias_PosB_Dir", "Alias_PosH_Dir", "Alias_Pack_Dir",
                                   "Alias_Rpt_Dir",  "Alias_Doc_Dir"};

class ConnectInfo : public testing::Test {
 protected:
  ConnectInfo() {
    Initialize();
    ExePath = "C:\\App\\";
    home.Make("App/ledger.exe");
    home.Make("Program Files/QXN/Share/SqlIntf.ini", "");
    os::ForceDirectories(GetKovraShareDataPath());
    WriteFileBytes(GetDbxConnectFileName(),
                   "[dbConnect]\r\nACC1=SQLITE\r\nACC2=POSTGRESQL\r\n"
                   "[ACC1]\r\nUser_Name=somsri\r\nPassword=pw\r\nKeyGenEnable=TRUE\r\n"
                   "KeyGenServer=10.0.0.1\r\n");
  }
  ~ConnectInfo() override {
    ClearDBMSConnectInfo();
    Finalize();
    ExePath.clear();
  }

  using Company = std::map<std::string, std::string>;
  static void WriteList(const std::vector<Company>& companies) {
    TClientDataSet list;
    for (const char* field : kFields) list.FieldDefs().Add(field, TFieldType::ftString, 200);
    list.CreateDataSet();
    for (const Company& company : companies) {
      list.Append();
      for (const auto& [field, text] : company) list.FieldByName(field).SetAsString(text);
      list.Post();
    }
    os::ForceDirectories(ExtractFilePath(GetCompanyListFileName()));
    list.SaveToFile(GetCompanyListFileName());
  }
  std::vector<std::string> Boxes() const {
    std::vector<std::string> texts;
    for (const auto& message : boxes.messages) texts.push_back(message.text);
    return texts;
  }

  TemporaryHome home;
  THeadlessInterface boxes;
  TUseInterface use{boxes};
};

TEST_F(ConnectInfo, AListedCompanyFillsTheSettings) {
  WriteList({{{"Alias_Name", "Other"}, {"Alias_Alias", "ACC2"}, {"Alias_LogFile", "C:\\O\\o.log"}},
             {{"Alias_Name", "Shop"},
              {"Alias_Alias", "ACC1"},
              {"Alias_LogFile", "C:\\Data\\Logs\\shop.log"},
              {"Alias_PosB_Dir", "C:\\PosB\\"},
              {"Alias_PosH_Dir", "C:\\PosH\\"},
              {"Alias_Pack_Dir", "C:\\Pack\\"},
              {"Alias_Rpt_Dir", "C:\\Rpt\\"},
              {"Alias_Doc_Dir", "C:\\Doc"}},
             {{"Alias_Name", "Shop"}, {"Alias_Alias", "ACC2"}, {"Alias_LogFile", "C:\\X\\x.log"}}});
  ReadDbmsConnectInfo("Shop");
  const struct {
    const std::string& global;
    std::string want;
  } cases[] = {
      {KovraDataBaseName, "Shop"},
      {KovraAliasName, "ACC1"},
      {KovraAliasTradeName, "SQLITE"},
      {KovraLogDatabaseName, "C:\\Data\\Logs\\"},
      {KovraLogTableName, "shop.log"},
      {KovraPosDataDir, "C:\\PosB\\"},
      {KovraPackPosDDir, "C:\\PosH\\"},
      {KovraPackDir, "C:\\Pack\\"},
      {KovraReportDir, "C:\\Rpt\\"},
      {KovraDocumentDir, "C:\\Doc\\ACC1\\"},
      {KovraLoginName, "somsri"},
      {KovraLoginPassword, "pw"},
      {KovraGenkeyServer, GetGenKeyServer("ACC1")},
      {KovraComputerName, TKovraWin32::MyComputerName()},
      {KovraWindowsUserName, TKovraWin32::MyLoginName()},
      {KovraDataBaseIni, "C:\\App\\Structure\\DataBase.ini"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.global, c.want);
  EXPECT_TRUE(KovraGenkeyEnable);
  EXPECT_TRUE(os::DirectoryExists("C:\\Data\\Logs"));
  EXPECT_TRUE(os::DirectoryExists("C:\\Doc\\ACC1"));
  EXPECT_THAT(Boxes(), testing::IsEmpty());

  const std::string workstation = KovraCurrentGuid;
  EXPECT_EQ(workstation.size(), 38U);
  KovraUserName = "somchai";
  KovraUserKey = 7;
  ClearDBMSConnectInfo();
  for (const auto& c : cases) {
    if (&c.global != &KovraGenkeyServer) {
      EXPECT_EQ(c.global, "");
    }
  }
  EXPECT_EQ(KovraUserKey, 0);
  EXPECT_EQ(KovraUserName, "somchai");
  EXPECT_EQ(KovraCurrentGuid, workstation);
  EXPECT_TRUE(KovraGenkeyEnable);
  KovraUserName.clear();

  ReadDbmsConnectInfo("Other");
  EXPECT_EQ(KovraCurrentGuid, workstation) << "one for good";
  EXPECT_EQ(KovraDocumentDir, "C:\\App\\\\Document\\ACC2\\");
  EXPECT_TRUE(home.Has("App/Document/ACC2"));
}

TEST_F(ConnectInfo, ACompanyThatIsNotThereIsTold) {
  WriteList({{{"Alias_Name", "Shop"}, {"Alias_Alias", "GONE"}, {"Alias_LogFile", "C:\\L\\l.log"}}});
  KovraLogTableName = "earlier.log";
  KovraDataBaseName = "earlier";
  const auto text = [](const std::string& name) {
    return Format(LoadStr(rstrEDbmsNotFound), {name}) + "\r\n" +
           Format(LoadStr(rstrEDbmsFileName), {GetCompanyListFileName()}) + "\r\n" +
           LoadStr(rstrEDbmsEditHint1) + "\r\n" + LoadStr(rstrEDbmsEditHint2) + "\r\n" +
           LoadStr(rstrEDbmsEditHint3);
  };
  ReadDbmsConnectInfo("shop");
  EXPECT_EQ(KovraDataBaseName, "earlier") << "letter case counts";
  ReadDbmsConnectInfo("Shop");
  EXPECT_EQ(KovraDataBaseName, "Shop");
  EXPECT_EQ(KovraAliasName, "GONE");
  EXPECT_EQ(KovraLogTableName, "earlier.log");
  EXPECT_THAT(Boxes(), testing::ElementsAre(text("shop"), text("Shop")));
}

TEST_F(ConnectInfo, WithoutAListEverythingLiesBesideTheProgram) {
  ReadDbmsConnectInfo("ACC1");
  const std::string folder = os::ProgramFolder();
  EXPECT_EQ(KovraAliasName, "ACC1");
  EXPECT_EQ(KovraAliasTradeName, "SQLITE");
  EXPECT_EQ(KovraLogDatabaseName, folder);
  EXPECT_EQ(KovraLogTableName, "database_test.Log");
  EXPECT_EQ(KovraDocumentDir, folder);
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

// A program opens its company again by what the settings tell of it.
TEST_F(ConnectInfo, TheNameMayBeOneOfTheSettings) {
  const std::string name = "A shop with a name that is long";
  WriteList({{{"Alias_Name", name},
              {"Alias_Alias", "ACC1"},
              {"Alias_LogFile", "C:\\L\\l.log"},
              {"Alias_Rpt_Dir", name}}});
  for (std::string* given : {&KovraDataBaseName, &KovraAliasName, &KovraReportDir,
                             &KovraLogDatabaseName, &KovraCurrentGuid}) {
    *given = name;
    ReadDbmsConnectInfo(*given);
    EXPECT_EQ(KovraDataBaseName + "," + KovraAliasName, name + ",ACC1");
  }
  EXPECT_THAT(Boxes(), testing::IsEmpty());

  os::DeleteFile(GetCompanyListFileName());
  for (std::string* given : {&KovraLogTableName, &KovraDocumentDir, &KovraAliasName}) {
    *given = name;
    ReadDbmsConnectInfo(*given);
    EXPECT_EQ(KovraDataBaseName + "," + KovraAliasName, name + "," + name);
  }
}

TEST_F(ConnectInfo, AListThatCannotBeReadReachesTheProgram) {
  os::ForceDirectories(ExtractFilePath(GetCompanyListFileName()));
  WriteFileBytes(GetCompanyListFileName(), "no packet");
  EXPECT_THAT(MessageOf<EDBClient>([] { ReadDbmsConnectInfo("Shop"); }),
              testing::StartsWith("Mismatch in datapacket."));
  WriteFileBytes(GetCompanyListFileName(),
                 "<?xml version=\"1.0\"?><DATAPACKET Version=\"2.0\"><METADATA><FIELDS><FIELD "
                 "attrname=\"X\" fieldtype=\"i4\"/></FIELDS><PARAMS/></METADATA><ROWDATA><ROW "
                 "X=\"1\"/></ROWDATA></DATAPACKET>");
  EXPECT_EQ(MessageOf<EDatabaseError>([] { ReadDbmsConnectInfo("Shop"); }),
            "Field 'Alias_Name' not found");
}

}  // namespace
}  // namespace kvshare
