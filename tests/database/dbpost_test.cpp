#include "kvshare/database/dbpost.h"

#include <gtest/gtest.h>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/posterror.h"
#include "kvshare/database/recerror.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/ui/backend.h"
#include "tests/support.h"

namespace kvshare {
namespace {

using enum TFieldType;
using enum TUpdateKind;

class DbPost : public testing::Test {
 protected:
  DbPost() {
    set.FieldDefs().Add("CODE", ftString, 10, true);
    set.FieldDefs().Add("NAME", ftString, 30, true);
    set.FieldDefs().Add("QTY", ftInteger, 0, true);
    set.FieldDefs().Add("REMARK", ftString, 30);
    set.CreateDataSet();
    set.SetPrimaryKey("CODE");
    TKovraDbPost::SetSimpleDataSetProperties(set);
  }

  void Type(std::string_view code, std::string_view name, std::string_view qty) {
    set.Cancel();
    set.Append();
    set.FieldByName("CODE").SetAsString(code);
    set.FieldByName("NAME").SetAsString(name);
    set.FieldByName("QTY").SetAsString(qty);
  }

  TClientDataSet set{nullptr, "CUSTOMERS"};
  THeadlessInterface backEnd;
  TUseInterface use{backEnd};
};

std::string Message(std::string_view error, std::string_view fields) {
  constexpr auto kFailed = "พบข้อผิดพลาดขณะทำการ Post\r\n"_th;
  return std::string(kFailed).append(error).append("\r\n").append(fields);
}

TEST_F(DbPost, APostTellsWhatIsMissingOrTheKey) {
  Type("A001", "x", "0");
  set.Post();
  struct Case {
    std::string_view code, name, qty;
    std::string_view error, fields;
  };
  const Case cases[] = {
      {"", "", "", "CUSTOMERS: Field 'QTY' must have a value", "CODE,NAME,QTY"},
      {"B", " \t", "", "CUSTOMERS: Field 'QTY' must have a value", "NAME,QTY"},
      {"A001", "x", "1", "Key violation.", "(CODE=A001)"},
      {"A001", "  ", "1", "Key violation.", "NAME"},
  };
  for (const Case& c : cases) {
    Type(c.code, c.name, c.qty);
    EXPECT_EQ(MessageOf<Exception>([&] { set.Post(); }), Message(c.error, c.fields));
    EXPECT_EQ(set.FieldByName("CODE").AsString(), c.code) << "what was typed stays";
    EXPECT_EQ(set.State(), TDataSetState::dsInsert);
  }
  set.Cancel();
  TClientDataSet closed;
  EDatabaseError error("gone");
  TDataAction action = TDataAction::daFail;
  EXPECT_EQ(MessageOf<Exception>([&] { TKovraDbPost::qyPostError(closed, error, action); }),
            Message("gone", ""));
}

TEST_F(DbPost, ARefusedChangeIsOneBox) {
  struct Case {
    TUpdateKind kind;
    std::string_view text;
  };
  const Case cases[] = {
      {ukModify, "ไม่สามารถแก้ไขข้อมูลได้(CODE)\r\nlocked\r\nโปรดทำการ Refresh ข้อมูลก่อนแก้ไขใหม่    "_th},
      {ukInsert,
       "ไม่สามารถเพิ่มข้อมูลได้(CODE)\r\nCUSTOMERS\r\nlocked\r\nผู้อื่นทำการจองข้อมูลไว้\r\nโปรดรอสักครู่แล้วกดบันทึกอีกครั้ง"_th},
      {ukDelete, "ไม่สามารถลบข้อมูล(CODE)\r\nlocked"_th},
  };
  for (const Case& c : cases) {
    for (TReconcileAction given : {TReconcileAction::raSkip, TReconcileAction::raAbort}) {
      EReconcileError error("locked", "context", 1, 0);
      TReconcileAction action = given;
      set.OnReconcileError(set, error, c.kind, action);
      EXPECT_EQ(action, given);
      const TMessageBox box{std::string(c.text), TMsgDlgType::mtError, {TMsgDlgBtn::mbOK}, 0};
      EXPECT_EQ(backEnd.messages.back(), box);
    }
  }
  EXPECT_EQ(backEnd.messages.size(), 2 * std::size(cases));
}

TEST_F(DbPost, TheUserDecidesInADialog) {
  TKovraDbPost::SetUserDataSetProperties(set);
  Type("A001", "x", "1");
  backEnd.steps.emplace_back([](TForm& form) {
    dynamic_cast<TReconcileErrorForm&>(form).ActionGroup.Choose(1);
    form.PressEnter();
  });
  EReconcileError error("locked", "", 1, 0);
  auto action = TReconcileAction::raSkip;
  set.OnReconcileError(set, error, ukInsert, action);
  EXPECT_EQ(action, TReconcileAction::raCancel);
  EXPECT_TRUE(backEnd.messages.empty());
  Type("", "x", "");
  EXPECT_TRUE(MessageOf<Exception>([&] { set.Post(); }).ends_with("\r\nCODE,QTY"));
}

TEST_F(DbPost, ARetriedPostHasWhatWasTyped) {
  set.OnPostError = TKovraDbPost::HandlePostError;
  Type("A001", "x", "1");
  set.Post();
  Type("A001", "y", "2");
  backEnd.steps.emplace_back([](TForm& shown) {
    auto& form = dynamic_cast<TPostErrorForm&>(shown);
    form.ActionGroup.Choose(2);
    form.UpdateData.SelectCell(1, 1);
    form.UpdateData.TypeText("A002");
    form.PressEnter();
  });
  set.Post();
  EXPECT_EQ(set.FieldByName("CODE").AsString(), "A002");
  EXPECT_EQ(set.RecordCount(), 2);
  Type("A001", "z", "3");
  EXPECT_THROW(set.Post(), EAbort) << "nobody answers";
  EXPECT_EQ(set.FieldByName("NAME").AsString(), "z");
}

}  // namespace
}  // namespace kvshare
