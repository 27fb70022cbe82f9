#include "kvshare/database/errorform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/database/posterror.h"
#include "kvshare/database/recerror.h"
#include "kvshare/dates/dbdate.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/backend.h"
#include "tests/database/refused.h"
#include "tests/support.h"
#include "tests/ui/terminal.h"

namespace kvshare {
namespace {

using ::testing::ElementsAre;
using enum TFieldType;
using enum TReconcileAction;
using enum TUpdateKind;

std::string RowOf(const TUpdateErrorForm& form, int row) {
  std::string cells = form.UpdateData.Cells(0, row);
  for (int col = 1; col < form.UpdateData.ColCount(); ++col) {
    cells += "|" + form.UpdateData.Cells(col, row);
  }
  return cells;
}

std::string FieldsOf(const TUpdateErrorForm& form) {
  std::string names;
  for (int row = 1; row < form.UpdateData.RowCount(); ++row) {
    names += form.UpdateData.Cells(0, row) + " ";
  }
  return names;
}

std::string ActionsOf(const TUpdateErrorForm& form) {
  std::string actions;
  for (int i = 0; i < form.ActionGroup.Items().Count(); ++i) {
    actions += form.ActionGroup.Items()[i] + " ";
  }
  return actions;
}

void Choose(TUpdateErrorForm& form, std::string_view action) {
  const int index = form.ActionGroup.Items().IndexOf(action);
  ASSERT_TRUE(form.ActionGroup.Choose(index)) << action;
}

void Type(TUpdateErrorForm& form, int row, std::string_view text) {
  EXPECT_TRUE(form.UpdateData.SelectCell(1, row) && form.UpdateData.TypeText(text)) << text;
}

class ErrorForm : public testing::Test {
 protected:
  TReconcileAction Reconcile(TUpdateKind kind,
                             const std::function<void(TReconcileErrorForm&)>& user) {
    backEnd.steps.emplace_back(
        [user](TForm& form) { user(dynamic_cast<TReconcileErrorForm&>(form)); });
    return HandleReconcileError(set, kind, EReconcileError("refused", "row 3", 1, 0));
  }
  TDataAction Post(const std::function<void(TPostErrorForm&)>& user) {
    backEnd.steps.emplace_back([user](TForm& form) { user(dynamic_cast<TPostErrorForm&>(form)); });
    TDataAction action = TDataAction::daFail;
    return DoHandlePostError(set, EDatabaseError("Key violation."), action);
  }
  std::string Value(std::string_view field) const { return set.FieldByName(field).AsString(); }

