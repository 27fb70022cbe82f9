#include "kvshare/data/sql/sqlquery.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "tests/data/sqlite.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class Query : public testing::Test {
 protected:
  Query() {
    UseSqlite(connection_, folder_.File("x.db"));
    connection_.ExecuteDirect("CREATE TABLE T (ID INTEGER, NAME VARCHAR(20))");
    connection_.ExecuteDirect("INSERT INTO T VALUES (1, 'a'), (2, 'b'), (3, NULL)");
    query_.SetSQLConnection(&connection_);
    query_.SQL().Add("SELECT ID, NAME FROM T ORDER BY ID");
  }

  std::string ErrorOf(const std::function<void()>& action) const {
    return MessageOf<EDatabaseError>(action);
  }

  TemporaryFolder folder_;
  TSQLConnection connection_;
  TSQLQuery query_{nullptr, "Qry"};
};

TEST_F(Query, PlacesAndStates) {
  EXPECT_EQ(query_.State(), TDataSetState::dsInactive);
  query_.Open();
  query_.Open();
  EXPECT_EQ(query_.State(), TDataSetState::dsBrowse);
  EXPECT_TRUE(query_.Bof() && !query_.Eof() && !query_.IsEmpty());
  EXPECT_EQ(query_.RecordCount(), 1);
  query_.First();
  query_.Next();
  EXPECT_FALSE(query_.Bof());
  EXPECT_EQ(query_.FieldByName("id").AsInteger(), 2);
  query_.First();
  EXPECT_TRUE(query_.Bof());
  EXPECT_EQ(query_.FieldByName("id").AsInteger(), 1) << "run again";
  while (!query_.Eof()) query_.Next();
  query_.Next();
  EXPECT_EQ(query_.RecordCount(), 3);
  EXPECT_TRUE(query_.FieldByName("ID").IsNull()) << "behind the last record";
  query_.Close();
  query_.Close();
  EXPECT_EQ(query_.FieldCount(), 0);
}

TEST_F(Query, AnEmptySet) {
  query_.SQL().SetText("SELECT ID FROM T WHERE ID > 9");
  query_.Open();
  EXPECT_TRUE(query_.Bof() && query_.Eof() && query_.IsEmpty());
  EXPECT_EQ(query_.RecordCount(), 0);
  query_.First();
  query_.Next();
  EXPECT_TRUE(query_.Fields(0).IsNull());
  EXPECT_EQ(query_.Fields(0).AsInteger(), 0);
}

TEST_F(Query, WhatAUnidirectionalSetRefuses) {
  EXPECT_EQ(ErrorOf([&] { query_.Next(); }),
            "Qry: Cannot perform this operation on a closed dataset");
  EXPECT_EQ(ErrorOf([&] { query_.Edit(); }),
            "Qry: Cannot perform this operation on a closed dataset");
  query_.Open();
  const std::string oneWay = "Qry: Operation not allowed on a unidirectional dataset";
  EXPECT_EQ(ErrorOf([&] { query_.Prior(); }), oneWay);
  EXPECT_EQ(ErrorOf([&] { query_.Last(); }), oneWay);
  EXPECT_EQ(ErrorOf([&] { query_.Locate("ID", 1); }), oneWay);
  const std::string readOnly = "Qry: Cannot modify a read-only dataset";
  EXPECT_EQ(ErrorOf([&] { query_.Edit(); }), readOnly);
  EXPECT_EQ(ErrorOf([&] { query_.Append(); }), readOnly);
  EXPECT_EQ(ErrorOf([&] { query_.Delete(); }), readOnly);
  EXPECT_EQ(ErrorOf([&] { query_.Post(); }), "Qry: Dataset not in edit or insert mode");
  query_.Cancel();
  EXPECT_EQ(query_.Fields(0).AsInteger(), 1);
}

