// The sample files are complete; tests/company proves what their fragments mean.
#include <gtest/gtest.h>

#include "kvshare/database/dbxconf.h"
#include "kvshare/database/sqldialect.h"
#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/settings/globals.h"
#include "tests/support.h"

namespace kvshare {
namespace {

constexpr std::string_view kDialects = KVSHARE_SAMPLES "/SqlIntf.ini";
constexpr std::string_view kConnections = KVSHARE_SAMPLES "/DConnect.ini";

class Samples : public testing::Test {
 protected:
  ~Samples() override {
    for (std::string* text : TextGlobals()) text->clear();
    SQLMonthNameFormat = 0;
  }
  TemporaryHome home;
};

TEST_F(Samples, EverySectionIsComplete) {
  const TIniContents file(kDialects);
  TStringList sections;
  file.ReadSections(sections);
  EXPECT_EQ(sections.Count(), 8);
  TStringList keys;
  file.ReadSection("DATABASE.SQLITE", keys);
  for (const std::string& section : sections) {
    SCOPED_TRACE(section);
    TStringList own;
    file.ReadSection(section, own);
    EXPECT_EQ(own.CommaText(), keys.CommaText()) << "the same keys in the same order";
    ReadDialectFile(kDialects, std::string_view(section).substr(kDialectSection.size()));
    EXPECT_EQ(SQLDateDelimiter.size(), 1u);
    for (const bool matchCase : {false, true}) {
      for (const int kind : {0, 1, 2}) {
        for (const auto build : {SQLCompareCmd, SQLNotCmd}) {
          const std::string text = build("FIELD", "vAlue", matchCase, kind);
          EXPECT_NE(text.find(matchCase ? "vAlue" : "VALUE"), std::string::npos) << text;
          EXPECT_NE(text.find("FIELD"), std::string::npos) << text;
          EXPECT_EQ(text.find("WILDCARD"), std::string::npos) << text;
        }
      }
    }
    EXPECT_NE(SQLNumEqual("A", "B"), SQLNumNotEqual("A", "B"));
    EXPECT_NE(SQLNumNot2DecPt("A"), "");
    std::string joined;
    AppendFormatAll(joined, SQLConcat2Format, {"A", "B"});
    AppendFormatAll(joined, SQLConcat3Format, {"A", "B", "C"});
    EXPECT_NE(SQLServerDateTime.find("AS CURRENTDATETIME"), std::string::npos);
  }
}

TEST_F(Samples, EveryConnectionHasItsDialect) {
  os::ForceDirectories(GetKovraShareDataPath());
  WriteFileBytes(GetDbxConnectFileName(), ReadFileBytes(kConnections));
  const TIniContents dialects(kDialects);
  TStringList names;
  GetConnectNames(names);
  EXPECT_EQ(names.Count(), 8);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    EXPECT_TRUE(dialects.SectionExists(std::string(kDialectSection) + GetdbxTradeName(name)));
    EXPECT_TRUE(GetdbxLibraryName(name).starts_with("kvshare-"));
    EXPECT_TRUE(GetdbxDriverFunc(name).starts_with("getSQLDriver"));
    TStringList params;
    GetdbxParams(name, params);
    EXPECT_NE(params.Values("Database"), "");
  }
  EXPECT_EQ(GetdbxFileName("SampleAccess"), R"(C:\DATA\LEDGER.MDB)");
}

}  // namespace
}  // namespace kvshare
