#include "kvshare/database/sqlreplication.h"

#include <sys/wait.h>

#include <algorithm>
#include <cmath>

#include "kvshare/rtl/exceptions.h"
#include "tests/database/company.h"

namespace kvshare {
namespace {

using testing::IsEmpty;

class Replication : public Company {
 protected:
  Replication() {
    Run("CREATE TABLE KOVRASYNC (SYN_KEY INTEGER PRIMARY KEY, SYN_TABLENAME VARCHAR(20), "
        "SYN_LASTSEND VARCHAR(17), SYN_LASTUPD VARCHAR(17))");
  }
  void Store(std::string_view number) {
    Run("INSERT OR REPLACE INTO KOVRASYNC VALUES (1, 'BSYNCKCONTROL', '" + std::string(number) +
        "', '')");
  }
};

TEST_F(Replication, TheCounterCounts) {
  EXPECT_EQ(SQLReadRpl(connection_), "00000000000000000");
  EXPECT_EQ(SQLReadRpldate(connection_), "");
  EXPECT_EQ(SQLNextRpl(connection_), "00000000000000001");
  EXPECT_EQ(Single("SELECT SYN_KEY || SYN_TABLENAME FROM KOVRASYNC"), "1BSYNCKCONTROL");
  EXPECT_EQ(SQLNextRpl(connection_), "00000000000000002");
  EXPECT_EQ(SQLReadRpl(connection_), "00000000000000002");
  EXPECT_THAT(SQLReadRpldate(connection_), testing::MatchesRegex("20[0-9]{15}"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(Replication, APeerMovesTheCounterForwardOnly) {
  EXPECT_EQ(UpdateNextRpl(connection_, 20), "00000000000000001") << "an empty table";
  struct Case {
    std::string stored;
    std::int64_t value;
    std::string want;
  };
  const Case cases[] = {{"00000000000000007", 5, "00000000000000008"},
                        {"00000000000000007", 7, "00000000000000008"},
                        {"00000000000000007", 20, "00000000000000020"},
                        {"7", -1, "00000000000000008"},
                        {"09999999999999999", 1, "010000000000000000"}};
  for (const Case& c : cases) {
    Store(c.stored);
    EXPECT_EQ(UpdateNextRpl(connection_, c.value), c.want);
    EXPECT_EQ(SQLReadRpl(connection_), c.want);
  }
}

TEST_F(Replication, OddCounters) {
  Store("00000000000000000");
  EXPECT_EQ(SQLNextRpl(connection_), "00000000000000001") << "a second row, which is refused";
  EXPECT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(SQLReadRpl(connection_), "00000000000000000");
  EXPECT_EQ(TakeNextRpl(connection_), "00000000000000001") << "updates the row that is there";
  EXPECT_EQ(SQLReadRpl(connection_), "00000000000000001");
  Store("none");
  EXPECT_EQ(SQLReadRpl(connection_), "none") << "as it is";
  EXPECT_THROW(SQLNextRpl(connection_), EConvertError);
  EXPECT_THROW(TakeNextRpl(connection_), EConvertError);
  EXPECT_FALSE(connection_.InTransaction());
  Run("DROP TABLE KOVRASYNC");
  EXPECT_EQ(SQLReadRpl(connection_), "00000000000000000");
  EXPECT_THAT(Boxes(), IsEmpty());
  EXPECT_EQ(SQLNextRpl(connection_), "00000000000000001");
  EXPECT_EQ(Boxes().size(), 2u) << "the failed read, the failed write";
  EXPECT_THROW(TakeNextRpl(connection_), EDatabaseError);
}

TEST_F(Replication, Identities) {
  EXPECT_EQ(OriginID(connection_), "");
  EXPECT_EQ(Boxes().size(), 1u) << "no table";
  Run("CREATE TABLE KOVRAVERSION (VER_KEY INTEGER, VER_GUID VARCHAR(40), VER_DATA_ID VARCHAR(40))");
  EXPECT_EQ(DataID(connection_), "");
  Run("INSERT INTO KOVRAVERSION VALUES (2, 'no', 'no'), (1, '{G}', 'D')");
  EXPECT_EQ(OriginID(connection_), "{G}");
  EXPECT_EQ(DataID(connection_), "D");
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(Replication, TheServersClock) {
  const std::string_view sql = "SELECT '2004-03-15 14:30:05' AS CURRENTDATETIME";
  const TDateTime day = EncodeDate(2004, 3, 15);
  const TDateTime time = EncodeTime(14, 30, 5, 0);
  EXPECT_EQ(ServerDateTime(connection_, sql), JoinDateTime(day, time));
  EXPECT_EQ(ServerDate(connection_, sql), day);
  EXPECT_NEAR(ServerTime(connection_, sql).Days(), time.Days(), 1e-9);
  EXPECT_LT(std::abs(ServerDateTime(connection_, "") - Now()), 1.0 / 24);
  EXPECT_THROW(ServerDateTime(connection_, "SELECT 1"), EDatabaseError);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { ServerDateTime(connection_, "SELECT * FROM NONE"); }),
            "Field 'CURRENTDATETIME' not found");
  EXPECT_EQ(Boxes().size(), 1u);
}

}  // namespace
}  // namespace kvshare