  Refused set;
  THeadlessInterface backEnd;
  TUseInterface use{backEnd};
};

TEST_F(ErrorForm, DesignOfBoth) {
  TReconcileErrorForm reconcile;
  TPostErrorForm post;
  EXPECT_EQ(reconcile.Caption(), "Update Error");
  EXPECT_EQ(post.Caption(), "Post Error");
  for (TUpdateErrorForm* form : std::array<TUpdateErrorForm*, 2>{&reconcile, &post}) {
    form->Create();
    form->OnShow();
    EXPECT_EQ(form->ClientWidth(), 527);
    EXPECT_EQ(form->ClientHeight(), 311);
    EXPECT_EQ(form->BorderStyle, TFormBorderStyle::bsDialog);
    EXPECT_EQ(form->Position, TPosition::poScreenCenter);
    struct Row {
      const TControl& control;
      std::string_view caption;
      TBounds bounds;  // without a size where none matters
    };
    const Row rows[] = {
        {form->UpdateTypeLabel, "Update Type:", {57, 13, 0, 0}},
        {form->UpdateType, "", {134, 13, 0, 0}},
        {form->ErrorLabel, "Error Message:", {57, 33, 0, 0}},
        {form->IconImage, "", {12, 12, 34, 34}},
        {form->ErrorMsg, "", {56, 52, 342, 71}},
        {form->ActionGroup, " Reconcile Action ", {410, 10, 102, 113}},
        {form->UpdateData, "", {9, 140, 504, 131}},
        {form->ConflictsOnly, "Show conflicting fields only", {11, 282, 0, 0}},
        {form->ChangedOnly, "Show changed fields only", {185, 282, 0, 0}},
        {form->OKBtn, "OK", {350, 281, 75, 25}},
        {form->CancelBtn, "Cancel", {438, 281, 75, 25}},
    };
    for (const Row& row : rows) {
      TBounds bounds = row.control.Bounds();
      if (row.bounds.Width == 0) bounds.Width = bounds.Height = 0;
      EXPECT_EQ(bounds, row.bounds) << row.control.Name();
      EXPECT_EQ(row.control.Caption(), row.caption);
    }
    EXPECT_THAT(form->TabList(),
                ElementsAre(&form->ActionGroup, &form->UpdateData, &form->ConflictsOnly,
                            &form->ChangedOnly, &form->OKBtn, &form->CancelBtn, &form->ErrorMsg));
    EXPECT_EQ(form->DefaultButton(), &form->OKBtn);
    EXPECT_EQ(form->CancelButton(), &form->CancelBtn);
    EXPECT_EQ(form->UpdateData.ColCount(), 4);
    EXPECT_EQ(form->UpdateData.RowCount(), 2);
    EXPECT_TRUE(form->ErrorMsg.ReadOnly);
    EXPECT_TRUE(form->Rows().empty());
  }
}

TEST_F(ErrorForm, FillsItselfByTheKindOfChange) {
  struct Case {
    TUpdateKind kind;
    bool conflict;
    std::string headings;
    int width;
  };
  const Case cases[] = {
      {ukModify, false, "Modified Value|Original Value", 219},
      {ukModify, true, "Modified Value|Conflicting Value|Original Value", 145},
      {ukInsert, false, "Inserted Value", 439},
      {ukInsert, true, "Inserted Value|Conflicting Value", 219},
      {ukDelete, false, "Original Value", 439},
      {ukDelete, true, "Original Value|Conflicting Value", 219},
  };
  constexpr std::string_view kTypes[] = {"Modified", "Inserted", "Deleted"};
  for (const Case& c : cases) {
    set.server.clear();
    if (c.conflict) set.server["QTY"] = "7";
    Reconcile(c.kind, [&](TReconcileErrorForm& form) {
      EXPECT_EQ(form.Caption(), "Update Error - CUSTOMERS");
      EXPECT_EQ(form.UpdateType.Caption(), kTypes[static_cast<std::size_t>(c.kind)]);
      EXPECT_EQ(RowOf(form, 0), "Field Name|" + c.headings);
      EXPECT_EQ(ActionsOf(form),
                c.conflict ? "Skip Cancel Correct Refresh Merge " : "Skip Cancel Correct ");
      EXPECT_EQ(form.ActionGroup.ItemIndex(), 0);
      EXPECT_EQ(form.ConflictsOnly.Enabled(), c.conflict);
      EXPECT_EQ(form.ChangedOnly.Enabled(), c.kind != ukDelete);
      EXPECT_EQ(form.ErrorMsg.Text(), "refused\r\nrow 3");
      EXPECT_EQ(form.UpdateData.ColWidths(0), 64);
      EXPECT_EQ(form.UpdateData.ColWidths(form.UpdateData.ColCount() - 1), c.width);
      EXPECT_EQ(form.UpdateData.RowHeights(2), UserInterface().TextHeight("SWgjp") + 7);
      EXPECT_EQ(FieldsOf(form), "CODE Name QTY NOTE PICTURE ") << "not the calculated one";
    });
  }
}

TEST_F(ErrorForm, ShowsValuesByTheAction) {
  struct Case {
    std::string_view action, name, qty;
  };
  const Case cases[] = {
      {"Skip", "Name|new|<Unchanged>|old", "QTY|5|7|"},
      {"Cancel", "Name|<Unchanged>|<Unchanged>|old", "QTY|<Unchanged>|7|"},
      {"Correct", "Name|typed|<Unchanged>|old", "QTY|5|7|"},
      {"Refresh", "Name|<Unchanged>|<Unchanged>|old", "QTY|<Unchanged>|7|7"},
      {"Merge", "Name|new|<Unchanged>|old", "QTY|5|7|7"},
  };
  set.server["QTY"] = "7";
  Reconcile(ukModify, [&](TReconcileErrorForm& form) {
    Choose(form, "Correct");
    Type(form, 2, "typed");
    for (const Case& c : cases) {
      Choose(form, c.action);
      EXPECT_EQ(RowOf(form, 2), c.name) << c.action;
      EXPECT_EQ(RowOf(form, 3), c.qty) << c.action;
      EXPECT_EQ(RowOf(form, 5), "PICTURE|<Unchanged>|<Unchanged>|(Binary)");
      for (int col = 1; col <= 3; ++col) {
        EXPECT_TRUE(form.UpdateData.SelectCell(col, 1));
        EXPECT_EQ(form.UpdateData.Options.goEditing, c.action == "Correct" && col == 1);
      }
    }
    Choose(form, "Correct");
    Type(form, 2, "again");
    Choose(form, "Merge");
    EXPECT_FALSE(form.UpdateData.TypeText("y")) << "the cell is selected still";
  });
  Reconcile(ukDelete, [](TReconcileErrorForm& form) {
    Choose(form, "Correct");
    EXPECT_TRUE(form.UpdateData.SelectCell(1, 1));
    EXPECT_FALSE(form.UpdateData.TypeText("x")) << "a deleted record has no new values";
  });
}

TEST_F(ErrorForm, CheckBoxesHideFields) {
  set.server = {{"QTY", "7"}, {"CODE", "A001"}};
  Reconcile(ukModify, [](TReconcileErrorForm& form) {
    EXPECT_TRUE(form.ConflictsOnly.Click());
    EXPECT_EQ(FieldsOf(form), "CODE QTY ");
    EXPECT_TRUE(form.ChangedOnly.Click());
    EXPECT_EQ(FieldsOf(form), "QTY ");
    EXPECT_TRUE(form.ConflictsOnly.Click());
    EXPECT_EQ(FieldsOf(form), "Name QTY ");
    EXPECT_EQ(form.UpdateData.Objects(1, 1), &form.Rows()[1]) << "the row behind a cell";
    EXPECT_EQ(form.UpdateData.Objects(1, 3), nullptr);
  });
  set.server = {{"CODE", "A001"}};
  Reconcile(ukModify, [](TReconcileErrorForm& form) {
    form.ConflictsOnly.Click();
    form.ChangedOnly.Click();
    EXPECT_EQ(FieldsOf(form), "<No Records> ");
    EXPECT_EQ(RowOf(form, 1), "<No Records>|||");
    Choose(form, "Correct");
    Type(form, 1, "into nothing");
  });
}

TEST_F(ErrorForm, GivesTheActionAndWhatWasTyped) {
  struct Case {
    std::string_view action;
    bool ok;
    TReconcileAction want;
    std::string_view name;
  };
  const Case cases[] = {
      {"Skip", true, raSkip, "new"},         {"Cancel", true, raCancel, "new"},
      {"Refresh", true, raRefresh, "new"},   {"Merge", true, raMerge, "new"},
      {"Correct", true, raCorrect, "น้ำ"_th}, {"Correct", false, raAbort, "new"},
  };
  set.server["QTY"] = "7";
  for (const Case& c : cases) {
    set.FieldByName("NAME").SetAsString("new");
    const TReconcileAction action = Reconcile(ukModify, [&](TReconcileErrorForm& form) {
      Choose(form, "Correct");
      Type(form, 2, "น้ำ"_th);
      Choose(form, c.action);
      c.ok ? form.PressEnter() : form.PressEsc();
    });
    EXPECT_EQ(action, c.want) << c.action;
    EXPECT_EQ(Value("NAME"), c.name) << c.action;
    EXPECT_EQ(Value("QTY"), "5") << "was not typed into";
  }
  EXPECT_EQ(Reconcile(ukModify, [](TReconcileErrorForm&) {}), raAbort) << "nobody answers";
}

TEST_F(ErrorForm, ARefusedTextLeavesTheRecordAsItWas) {
  const auto typeBoth = [](TReconcileErrorForm& form) {
    Choose(form, "Correct");
    Type(form, 2, "typed");
    Type(form, 3, "12x");
  };
  const TReconcileAction action = Reconcile(ukModify, [&](TReconcileErrorForm& form) {
    typeBoth(form);
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { form.OKBtn.Click(); }),
              "CUSTOMERS: Invalid value for field 'QTY'");
    EXPECT_EQ(Value("NAME") + Value("QTY"), "new5");
    EXPECT_EQ(RowOf(form, 2), "Name|typed|old") << "nothing typed is lost";
    Type(form, 3, "12");
    form.OKBtn.Click();
  });
  EXPECT_EQ(action, raCorrect);
  EXPECT_EQ(Value("NAME") + Value("QTY"), "typed12");
  const auto okWithoutButton = [&](TReconcileErrorForm& form) {
    typeBoth(form);
    form.ModalResult = mrOk;
  };
  EXPECT_THROW(Reconcile(ukModify, okWithoutButton), EDatabaseError);
  EXPECT_EQ(Value("NAME") + Value("QTY"), "typed12");
}

