// `kvshare edit`: what is typed, what the table has, and what the user reads.
#include <gtest/gtest.h>

#include "tests/apps/shop.h"

namespace kvshare::app {
namespace {

class Edit : public Shop {
 protected:
  Edit() {
    home_.Make("Program Files/QXN/Share/SqlIntf.ini", "[DATABASE.SQLITE]\r\nSQLDATE=DATE\r\n");
    Sql("CREATE TABLE ITEM (CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(10) NOT NULL,"
        " PRICE DECIMAL_REAL(19,4), BOUGHT DATE NOT NULL, SOLD DATETIME)");
    Sql("INSERT INTO ITEM VALUES ('A1', 'pen', '1234.5', '2024-03-15', NULL)");
  }

  static Outcome On(std::string key, std::vector<std::string> more, std::string_view typed = "") {
    std::vector<std::string> arguments = {"edit", "SHOP", "ITEM", std::move(key), "--era", "543"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Run(std::move(arguments), typed);
  }
  static std::string Rows() {
    std::string rows = Run({"sql", "--connect", "SHOP", "--csv", "SELECT * FROM ITEM"}).out;
    std::erase(rows, '\r');
    return rows.substr(rows.find('\n') + 1);
  }
};

constexpr std::string_view kFirst = "A1,pen,1234.5000,2024-03-15,\n";

TEST_F(Edit, AsksForEachField) {
  const Outcome done = On("CODE=A1", {},
                          "ink and more\nink\n1,3x\n1,300.255\n31/02/2567\n5/3/2900\n29/2/2567\n"
                          "5/3/2567 9:30\ny\n");
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_EQ(Rows(), "A1,ink,1300.2550,2024-02-29,2024-03-05T09:30:00\n");
  for (const char* part :
       {"NAME [pen]: ink and more\nNAME has room for 10 letters, this has 12\nNAME [pen]: ink\n",
        "PRICE [1,234.50]: 1,3x\n",
        "PRICE [1,234.50]: 1,300.255\nBOUGHT [15/03/2567]: 31/02/2567\n",
        "31/02/2567 วันที่ไม่ถูกต้อง\nBOUGHT", "ปีไม่ได้อยู่ในช่วง", "SOLD []: 5/3/2567 9:30\n",
        "  NAME: pen -> ink\n  PRICE: 1,234.50 -> 1300.255\n  BOUGHT: 15/03/2567 -> 29/02/2567\n"
        "  SOLD: (nothing) -> 05/03/2567 09:30\nWrite it? [y/N] y\nwritten\n"}) {
    EXPECT_NE(done.out.find(part), std::string::npos) << part << "\n" << done.out;
  }
}

TEST_F(Edit, LinesThatAreNoText) {
  struct Case {
    std::string_view typed;
    int status;
    std::string_view rows, why;
  };
  const Case cases[] = {
      {"\n\n\n\n", 0, kFirst, "Enter keeps"},
      {".\n", 0, kFirst, "nothing to write"},
      {"ink\n", 1, kFirst, "the input ends before a yes"},
      {"ink\n.\nn\n", 1, kFirst, "no"},
      {"\x1b\n", 0, kFirst, "Esc"},
      {"=-\n-\n.\ny\n", 0, "A1,-,,2024-03-15,\n", "a letter that means more, and Null"},
      {"=\n.\nyes\n", 0, "A1,\"\",,2024-03-15,\n", "a text without letters"},
      {"-\n.\nink\n.\ny\n", 0, "A1,ink,,2024-03-15,\n", "a refused post is asked for again"},
  };
  for (const Case& c : cases) {
    const Outcome done = On("CODE=A1", {}, c.typed);
    EXPECT_EQ(done.status, c.status) << c.why << "\n" << done.out << done.err;
    EXPECT_EQ(Rows(), c.rows) << c.why << "\n" << done.out;
  }
}

TEST_F(Edit, WithoutQuestions) {
  const Outcome set =
      On("A1", {"--key", "CODE", "--set", "PRICE=7.12345", "--set", "bought=1/1/2567", "--yes"});
  EXPECT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(set.out,
            "ITEM CODE=A1\n  PRICE: 1,234.50 -> 7.1235\n"  // as many decimals as the column has
            "  BOUGHT: 15/03/2567 -> 01/01/2567\nwritten\n");
  EXPECT_TRUE(On("CODE=A2", {"--new", "--set", "NAME=ดินสอ", "--yes"}).err.ends_with("\nBOUGHT\n"));
  EXPECT_EQ(On("CODE=A2", {"--new", "--yes"}, "ดินสอ\n\n\n\n").status, 0) << "today, as it is shown";
  EXPECT_EQ(On("CODE=A1", {"--delete"}, "n\n").status, 1);
  EXPECT_EQ(On("CODE=A1", {"--delete"}, "y\n").status, 0);
  EXPECT_EQ(Rows().substr(0, 20), "A2,ดินสอ,,");
}

TEST_F(Edit, Refusals) {
  struct Case {
    std::string key;
    std::vector<std::string> more;
    int status;
    std::string_view err;
  };
  const Case cases[] = {
      {"CODE=ZZ", {}, 1, "there is no record ITEM CODE=ZZ"},
      {"CODE=' OR ''='", {}, 1, "there is no record"},
      {"NO=1", {}, 1, "Field 'NO' not found"},
      {"NAME=pen", {}, 1, "are 2 records"},
      {"CODE=A1", {"--set", "NAME=a name too long", "--yes"}, 1, "room for 10 letters"},
      {"CODE=A1", {"--set", "PRICE=x", "--yes"}, 1, "'x' is not a valid floating point value"},
      {"A1,B", {"--key", "CODE"}, 1, "there is no record ITEM CODE=A1,B"},
      {"A1", {}, 2, "is FIELD=TEXT"},
      {"A1", {"--key", "CODE,NAME"}, 2, "a value for each field"},
      {"CODE=A1", {"--new", "--delete"}, 2, "excludes"},
  };
  Sql("INSERT INTO ITEM VALUES ('A3', 'pen', NULL, '2024-03-15', NULL)");
  for (const Case& c : cases) {
    const Outcome refused = On(c.key, c.more);
    EXPECT_EQ(refused.status, c.status) << refused.err;
    EXPECT_NE(refused.err.find(c.err), std::string::npos) << c.err << "\n" << refused.err;
  }
  EXPECT_EQ(Run({"edit", "SHOP", "ITEM; DROP TABLE ITEM", "CODE=A1"}).err,
            "kvshare: 'ITEM; DROP TABLE ITEM' is no name of a table\n");
  EXPECT_EQ(Run({"edit", "NOWHERE", "ITEM", "CODE=A1"}).status, 1);
  EXPECT_EQ(Run({"edit", "SHOP", "ITEM"}).status, 2);
}

TEST_F(Edit, WhatTheServerFillsIn) {
  Sql("CREATE TABLE SLIP (NO INTEGER PRIMARY KEY, KIND VARCHAR(5) DEFAULT 'cash' NOT NULL,"
      " NAME VARCHAR(10) NOT NULL)");
  const Outcome done = Run({"edit", "SHOP", "SLIP", "--new"}, "\n\nCha\ny\n");
  EXPECT_EQ(done.status, 0) << done.err;
  EXPECT_TRUE(done.out.ends_with("written\n  NO: 1\n  KIND: cash\n  NAME: Cha\n")) << done.out;
}

// A key that is taken: the dialog shows the new record in the era in force, and takes another key.
TEST_F(Edit, ATakenKeyComesToTheDialog) {
  const std::vector<std::string> add = {"--new", "--set",           "NAME=ink",
                                        "--set", "BOUGHT=1/1/2567", "--yes"};
  const Outcome left = On("CODE=A1", add, "q\n");
  EXPECT_EQ(left.status, 1);
  EXPECT_NE(left.out.find("Update Type: Inserted"), std::string::npos) << left.out;
  EXPECT_NE(left.out.find("BOUGHT     | 01/01/2567"), std::string::npos) << left.out;
  EXPECT_EQ(Rows(), kFirst);
  const Outcome corrected = On("CODE=A1", add, "3\n1=A2\n4=2/1/2567\n\ny\n");
  EXPECT_EQ(corrected.status, 0) << corrected.out;
  EXPECT_EQ(Rows(), std::string(kFirst) + "A2,ink,,2024-01-02,\n");
}

}  // namespace
}  // namespace kvshare::app