TEST_F(Query, WhatItNeedsToOpen) {
  TSQLQuery none(nullptr, "Qry");
  EXPECT_EQ(ErrorOf([&] { none.Open(); }), "Qry: Missing SQLConnection property");
  query_.SQL().SetText("  \r\n ");
  EXPECT_EQ(ErrorOf([&] { query_.Open(); }), "Qry: Missing query, table name or procedure name");
  query_.SQL().SetText("DELETE FROM T WHERE ID = 9");
  EXPECT_EQ(ErrorOf([&] { query_.Open(); }), "Qry: Cursor not returned from Query");
  query_.SQL().SetText("SELECT * FROM NONE");
  EXPECT_EQ(ErrorOf([&] { query_.Open(); }), "SQL Server Error: no such table: NONE");
  EXPECT_EQ(query_.State(), TDataSetState::dsInactive);
}

TEST_F(Query, AChangeOfTheStatementCloses) {
  const std::function<void()> changes[] = {
      [&] { query_.SQL().Add("-- x"); }, [&] { query_.SQL().Put(0, "SELECT 1"); },
      [&] { query_.SQL().Insert(0, "-- y"); }, [&] { query_.SQL().Delete(0); },
      [&] { query_.SQL().SetText("SELECT 2"); }};
  for (const auto& change : changes) {
    query_.Open();
    change();
    EXPECT_FALSE(query_.Active());
  }
}

TEST_F(Query, TheEndOfItsConnectionClosesIt) {
  auto connection = std::make_unique<TSQLConnection>();
  UseSqlite(*connection, folder_.File("x.db"));
  query_.SetSQLConnection(connection.get());
  query_.Open();
  connection->Close();
  EXPECT_FALSE(query_.Active());
  query_.Open();
  EXPECT_TRUE(connection->Connected());
  connection.reset();
  EXPECT_FALSE(query_.Active());
  EXPECT_EQ(query_.SQLConnection(), nullptr);
}

TEST_F(Query, ParametersByNameAndPlace) {
  query_.SQL().SetText("SELECT ID FROM T WHERE (ID = :A OR ID = ? OR NAME = :b) AND ID <> :a + 1");
  ASSERT_EQ(query_.Params().Count(), 3);
  query_.ParamByName("a").SetAsInteger(1);
  query_.Params()[1].SetAsInteger(3);
  query_.ParamByName("B").SetAsString("b");
  std::string found;
  for (query_.Open(); !query_.Eof(); query_.Next()) found += query_.Fields(0).AsString();
  EXPECT_EQ(found, "13");
  query_.SQL().Add("AND ID > :low");
  EXPECT_FALSE(query_.ParamByName("a").IsNull()) << "values stay";
  EXPECT_TRUE(query_.ParamByName("low").IsNull());
  EXPECT_EQ(ErrorOf([&] { query_.ParamByName("none"); }), "Parameter 'none' not found");
  EXPECT_THROW(query_.Params()[4], EListError);
}

// A query without a connection does not know how its server will read the statement.
TEST_F(Query, ParametersAreFoundAgainWhenTheServerIsKnown) {
  TSQLQuery early(nullptr, "Qry");
  early.SQL().Add("SELECT [:x] + :A + :A FROM (SELECT 1 AS [:x])");
  ASSERT_EQ(early.Params().Count(), 2);
  TParam& a = early.ParamByName("A");
  a.SetAsInteger(10);
  early.SetSQLConnection(&connection_);
  early.Open();
  EXPECT_EQ(early.Fields(0).AsInteger(), 21);
  EXPECT_EQ(early.Params().Count(), 1);
  early.Close();
  a.SetAsInteger(20);
  early.Open();
  EXPECT_EQ(early.Fields(0).AsInteger(), 41) << "it is the same parameter";
}

TEST_F(Query, AValueThatHasNoPlaceAnyMoreIsTold) {
  struct Case {
    const char* sql;
    int param;
    const char* message;
  };
  constexpr Case kCases[] = {
      {"SELECT [:x], :A FROM (SELECT 1 AS [:x])", 0, "Qry: Parameter 'x' not found"},
      {"SELECT [?], ? FROM (SELECT 1 AS [?])", 1, "Qry: Parameter '?' not found"},
      {"SELECT [?], ? FROM (SELECT 1 AS [?])", 0, "Qry: Parameter '?' not found"},
      {"SELECT ?, [`], ? FROM (SELECT 1 AS [`])", 0, "Qry: Parameter '?' not found"},
  };
  for (const Case& c : kCases) {
    TSQLQuery early(nullptr, "Qry");
    early.SQL().Add(c.sql);
    early.Params()[c.param].SetAsInteger(1);
    early.SetSQLConnection(&connection_);
    const std::string message = ErrorOf([&] { early.Params(); });
    EXPECT_THAT(message, testing::StartsWith(c.message)) << c.sql;
    EXPECT_EQ(ErrorOf([&] { early.Params(); }), "no error") << "once";
  }
}

