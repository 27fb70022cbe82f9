// The sample files, and on SQLite what their fragments mean.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <random>

#include "kvshare/database/dbxconf.h"
#include "kvshare/os/files.h"
#include "kvshare/os/paths.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/files.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/sqldialect.h"
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

class OnSqlite : public Samples {
 protected:
  OnSqlite() {
    sqlite3* database = nullptr;
    sqlite3_open(":memory:", &database);
    database_.reset(database);
    ReadDialectFile(kDialects, "SQLITE");
  }
  // The first column of the first row; "(none)" without a row.
  std::string Ask(const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      return sqlite3_errmsg(database_.get());
    }
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> owner(statement, sqlite3_finalize);
    if (sqlite3_step(statement) != SQLITE_ROW) return "(none)";
    const unsigned char* text = sqlite3_column_text(statement, 0);
    return text == nullptr ? "NULL" : reinterpret_cast<const char*>(text);
  }

 private:
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> database_{nullptr, sqlite3_close};
};

TEST_F(OnSqlite, TextComparisons) {
  Ask("CREATE TABLE T (N " + SQLText + ")");
  struct Case {
    const char* stored;
    const char* value;
    bool matchCase;
    const char* holds;  // begins, contains, ends
  };
  constexpr Case kCases[] = {
      {"Abcd", "ab", false, "110"},  {"Abcd", "ab", true, "000"},  {"Abcd", "Ab", true, "110"},
      {"Abcd", "CD", false, "011"},  {"Abcd", "bc", true, "010"},  {"Abcd", "abcd", false, "111"},
      {"ab", "xxab", false, "000"},  {"ab", "abab", false, "000"}, {"ab", "  ", false, "111"},
      {"a%b", "%", false, "010"},    {"axb", "a_b", false, "000"}, {"สมชาย", "สม", false, "110"},
      {"สมชาย", "ชาย", true, "011"},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.stored) + " / " + c.value);
    Ask("DELETE FROM T");
    Ask(std::string("INSERT INTO T VALUES ('") + c.stored + "')");
    for (int kind = 0; kind < 3; ++kind) {
      const std::string want(1, c.holds[kind]);
      EXPECT_EQ(Ask("SELECT " + SQLCompareCmd("N", c.value, c.matchCase, kind) + " FROM T"), want);
      EXPECT_EQ(Ask("SELECT NOT " + SQLNotCmd("N", c.value, c.matchCase, kind) + " FROM T"), want);
    }
  }
  EXPECT_EQ(Ask("SELECT " + Format(SQLConcat3Format, {"'a'", "'b'", "'c'"})), "abc");
}

TEST_F(OnSqlite, DatesCompareAsTheyAreStored) {
  Ask("CREATE TABLE T (D " + SQLDate + ", M " + SQLDateTime + ")");
  const TDateTime moment = EncodeDate(2004, 3, 5) + EncodeTime(9, 7, 30, 0).Days();
  Ask("INSERT INTO T VALUES (" + DateTimeToSQLDate(moment) + ", " + DateTimeToSQLDateTime(moment) +
      ")");
  EXPECT_EQ(Ask("SELECT D || ' ' || M FROM T"), "2004-03-05 2004-03-05 09:07:30");
  EXPECT_EQ(Ask("SELECT D = " + DateTimeToSQLDate(moment) + " FROM T"), "1");
  EXPECT_EQ(Ask("SELECT M < " + DateTimeToSQLDateTime(moment + 0.001) + " FROM T"), "1");
  EXPECT_EQ(Ask("SELECT date(CURRENTDATETIME) IS NOT NULL FROM (" + SQLServerDateTime + ")"), "1");
}

// Every amount of fifteen digits keeps its digits, its order and its equality.
TEST_F(OnSqlite, AmountsStayExact) {
  const auto text = [](std::int64_t raw) { return Format("%.4f", {Currency::FromRaw(raw)}); };
  Ask("CREATE TABLE T (A " + SQLBaht + ")");
  std::mt19937_64 random(1);
  constexpr std::int64_t kMost = 999'999'999'999'999;
  std::vector<std::int64_t> amounts = {0, 1, -1, 99, 100, 12345, kMost, kMost - 1, -kMost};
  for (std::int64_t most = 10; most <= kMost; most *= 10) {
    for (int i = 0; i < 40; ++i) {
      amounts.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(most)));
    }
  }
  for (const std::int64_t raw : amounts) {
    const std::string amount = text(raw);
    Ask("DELETE FROM T");
    Ask("INSERT INTO T VALUES (" + amount + ")");
    const std::string query = "SELECT printf('%.4f', A) || (A = " + amount + ") || (A < " +
                              text(raw + 1) + ") || (A > " + text(raw - 1) + ") || " +
                              SQLNumEqual("A", amount) + " || " + SQLNumEqual("A", text(raw + 1)) +
                              " || " + SQLNumNotEqual("A", text(raw - 1)) + " || " +
                              SQLNumNot2DecPt("A") + " FROM T";
    ASSERT_EQ(Ask(query), amount + "111101" + (raw % 100 == 0 ? "0" : "1"));
  }
}

}  // namespace
}  // namespace kvshare