// Dates as screens show them: in the Buddhist era. What is typed goes the same way back.
TEST_F(ErrorForm, ValuesAsTheFieldsShowThem) {
  YearBase = 543;
  for (const char* name : {"DAY", "TAXID"})
    set.FieldDefs().Add(name, name[0] == 'D' ? ftDate : ftString, 20);
  set.Close();
  set.CreateDataSet();
  TKovraDbDate::SetDateField(set, "DAY");
  set.FieldByName("TAXID").EditMask = "0-0000;0;_";
  set.Append();
  set.FieldByName("TAXID").SetAsString("12345");
  set.Post();
  set.MergeChangeLog();
  set.Edit();
  set.server = {{"DAY", "2024-02-29"}, {"TAXID", "54321"}};
  const auto open = [](const TReconcileErrorForm& form) {
    EXPECT_EQ(RowOf(form, 6), "DAY|<Unchanged>|29/02/2567|") << "Null is not today";
    EXPECT_EQ(RowOf(form, 7), "TAXID|<Unchanged>|5-4321|1-2345");
  };
  struct Case {
    int row;
    std::string_view typed, error, day, id;
  };
  const Case cases[] = {
      {6, "5/3/2567", "no error", "05/03/2567", "12345"},
      {6, "5/3/67", "Invalid input value.  Use escape key to abandon changes", "05/03/2567",
       "12345"},
      {6, "31/02/2567", "31/02/2567 วันที่ไม่ถูกต้อง", "05/03/2567", "12345"},
      {7, "2-3456", "no error", "05/03/2567", "23456"},
      {6, "", "no error", "", "23456"},
  };
  for (const Case& c : cases) {
    Reconcile(ukModify, [&](TReconcileErrorForm& form) {
      open(form);
      Choose(form, "Correct");
      Type(form, c.row, c.typed);
      EXPECT_EQ(Cp874ToUtf8(MessageOf<Exception>([&] { form.OKBtn.Click(); })), c.error);
      EXPECT_EQ(set.FieldByName("DAY").IsNull() ? "" : set.FieldByName("DAY").Text(), c.day);
      EXPECT_EQ(Value("TAXID"), c.id);
      form.PressEsc();
    });
  }
  YearBase = 0;
}