// The driver says how its servers read statements, before there is one.
TEST_F(Query, ParametersOfAClosedConnection) {
  connection_.Close();
  query_.SQL().SetText("SELECT [:x] FROM (SELECT :A AS [:x])");
  EXPECT_EQ(query_.Params().Count(), 1);
  EXPECT_FALSE(connection_.Connected());
  query_.ParamByName("A").SetAsInteger(3);
  query_.Open();
  EXPECT_EQ(query_.Fields(0).AsInteger(), 3);
}

TEST_F(Query, ExecSQL) {
  query_.SQL().SetText("UPDATE T SET NAME = 'z'");
  EXPECT_EQ(query_.ExecSQL(), 3);
  query_.SQL().SetText("UPDATE T SET NAME = :N WHERE ID = 2");
  query_.ParamByName("n").SetAsString("ก"_th);
  EXPECT_EQ(query_.ExecSQL(), -1);
  query_.SQL().SetText("SELECT NAME FROM T WHERE ID = 2");
  query_.Open();
  EXPECT_EQ(query_.Fields(0).AsString(), "ก"_th);
}

// The digits of a date are written in pairs: as Format writes them.
TEST(Param, MomentsHaveAllTheirDigits) {
  std::mt19937_64 random(1);
  constexpr double kYear9999 = 2'958'000;
  for (int i = 0; i < 20'000; ++i) {
    const double share = static_cast<double>(random() >> 11) * 0x1p-53;
    const TDateTime moment(std::floor(-693'000 + share * (693'000 + kYear9999)) + i % 1000 / 1e3);
    const auto [date, time, weekDay] = DecodeDateTime(moment);
    const std::string day =
        Format("%.4d-%.2d-%.2d", {int{date.Year}, int{date.Month}, int{date.Day}});
    std::string clock =
        Format("%.2d:%.2d:%.2d", {int{time.Hour}, int{time.Minute}, int{time.Second}});
    if (time.MilliSecond != 0) AppendFormat(clock, ".%.3d", {int{time.MilliSecond}});
    TParam param("P");
    const auto text = [&] { return std::get<data::Moment>(param.WireValue()).text; };
    param.SetAsDate(moment);
    ASSERT_EQ(text(), day);
    param.SetAsTime(moment);
    ASSERT_EQ(text(), clock);
    param.SetAsDateTime(moment);
    ASSERT_EQ(text(), day + " " + clock);
  }
}

// What no server has, and some would store as 0000-00-00.
TEST(Param, DatesAreOfTheYears1To9999) {
  constexpr double kBeforeYear1 = -693'594;
  constexpr double kYear10000 = 2'958'466;
  TParam param("P");
  for (const double days :
       {kBeforeYear1, kBeforeYear1 - 0.5, kYear10000, 1e9, -1e9, std::nan("")}) {
    const std::string refusal = "The date of parameter 'P' is not of the years 1 to 9999";
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { param.SetAsDate(TDateTime(days)); }), refusal)
        << days;
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { param.SetAsDateTime(TDateTime(days)); }), refusal)
        << days;
  }
  EXPECT_FALSE(param.IsGiven());
  const auto text = [&] { return std::get<data::Moment>(param.WireValue()).text; };
  param.SetAsDateTime(JoinDateTime(EncodeDate(1, 1, 1), EncodeTime(23, 59, 59, 0)));
  EXPECT_EQ(text(), "0001-01-01 23:59:59");
  param.SetAsDate(EncodeDate(9999, 12, 31));
  EXPECT_EQ(text(), "9999-12-31");
}

