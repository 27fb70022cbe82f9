// A record of the shop as a form, by what its user types and presses.
#include "apps/kvshare/data/recordform.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "apps/kvshare/commands/startedlibrary.h"
#include "kvshare/database/sqlfunc.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/backend.h"
#include "tests/apps/shop.h"

namespace kvshare::app {
namespace {

class RecordForms : public Shop {
 protected:
  RecordForms() {
    home_.Make("Program Files/QXN/Share/SqlIntf.ini", "[DATABASE.SQLITE]\r\nSQLDATE=DATE\r\n");
    Sql("CREATE TABLE ITEM (CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(10) NOT NULL,"
        " PRICE DECIMAL_REAL(19,4), BOUGHT DATE NOT NULL, NOTE TEXT)");
    Sql("INSERT INTO ITEM VALUES ('A1', 'pen', '1234.5', '2024-03-15', 'one' || char(10) || "
        "'two')");
    YearBase = 543;
    ReadDbmsConnectInfo("SHOP");
    ConnectDBMS(connection_, KovraAliasName, true);
  }

  static TEdit& Line(const RecordForm& form, std::string_view field) {
    return dynamic_cast<TEdit&>(*form.ControlOf(field));
  }

  StartedLibrary library_;
  TSQLConnection connection_;
  THeadlessInterface backEnd_;
  TUseInterface use_{backEnd_};
};

TEST_F(RecordForms, ShowsTheRecordAndPostsWhatWasTyped) {
  TableRecord record(connection_, "ITEM", {{"CODE", "A1"}});
  record.Fetch();
  record.Set().Edit();
  RecordForm form(record);
  backEnd_.steps.emplace_back([&](TForm&) {
    EXPECT_EQ(form.Caption(), "ITEM CODE=A1");
    EXPECT_EQ(form.ActiveControl(), form.ControlOf("NAME")) << "behind the key, which only shows";
    EXPECT_FALSE(Line(form, "CODE").TypeText("A2"));
    EXPECT_EQ(Line(form, "BOUGHT").Text(), "15/03/2567");
    auto& note = dynamic_cast<TMemo&>(*form.ControlOf("NOTE"));
    EXPECT_EQ(note.Text(), "one\ntwo");
    EXPECT_TRUE(Line(form, "NAME").TypeText("ปากกา"_th));
    EXPECT_TRUE(Line(form, "BOUGHT").TypeText("31/2/2567"));
    EXPECT_THROW(form.PressEnter(), Exception);
    EXPECT_EQ(form.ActiveControl(), form.ControlOf("BOUGHT")) << "where the error is";
    EXPECT_EQ(Line(form, "NAME").Text(), "ปากกา"_th);
    EXPECT_TRUE(Line(form, "BOUGHT").TypeText("1/3/2567"));
    EXPECT_TRUE(form.DefaultButton()->Click());
  });
  EXPECT_TRUE(form.Edit());
  EXPECT_EQ(record.Set().State(), TDataSetState::dsBrowse);
  EXPECT_EQ(record.Set().ApplyUpdates(0), 0);
  EXPECT_EQ(Run({"sql", "--connect", "SHOP", "--csv", "SELECT NAME, PRICE, BOUGHT FROM ITEM"}).out,
            "NAME,PRICE,BOUGHT\r\nปากกา,1234.5000,2024-03-01\r\n");
}

TEST_F(RecordForms, EscLeavesAllAsItWas) {
  TableRecord record(connection_, "ITEM", {{"CODE", "A1"}});
  record.Fetch();
  record.Set().Edit();
  RecordForm form(record);
  backEnd_.steps.emplace_back([&](TForm&) {
    Line(form, "NAME").TypeText("ink");
    form.PressEsc();
  });
  EXPECT_FALSE(form.Edit());
  EXPECT_EQ(record.Set().FieldByName("NAME").AsString(), "pen");
}

// Every control lies inside the form, and none on another, however many fields there are.
TEST_F(RecordForms, ManyFieldsStandInColumns) {
  std::string columns = "CODE VARCHAR(5) PRIMARY KEY";
  for (int i = 0; i < 45; ++i) columns += ", F" + std::to_string(i) + " VARCHAR(5)";
  Sql("CREATE TABLE WIDE (" + columns + ")");
  TableRecord record(connection_, "WIDE", {{"CODE", "A1"}});
  record.Append();
  const RecordForm form(record);
  std::set<std::pair<int, int>> places;
  for (const TControl* control : form.Controls()) {
    EXPECT_TRUE(places.emplace(control->Left(), control->Top()).second) << control->Name();
    EXPECT_LE(control->Left() + control->Width(), form.ClientWidth());
    EXPECT_LE(control->Top() + control->Height(), form.ClientHeight());
  }
  EXPECT_EQ(places.size(), 2u * 46 + 2);
}

}  // namespace
}  // namespace kvshare::app