TEST_F(ErrorForm, OfAPost) {
  const TDataAction retry = Post([](TPostErrorForm& form) {
    EXPECT_EQ(form.Caption(), "Update Error - CUSTOMERS");
    EXPECT_EQ(form.UpdateType.Caption(), "Modified");
    EXPECT_EQ(form.ErrorMsg.Text(), "Key violation.\r\nKey violation.");
    EXPECT_EQ(ActionsOf(form), "Fail Abort Retry ");
    EXPECT_EQ(RowOf(form, 2), "Name|<Unchanged>|old");
    Choose(form, "Retry");
    EXPECT_EQ(RowOf(form, 2), "Name|new|old");
    Type(form, 2, "typed");
    Choose(form, "Abort");
    EXPECT_EQ(RowOf(form, 2), "Name|<Unchanged>|old");
    Choose(form, "Retry");
    EXPECT_EQ(RowOf(form, 2), "Name|typed|old");
    form.OKBtn.Click();
  });
  EXPECT_EQ(retry, TDataAction::daRetry);
  EXPECT_EQ(Value("NAME"), "typed");

  set.server["NAME"] = "theirs";
  const TDataAction abort = Post([](TPostErrorForm& form) {
    EXPECT_EQ(RowOf(form, 2), "Name|<Unchanged>|theirs|theirs");
    EXPECT_EQ(RowOf(form, 1), "CODE|<Unchanged>|<Unchanged>|A001");
    Choose(form, "Abort");
    EXPECT_EQ(RowOf(form, 2), "Name|<Unchanged>|theirs|old");
    form.OKBtn.Click();
  });
  EXPECT_EQ(abort, TDataAction::daAbort);
  EXPECT_EQ(Post([](TPostErrorForm& form) { form.OKBtn.Click(); }), TDataAction::daFail);
  EXPECT_EQ(Post([](TPostErrorForm& form) { form.CancelBtn.Click(); }), TDataAction::daAbort);
}

