// The list of companies.
#include <gmock/gmock.h>

#include "kvshare/data/client/clientdataset.h"
#include "tests/apps/shop.h"

namespace kvshare::app {
namespace {

using ::testing::HasSubstr;

class CompanyCommands : public Shop {
 protected:
  static void ExpectDone(std::vector<std::string> arguments) {
    const Outcome got = Run(std::move(arguments));
    EXPECT_EQ(got.err, "");
    EXPECT_EQ(got.status, 0);
  }
  static std::string List() { return Run({"company", "list"}).out; }
};

TEST_F(CompanyCommands, TheListIsKept) {
  EXPECT_EQ(List(), "");
  ExpectDone({"company", "add", "ร้านใหญ่", "--connection", "SHOP", "--reports", "C:\\Rpt"});
  ExpectDone({"company", "add", "Branch", "--connection", "FARAWAY", "--log", "C:\\L\\b.log"});
  const std::string first = "ร้านใหญ่\tSHOP\tC:\\ProgramData\\QXN\\Share\\Log\\SHOP.log\n";
  EXPECT_EQ(List(), first + "Branch\tFARAWAY\tC:\\L\\b.log\n");
  ExpectDone({"company", "edit", "Branch", "--rename", "Second", "--documents", "D:\\Doc\\"});
  EXPECT_THAT(Run({"company", "list", "--json"}).out,
              HasSubstr(R"({"name":"Second","connection":"FARAWAY","log":"C:\\L\\b.log",)"
                        R"("pos_data":"","pos_packing":"","packing":"","reports":"",)"
                        R"("documents":"D:\\Doc\\"})"));
  home_.Make("Program Files/QXN/Share/SqlIntf.ini", "");
  EXPECT_THAT(Run({"company", "open", "ร้านใหญ่"}).out,
              HasSubstr("documents\tC:\\ProgramData\\QXN\\Share\\Document\\SHOP\\\n"));
  EXPECT_THAT(Run({"company", "open", "ร้านใหญ่"}).out, HasSubstr("reports\tC:\\Rpt\\\n"));
  ExpectDone({"company", "remove", "Second"});
  EXPECT_EQ(List(), first);
}

TEST_F(CompanyCommands, OpenShowsNoSecretOfAConnectionString) {
  home_.Make("Program Files/QXN/Share/SqlIntf.ini", "");
  home_.Make("ProgramData/QXN/Share/DConnect.ini",
             "[dbConnect]\r\nOLD=MSACCESS\r\n[OLD]\r\nDriverName=ADO\r\n"
             "Database=Provider=x;Jet OLEDB:Database Password=s3cret;Mode=1\r\n");
  const std::string out = Run({"company", "open", "OLD"}).out;
  EXPECT_THAT(out, HasSubstr("database file\tPROVIDER=X;JET OLEDB:DATABASE PASSWORD=***;MODE=1\n"));
  EXPECT_THAT(out, ::testing::Not(HasSubstr("S3CRET")));
}

TEST_F(CompanyCommands, WhatIsWrongChangesNothing) {
  ExpectDone({"company", "add", "Main", "--connection", "SHOP"});
  const std::string list = List();
  const struct {
    std::vector<std::string> arguments;
    int status;
    const char* message;
  } cases[] = {
      {{"company", "add", "Main", "--connection", "SHOP"}, 1, "there is a company 'Main' already"},
      {{"company", "add", "B", "--connection", "NONE"}, 1, "no connection 'NONE' in "},
      {{"company", "add", "B"}, 2, "--connection"},
      {{"company", "add", " ", "--connection", "SHOP"}, 2, "blank"},
      {{"company", "add", std::string(61, 'x'), "--connection", "SHOP"}, 1, "has room for"},
      {{"company", "edit", "B", "--log", "x"}, 1, "no company 'B' in "},
      {{"company", "edit", "Main", "--connection", "NONE"}, 1, "no connection 'NONE'"},
      {{"company", "remove", "main"}, 1, "no company 'main' in "},
      {{"company", "open", "B"}, 1, "แฟ้ม : C:\\ProgramData"},
      {{"company"}, 2, "subcommand"},
  };
  for (const auto& c : cases) {
    const Outcome got = Run(c.arguments);
    EXPECT_EQ(got.status, c.status) << c.message;
    EXPECT_THAT(got.err, HasSubstr(c.message));
  }
  EXPECT_EQ(List(), list);
}

TEST_F(CompanyCommands, AnotherProgramsListKeepsWhatIsItsOwn) {
  home_.Make("Ledger/BConnect.TXT",
             R"(<?xml version="1.0" standalone="yes"?><DATAPACKET Version="2.0"><METADATA><FIELDS>
<FIELD attrname="Alias_Name" fieldtype="string" WIDTH="20"/>
<FIELD attrname="Alias_Alias" fieldtype="string" WIDTH="20"/>
<FIELD attrname="Alias_LogFile" fieldtype="string" WIDTH="80"/>
<FIELD attrname="Colour" fieldtype="i4" hint="x"/></FIELDS><PARAMS/></METADATA>
<ROWDATA><ROW Alias_Name="Old" Colour="7"/></ROWDATA></DATAPACKET>)");
  ExpectDone(
      {"company", "add", "New", "--connection", "SHOP", "--list", "C:\\Ledger\\BConnect.TXT"});
  EXPECT_EQ(List(), "") << "the own list";
  TClientDataSet set;
  set.LoadFromFile("C:\\Ledger\\BConnect.TXT");
  EXPECT_EQ(set.RecordCount(), 2);
  EXPECT_EQ(set.FieldByName("Colour").AsInteger(), 7);
  EXPECT_THAT(set.XMLData(), HasSubstr("hint=\"x\""));
}

}  // namespace
}  // namespace kvshare::app