TEST_F(Query, ProvidersKnowTheOnlyTable) {
  const struct {
    const char *sql, *table;
  } cases[] = {
      {"select * from ITEM", "ITEM"},
      {"SELECT A,B FROM ITEM I WHERE A IN (1, 2) AND B = (SELECT MAX(X) FROM U, V)", "ITEM"},
      {"select 'x from STOCK y' as NOTE, A from ITEM;", "ITEM"},
      {"select A -- from STOCK\nfrom ITEM", "ITEM"},
      {"select (select max(X) from STOCK) as M from ITEM order by A, B", "ITEM"},
      {"select * from \"Odd name\" where A = 1", "\"Odd name\""},
      {"select * from [Odd name]", "[Odd name]"},
      {"select * from shop.\"Odd name\" where A = 1", "shop.\"Odd name\""},
      {"select * from /* the */ ITEM-- items\nwhere A = 1", "ITEM"},
      {"select [ from STOCK ] from ITEM", "ITEM"},
      {"select * from shop.ITEM", "shop.ITEM"},
      {"select * from ITEM, STOCK", ""},
      {"select * from ITEM inner join STOCK on A = B", ""},
      {"select * from (select * from ITEM) X", ""},
      {"select * from ITEM where A = 1 union select * from STOCK", ""},
      {"select A, count(*) as N from ITEM group by A", ""},
      {"select 1", ""},
      {"select '", ""},
  };
  for (const auto& c : cases) {
    TDataSetProvider provider(connection_);
    provider.Query().SQL().SetText(c.sql);
    if (*c.table != '\0') {
      EXPECT_EQ(provider.ResolvedTable(), c.table) << c.sql;
    } else {
      EXPECT_EQ(ErrorOf([&] { provider.ResolvedTable(); }),
                "Unable to resolve records.  Table name not found.")
          << c.sql;
    }
  }
}

TEST_F(Query, ParametersTakeAFieldsValue) {
  TClientDataSet set;
  set.FieldDefs().Add("N", TFieldType::ftString, 10);
  set.FieldDefs().Add("B", TFieldType::ftFMTBcd, 8);
  set.FieldDefs().Add("I", TFieldType::ftInteger);
  set.CreateDataSet();
  set.Append();
  constexpr std::string_view kName = "ก"_th;
  set.FieldByName("N").SetAsString(kName);
  set.FieldByName("B").SetAsString("1234567.12345678");
  query_.SQL().SetText("SELECT :N, :B, :I");
  for (const char* name : {"N", "B", "I"}) {
    query_.ParamByName(name).AssignField(set.FieldByName(name));
  }
  query_.Open();
  EXPECT_EQ(query_.Fields(0).AsString(), kName);
  EXPECT_EQ(query_.Fields(1).AsString(), "1234567.12345678");
  EXPECT_TRUE(query_.Fields(2).IsNull());
}

// Nothing of a fetch that fails holds the file.
TEST_F(Query, AFetchThatFailsLetsGo) {
  TDataSetProvider provider(connection_);
  provider.Query().SQL().SetText("SELECT 1 AS ID FROM T");
  TClientDataSet set;
  set.SetPrimaryKey("ID");
  set.SetProvider(&provider);
  EXPECT_EQ(MessageOf<EDBClient>([&] { set.Open(); }), "Key violation.");
  EXPECT_FALSE(set.Active());
  EXPECT_FALSE(provider.Query().Active());
}

// Changing a line closes the query, and its field with it.
TEST_F(Query, ALineMayBeTheQuerysOwnText) {
  void (*const changes[])(TStrings & lines, const std::string& name) = {
      [](TStrings& lines, const std::string& name) { lines.Add(name); },
      [](TStrings& lines, const std::string& name) { lines.Insert(0, name); },
      [](TStrings& lines, const std::string& name) { lines.Put(0, name); },
  };
  for (const auto change : changes) {
    query_.SQL().SetText("SELECT 1 AS A_NAME_THAT_IS_NOT_SHORT");
    query_.Open();
    change(query_.SQL(), query_.Fields(0).FieldName());
    EXPECT_GE(query_.SQL().IndexOf("A_NAME_THAT_IS_NOT_SHORT"), 0);
  }
}

}  // namespace
}  // namespace kvshare