TEST_F(ErrorForm, AtATerminal) {
  const Terminal terminal("3\n2=สมศักดิ์\n3=1x\n\n3=12\n\n");
  TConsoleInterface console(terminal.Fd(), terminal.Fd());
  const TUseInterface talk(console);
  EXPECT_EQ(HandleReconcileError(set, ukModify, EReconcileError("refused", "", 1, 0)), raCorrect);
  EXPECT_EQ(Value("NAME"), "สมศักดิ์"_th);
  EXPECT_EQ(Value("QTY"), "12");
  const std::string shown = terminal.Shown();
  for (const char* part :
       {"== Update Error - CUSTOMERS ==\n", "Update Type: Modified\n", "2 | Name       | new ",
        "   1 (*) Skip\n", "CUSTOMERS: Invalid value for field 'QTY'"}) {
    EXPECT_NE(shown.find(part), std::string::npos) << part << shown;
  }
}

TEST(ErrorValueText, OfEveryKind) {
  EXPECT_EQ(ErrorValueText(Unassigned, ftBlob), "<Unchanged>");
  EXPECT_EQ(ErrorValueText(Null, ftString), "");
  EXPECT_EQ(ErrorValueText(Currency::FromRaw(125'000), ftBCD), "12.5");
  EXPECT_EQ(ErrorValueText("ยาว\r\n"_th, ftMemo), "ยาว\r\n"_th);
  EXPECT_EQ(ErrorValueText(Null, ftADT), "(ADT)");
  EXPECT_EQ(ErrorValueText(Null, ftArray), "(Array)");
  for (const TFieldType type : {ftBytes, ftVarBytes, ftBlob, ftGraphic, ftFmtMemo, ftParadoxOle,
                                ftDBaseOle, ftTypedBinary, ftCursor}) {
    EXPECT_EQ(ErrorValueText("x", type), "(Binary)");
  }
}

}  // namespace
}  // namespace kvshare
