#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "kvshare/os/registry/registry.h"
#include "kvshare/platform/verinfo.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

using testing::HasSubstr;

class Doctor : public testing::Test {
 protected:
  TemporaryHome home;
  WithVariable computer{"KVSHARE_COMPUTER", "COUNTER1"};
  WithVariable user{"KVSHARE_USER", "somchai"};
  WithVariable era{"KVSHARE_ERA", "543"};
};

TEST_F(Doctor, ShowsWhatIsInForceAndChangesNothing) {
  std::filesystem::remove(home.Drive());
  const Outcome outcome = Kvshare({"doctor"});
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out, HasSubstr("\ncomputer          COUNTER1\n"));
  EXPECT_THAT(outcome.out, HasSubstr("\nera               Buddhist, 543 (KVSHARE_ERA)\n"));
  EXPECT_THAT(outcome.out, HasSubstr("\nquantities        4 decimals, ###,###,###,##0.0000\n"));
  EXPECT_THAT(outcome.out, HasSubstr("\nuser data         C:\\Users\\somchai\\AppData\\Roaming\n"));
  EXPECT_THAT(outcome.out, HasSubstr("registry.db (not created yet)\n"));
  EXPECT_TRUE(std::filesystem::is_empty(home.Path()));
}

TEST_F(Doctor, NamesTheFilesAndLibrariesThatAreMissing) {
  const std::filesystem::path share = home.Drive() / "Program Files/QXN/Share";
  const std::string missing = "SqlIntf.ini       " + (share / "SqlIntf.ini").string() +
                              "\n  MEND: there is no such file: copy the sample SqlIntf.ini there";
  Outcome outcome = Kvshare({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr(missing));
  EXPECT_THAT(outcome.out, HasSubstr("DConnect.ini      " + home.Drive().string()));
  EXPECT_THAT(outcome.out, testing::ContainsRegex("driver sqlite     /.+/libkvshare-sqlite.so\n"));
  home.Make("Program Files/QXN/Share/SqlIntf.ini");
  const WithVariable printer("KVSHARE_PRINTER", "No Such Printer");
  outcome = Kvshare({"doctor"});
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr("copy the sample SqlIntf.ini")));
  EXPECT_THAT(outcome.out, HasSubstr("printer           No Such Printer\n  MEND: "));
  const WithVariable relative("KVSHARE_HOME", "here");
  EXPECT_THAT(Kvshare({"doctor"}).out,
              HasSubstr("home              here\n  MEND: set KVSHARE_HOME"));
}

TEST_F(Doctor, SaysWhatToMend) {
  const auto write = [this](const char* name, const char* text) {
    std::ofstream(home.Path() / name) << text;
  };
  write("drives.ini", "[D:]\nPath=/no/such/folder\n[E:]\nPath=relative\n");
  const TKovraRegistry store;
  store.WriteRegistryString("", "Default", "UPrcDigit", "two");
  store.WriteShareRegistryString("", "", "ReportPath", R"(Q:\Reports)");
  const WithVariable longName("KVSHARE_COMPUTER", "A-NAME-OF-MORE-THAN-15");
  const WithVariable wrongEra("KVSHARE_ERA", "2500");
  const WithVariable noLanguage("KVSHARE_LANGUAGE", "xx");

  const Outcome outcome = Kvshare({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  for (const char* line : {
           "drive D:          /no/such/folder (fixed)\n  MEND: create or mount /no/such/folder",
           "drives.ini",
           "computer          <<Undefined>>\n  MEND: set KVSHARE_COMPUTER",
           "MEND: KVSHARE_ERA is '2500'",
           "MEND: KVSHARE_LANGUAGE=xx",
           "MEND: setting Default\\UPrcDigit: 'two' is not a valid integer value",
           "ReportPath        Q:\\Reports\n  MEND: ",
       }) {
    EXPECT_THAT(outcome.out, HasSubstr(line));
  }
  EXPECT_THAT(Kvshare({"doctor", "--json"}).out, HasSubstr(R"({"topic":"era","value":"Christian)"));
}

TEST_F(Doctor, FindsADamagedStore) {
  std::ofstream(home.Path() / "registry.db") << std::string(8192, 'x');
  const Outcome outcome = Kvshare({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("registry.db\n  MEND: "));
}

TEST_F(Doctor, StopsWithoutAHome) {
  const WithVariable none[] = {{"KVSHARE_HOME", ""}, {"XDG_DATA_HOME", ""}, {"HOME", ""}};
  const Outcome outcome = Kvshare({"doctor"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.out, HasSubstr("MEND: set KVSHARE_HOME"));
}

}  // namespace
}  // namespace kvshare::app
