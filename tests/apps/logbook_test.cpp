#include "apps/kvshare/log/logbook.h"

#include <gtest/gtest.h>

#include <fstream>

#include "apps/kvshare/log/logfollower.h"
#include "tests/apps/tempfile.h"
#include "tests/support.h"

namespace kvshare::app {
namespace {

class LogBook : public testing::Test {
 protected:
  void Put(const std::string& name, std::string_view bytes,
           std::ios::openmode mode = std::ios::trunc) const {
    std::ofstream(folder.File(name), std::ios::binary | mode) << bytes;
  }
  void Append(std::string_view bytes) const { Put("x.log", bytes, std::ios::app); }

  TemporaryFolder folder;
  std::string log = folder.File("x.log");
};

constexpr std::string_view kMarch = "05/03/2004 09:07 login  TILL1 somchai in ok\r\n";
constexpr std::string_view kMarchPim = "06/03/2004 10:00 login  TILL2 pim in ok\r\n";
constexpr std::string_view kMay = "01/05/2004 08:00 login  TILL1 pim in ok\r\n";

TEST_F(LogBook, FilesInTheOrderInWhichTheyWereWritten) {
  for (const char* name : {"x.log", "20040400.LOG", "200403100.log", "20040399.log", "00000000.log",
                           "2004030.log", "20040300.txt", "y.log"}) {
    Put(name, "");
  }
  std::vector<std::string> names;
  for (const std::string& file : LogFiles(log)) names.push_back(file.substr(file.rfind('/') + 1));
  EXPECT_EQ(names, (std::vector<std::string>{"00000000.log", "20040399.log", "200403100.log",
                                             "20040400.LOG", "x.log"}));
}

TEST_F(LogBook, ShowsFilteredLines) {
  Put("20040300.log", std::string(kMarch) + std::string(kMarchPim) + "and a second line\r\n");
  Put("x.log", kMay);
  struct Case {
    std::vector<std::string> options;
    int lines;
    const char* why;
  };
  const Case cases[] = {
      {{}, 4, "all"},
      {{"--day", "2004-03-06"}, 2, "a line without a stamp goes with the one before it"},
      {{"--user", "PIM"}, 3, "in any letter case"},
      {{"--computer", "till1"}, 2, "of two months"},
      {{"--computer", "TILL1", "--user", "pim"}, 1, "side by side"},
      {{"--user", "pi"}, 0, "whole words"},
      {{"--day", "2004-03-07"}, 0, "none"},
  };
  for (const Case& c : cases) {
    std::vector<std::string> arguments = {"log", "show", "--file", log};
    arguments.insert(arguments.end(), c.options.begin(), c.options.end());
    const Outcome got = Kvshare(arguments);
    EXPECT_EQ(std::ranges::count(got.out, '\n'), c.lines) << c.why;
    EXPECT_EQ(got.status, 0);
  }
  EXPECT_EQ(Kvshare({"log", "show", "--json", "--file", log, "--day", "2004-05-01"}).out,
            "{\"time\":\"2004-05-01T08:00:00\",\"text\":\"01/05/2004 08:00 login  TILL1 pim in "
            "ok\"}\n");
}

TEST_F(LogBook, VerifyFindsBrokenLinesAndMissingMonths) {
  Put("20040300.log", kMarch);
  Put("x.log", std::string(kMay) + "32/05/2004 08:00 a b c d e f\r\n" +
                   "01/05/2004 08:00 a b c\r\n" + "01/05/2004 08:00 a b c d e f\n" +
                   "01/05/2004 08:00 a b \xFF d e f\r\n" + "01/05/2004 08:00       \r\n" +
                   "01/05/2004 08:00 torn");
  const Outcome got = Kvshare({"log", "verify", "--file", log});
  EXPECT_EQ(got.out, log + ":2: no date and time at the beginning\n" +  //
                         log + ":3: fewer than seven fields\n" +        //
                         log + ":4: the line has no end\n" +            //
                         log + ":5: byte FF is no letter\n" +           //
                         log + ":7: the line has no end\n" +            //
                         "2004-04: no line\n");
  EXPECT_EQ(got.status, 1);
  Put("20040400.log", "01/04/2004 08:00       \r\n");
  Put("x.log", kMay);
  EXPECT_EQ(Kvshare({"log", "verify", "--file", log}).status, 0);
  EXPECT_EQ(Kvshare({"log", "verify", "--file", folder.File("none/y.log")}).status, 1);
}

TEST_F(LogBook, NamesOfTheInterfaceAreRead) {
  const TemporaryHome home;
  std::filesystem::create_directories(home.Path() / "drive_c/Logs");
  std::ofstream(home.Path() / "drive_c/Logs/x.log", std::ios::binary) << kMay;
  EXPECT_EQ(Kvshare({"log", "follow", "--once", "--file", R"(C:\Logs\x.log)"}).out,
            std::string(kMay.substr(0, kMay.size() - 2)) + "\n");
  EXPECT_EQ(Kvshare({"log", "show", "--file", R"(?:\x.log)"}).status, 2);
}

TEST_F(LogBook, FollowSurvivesTheRename) {
  Append("1\r\n2\r\n3\r\n");
  LogFollower follower(log, 2);
  const auto taken = [&follower] {
    std::string lines;
    follower.Take(lines);
    return lines;
  };
  EXPECT_EQ(taken(), "2\r\n3\r\n");
  Append("4\r\n5");
  EXPECT_EQ(taken(), "4\r\n");
  std::filesystem::resize_file(log, 12);  // the append that failed is taken back
  Append("6\r\n");
  EXPECT_EQ(taken(), "6\r\n");
  Append("7\r\n");
  std::filesystem::rename(log, folder.File("20040300.log"));
  EXPECT_EQ(taken(), "7\r\n") << "written before the rename, and no new log yet";
  Append("8\r\n");
  Put("20040300.log", "late\r\n", std::ios::app);
  EXPECT_EQ(taken(), "late\r\n8\r\n");

  LogFollower early(folder.File("later.log"), 10);
  Put("later.log", "1\r\n");
  std::string lines;
  early.Take(lines);
  EXPECT_EQ(lines, "1\r\n") << "a log that comes later";
}

TEST(DialectCommand, PrintsTheFragmentsOfASection) {
  const TemporaryHome home;
  const TemporaryFolder folder;
  const std::string file = folder.File("SqlIntf.ini");
  std::ofstream(file, std::ios::binary)
      << "[DATABASE.TEST]\nNOTMATCHCASE=UPPER(%s)\nCMPBEGIN=%s LIKE '%s<WILDCARD>'\n"
         "DATE=DD-ESMONTH-YYYY\n[Other]\n[database.Second]\n";
  EXPECT_EQ(Kvshare({"dialect", "--file", file}).out, "TEST\nSecond\n");
  const Outcome got = Kvshare({"dialect", "--file", file, "test", "--field", "NAME", "--value",
                               " กab", "--date", "2004-03-05"});
  EXPECT_NE(got.out.find("begins\tUPPER(NAME) LIKE 'กAB%'\n"), std::string::npos) << got.out;
  EXPECT_NE(got.out.find("date\t'05-MAR-2004'\n"), std::string::npos);
  EXPECT_NE(got.out.find("amount type\tMONEY\n"), std::string::npos);
  EXPECT_EQ(got.err.substr(0, got.err.find('\n')),
            "contains: Format '' invalid or incompatible with argument");
  EXPECT_EQ(got.status, 1) << "patterns that are missing";
  EXPECT_NE(Kvshare({"dialect", "--file", file, "MYSQL"}).err.find("has no section DATABASE.MYSQL"),
            std::string::npos);
  EXPECT_EQ(Kvshare({"dialect"}).err,
            "kvshare: C:\\Program Files\\QXN\\Share\\SqlIntf.ini is missing\n");
  EXPECT_EQ(Kvshare({"dialect", "--date", "x"}).status, 2);
}

}  // namespace
}  // namespace kvshare::app
