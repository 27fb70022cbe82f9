// Two people at one record: the dialog shows the second one what the first one has written, and
// what he decides reaches the server.
#include <gtest/gtest.h>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/client/provider.h"
#include "kvshare/database/dbpost.h"
#include "kvshare/database/recerror.h"
#include "tests/database/company.h"

namespace kvshare {
namespace {

class TwoUsers : public Company {
 protected:
  TwoUsers() {
    Run("CREATE TABLE ITEM (CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(30), QTY INTEGER)");
    Run("INSERT INTO ITEM VALUES ('A1', 'pen', 5)");
    provider.TableName = "ITEM";
    provider.KeyFields = "CODE";
    mine.SetProvider(&provider);
    mine.Open();
    TKovraDbPost::SetUserDataSetProperties(mine);
    mine.Edit();
    mine.FieldByName("NAME").SetAsString("ink");
    mine.Post();
    Run("UPDATE ITEM SET QTY = 7");
  }

  // Applies while the user answers with that item of the dialog, having typed a name.
  int ApplyWith(int item) {
    boxes_.steps.emplace_back([item](TForm& shown) {
      auto& form = dynamic_cast<TReconcileErrorForm&>(shown);
      EXPECT_EQ(form.Rows()[1].NewValue + form.Rows()[1].CurrentValue, "ink<Unchanged>");
      EXPECT_EQ(form.Rows()[2].NewValue + form.Rows()[2].CurrentValue, "<Unchanged>7");
      form.ActionGroup.Choose(2);
      form.UpdateData.SelectCell(1, 2);
      EXPECT_TRUE(form.UpdateData.TypeText("brush"));
      form.ActionGroup.Choose(item);
      form.OKBtn.Click();
    });
    return mine.ApplyUpdates(0);
  }
  std::string Mine() {
    return mine.FieldByName("NAME").AsString() + " " + mine.FieldByName("QTY").AsString();
  }

  TDataSetProvider provider{connection_};
  TClientDataSet mine{nullptr, "ITEMS"};
};

TEST_F(TwoUsers, EachAnswerDoesWhatItSays) {
  EXPECT_EQ(ApplyWith(0), 1);  // Skip
  EXPECT_EQ(Mine(), "ink 5");
  EXPECT_EQ(ApplyWith(2), 1);  // Correct, and then the name is another one
  EXPECT_EQ(Mine(), "brush 5");
  mine.Edit();
  mine.FieldByName("NAME").SetAsString("ink");
  mine.Post();
  EXPECT_EQ(ApplyWith(4), 1);  // Merge
  EXPECT_EQ(Mine(), "ink 7");
  EXPECT_EQ(mine.ApplyUpdates(0), 0);
  EXPECT_EQ(Single("SELECT NAME || QTY FROM ITEM"), "ink7");
}

TEST_F(TwoUsers, RefreshTakesWhatIsThere) {
  EXPECT_EQ(ApplyWith(3), 1);
  EXPECT_EQ(Mine(), "pen 7");
  EXPECT_EQ(mine.ChangeCount(), 0);
}

}  // namespace
}  // namespace kvshare
