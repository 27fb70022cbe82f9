// Processes that take send numbers at one moment: every number once, none left out.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

#include "kvshare/database/sqlreplication.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "tests/company/company.h"

namespace kvshare {
namespace {

using Counter = ServerCompany;

TEST_F(Counter, NobodyTakesANumberTwice) {
  const int processes = 8;
  const int takes = Asked("KVSHARE_TEST_TAKES", 40);
  MakeTable("KOVRASYNC",
            "SYN_KEY INTEGER NOT NULL PRIMARY KEY, SYN_TABLENAME VARCHAR(40),"
            " SYN_LASTSEND VARCHAR(17), SYN_LASTUPD VARCHAR(17)");
  connection_.reset();
  std::vector<pid_t> children;
  for (int i = 0; i < processes; ++i) {
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
      int status = 1;
      try {
        std::ofstream out(home_.Path() / std::to_string(i));
        const auto connection = Connected();
        for (int n = 0; n < takes; ++n) out << TakeNextRpl(*connection) << '\n';
        connection->Close();
        status = out.good() ? 0 : 1;
      } catch (const Exception& e) {
        std::fputs(e.Message().c_str(), stderr);
      }
      std::_Exit(status);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::vector<std::string> numbers;
  for (int i = 0; i < processes; ++i) {
    std::ifstream in(home_.Path() / std::to_string(i));
    for (std::string line; std::getline(in, line);) numbers.push_back(line);
  }
  std::ranges::sort(numbers);
  ASSERT_EQ(numbers.size(), static_cast<std::size_t>(processes * takes));
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    ASSERT_EQ(numbers[i], Format("0%16.16d", {static_cast<std::int64_t>(i) + 1}));
  }
}

// Some shops have made the columns CHAR, which most servers fill with blanks.
TEST_F(Counter, ColumnsOfFixedWidthAreReadWithoutTheirBlanks) {
  MakeTable("KOVRASYNC",
            "SYN_KEY INTEGER NOT NULL PRIMARY KEY, SYN_TABLENAME CHAR(40),"
            " SYN_LASTSEND CHAR(20), SYN_LASTUPD CHAR(20)");
  MakeTable("KOVRAVERSION", "VER_KEY INTEGER, VER_GUID CHAR(50), VER_DATA_ID CHAR(50)");
  Run("INSERT INTO KOVRAVERSION VALUES (1, '{G 1}', 'D')");
  EXPECT_EQ(SQLNextRpl(*connection_), "00000000000000001");
  EXPECT_EQ(SQLNextRpl(*connection_), "00000000000000002");
  EXPECT_EQ(UpdateNextRpl(*connection_, 7), "00000000000000007");
  EXPECT_EQ(TakeNextRpl(*connection_), "00000000000000008");
  EXPECT_EQ(SQLReadRpl(*connection_), "00000000000000008");
  EXPECT_EQ(SQLReadRpldate(*connection_).size(), 17u);
  EXPECT_EQ(OriginID(*connection_), "{G 1}");
  EXPECT_EQ(DataID(*connection_), "D");

  Run("UPDATE KOVRASYNC SET SYN_LASTSEND = '00000000000000041 '");
  EXPECT_EQ(TakeNextRpl(*connection_), "00000000000000042") << "blanks that somebody stored";
  Run("UPDATE KOVRASYNC SET SYN_LASTSEND = '  '");
  EXPECT_THROW(SQLNextRpl(*connection_), EConvertError) << "nothing but blanks is no number";
  EXPECT_EQ(SQLReadRpl(*connection_), "");
  EXPECT_THAT(Boxes(), testing::IsEmpty());
}

}  // namespace
}  // namespace kvshare
