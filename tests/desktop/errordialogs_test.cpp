// The two error dialogs as windows, against the same forms without a display.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QScrollBar>

#include "desktop/windows.h"
#include "kvshare/database/posterror.h"
#include "kvshare/database/recerror.h"
#include "kvshare/rtl/cp874.h"
#include "tests/database/refused.h"
#include "tests/desktop/shot.h"
#include "tests/desktop/user.h"

namespace kvshare {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kOthersChange = "ผู้อื่นแก้ไขข้อมูลนี้ก่อนแล้ว"_th;

// What the form says that its table has, as User::TableShown writes it.
std::string TableOf(const TStringGrid& grid) {
  std::string text;
  for (int row = 0; row < grid.RowCount(); ++row) {
    if (row > 0) text += grid.Cells(0, row);
    for (int col = 1; col < grid.ColCount(); ++col) text += "|" + grid.Cells(col, row);
    text += "\n";
  }
  return Cp874ToUtf8(text);
}

// At each side of the area, on one of the screen's pixels that are nearest to it.
void ExpectBorder(const User& user, const char* name) {
  const auto& area = user.Find<QWidget>(name);
  const QImage picture = user.Window().grab().toImage();
  const double scale = picture.devicePixelRatio();
  const QRectF place(area.mapTo(&user.Window(), QPointF()) * scale, area.size() * scale);
  const QRgb border = area.palette().window().color().darker(140).lighter(108).rgb();
  const auto isBorder = [&](QPointF at, QPointF inwards) {
    for (const double step : {-1.0, 0.0, 1.0}) {
      if (picture.pixel((at + step * inwards).toPoint()) == border) return true;
    }
    return false;
  };
  EXPECT_TRUE(isBorder({place.left(), place.center().y()}, {1, 0})) << name << " on the left";
  EXPECT_TRUE(isBorder({place.right() - 1, place.center().y()}, {1, 0})) << name << " on the right";
  EXPECT_TRUE(isBorder({place.center().x(), place.top()}, {0, 1})) << name << " above";
  EXPECT_TRUE(isBorder({place.center().x(), place.bottom() - 1}, {0, 1})) << name << " below";
}

class ErrorDialogs : public testing::Test {
 protected:
  ErrorDialogs() { set.server = {{"QTY", "7"}}; }

  template <typename Form>
  Form Made() {
    if constexpr (std::is_same_v<Form, TPostErrorForm>) {
      return Form(set, EDatabaseError("Key violation."));
    } else {
      return Form(set, TUpdateKind::ukModify, EReconcileError(kOthersChange, "row 3", 1, 0));
    }
  }

  // Every action with both check boxes, the window beside a form that nobody shows.
  template <typename Form>
  void CompareAll() {
    THeadlessInterface nobody;
    const TUseInterface without(nobody);
    Form model = Made<Form>();
    nobody.steps.emplace_back([&](TForm&) {
      const TUseInterface with(windows);
      Form form = Made<Form>();
      User::With(
          [&] { return form.ShowModal(); },
          [&](User& user) {
            for (int i = 0; i < model.ActionGroup.Items().Count(); ++i) {
              user.ClickRadio("ActionGroup", i);
              model.ActionGroup.Choose(i);
              for (const char* box :
                   {"ConflictsOnly", "ChangedOnly", "ConflictsOnly", "ChangedOnly"}) {
                user.Click(box);
                (box == std::string_view("ChangedOnly") ? model.ChangedOnly : model.ConflictsOnly)
                    .Click();
                SCOPED_TRACE(model.ActionGroup.Items()[i] + " " + box);
                EXPECT_EQ(user.TableShown("UpdateData"), TableOf(model.UpdateData));
                EXPECT_TRUE(user.Radios("ActionGroup")[static_cast<std::size_t>(i)]->isChecked());
                EXPECT_EQ(form.ActionGroup.ItemIndex(), model.ActionGroup.ItemIndex());
              }
            }
          });
    });
    model.Create();
    model.ShowModal();
  }

  std::string Value(std::string_view field) const { return set.FieldByName(field).AsString(); }

  Refused set;
  desktop::WindowsInterface windows;
  TUseInterface use{windows};
};

TEST_F(ErrorDialogs, ShowWhatTheFormSaysForEveryActionAndCheckBox) {
  CompareAll<TReconcileErrorForm>();
  CompareAll<TPostErrorForm>();
}

TEST_F(ErrorDialogs, StandWhereTheyAreDesigned) {
  struct Place {
    const char* name;
    QRect where;
  };
  const Place places[] = {
      {"IconImage", {12, 12, 34, 34}},      {"ErrorMsg", {56, 52, 342, 71}},
      {"ActionGroup", {410, 10, 102, 113}}, {"UpdateData", {9, 140, 504, 131}},
      {"OKBtn", {350, 281, 75, 25}},        {"CancelBtn", {438, 281, 75, 25}},
  };
  TReconcileErrorForm form = Made<TReconcileErrorForm>();
  User::With(
      [&] { return form.ShowModal(); },
      [&](User& user) {
        EXPECT_EQ(user.Window().size(), QSize(527, 311));
        EXPECT_EQ(user.Window().minimumSize(), user.Window().maximumSize()) << "nobody resizes it";
        EXPECT_EQ(user.Window().windowTitle(), "Update Error - CUSTOMERS");
        const QSize screen = QApplication::primaryScreen()->size();
        const QSize left = (screen - user.Window().frameGeometry().size()) / 2;
        EXPECT_EQ(user.Window().pos(),
                  QPoint(std::max(0, left.width()), std::max(0, left.height())));
        for (const Place& place : places) {
          EXPECT_EQ(user.Find<QWidget>(place.name).geometry(), place.where) << place.name;
        }
        for (const char* label : {"UpdateTypeLabel", "UpdateType", "ErrorLabel"}) {
          EXPECT_FALSE(user.Find<QLabel>(label).text().isEmpty()) << label;
        }
        // No caption is cut.
        for (const char* name : {"ConflictsOnly", "ChangedOnly", "OKBtn", "CancelBtn"}) {
          const auto& button = user.Find<QAbstractButton>(name);
          const int beside = button.inherits("QCheckBox") ? 20 : 10;
          EXPECT_LE(button.fontMetrics().horizontalAdvance(button.text()) + beside, button.width())
              << name;
        }
        for (const QRadioButton* item : user.Radios("ActionGroup")) {
          EXPECT_GE(item->height(), item->fontMetrics().height() - 1) << item->text().toStdString();
          EXPECT_TRUE(item->parentWidget()->rect().contains(item->geometry()));
        }
        auto& grid = user.Find<QTableView>("UpdateData");
        EXPECT_FALSE(grid.horizontalScrollBar()->isVisible());
        EXPECT_EQ(grid.verticalHeader()->width(), 64);
        for (int col = 0; col < 3; ++col) {
          EXPECT_EQ(grid.columnWidth(col), form.UpdateData.ColWidths(col + 1) + 1);
        }
        EXPECT_GE(grid.viewport()->width(), grid.horizontalHeader()->length());
        EXPECT_TRUE(grid.verticalScrollBar()->isVisible());
        user.Click("ConflictsOnly");  // one row is left, and what the scroll bar took is shared
        QCoreApplication::processEvents();
        EXPECT_FALSE(grid.verticalScrollBar()->isVisible());
        EXPECT_EQ(grid.columnWidth(0), (504 - 2 * grid.frameWidth() - 64) / 3);
      });
}

// For people to look at: a conflict as an accountant meets it.
TEST_F(ErrorDialogs, InThai) {
  constexpr std::string_view kLabels[] = {"รหัส"_th, "ชื่อลูกค้า"_th, "จำนวน"_th, "หมายเหตุ"_th,
                                          "รูปภาพ"_th};
  for (int i = 0; i < 5; ++i) set.Fields(i).SetDisplayLabel(kLabels[i]);
  set.FieldByName("NAME").SetAsString("ร้านบ้านสวนวัสดุภัณฑ์"_th);
  set.server["NAME"] = "ร้านบ้านสวน"_th;
  const EReconcileError refused("Record not found or changed by another user", "", 1, 0);
  TReconcileErrorForm form(set, ukModify, refused);
  User::With([&] { return form.ShowModal(); },
             [&](User& user) {
               user.ClickRadio("ActionGroup", 4);
               EXPECT_THAT(user.TableShown("UpdateData"),
                           HasSubstr("ชื่อลูกค้า|ร้านบ้านสวนวัสดุภัณฑ์|ร้านบ้านสวน|ร้านบ้านสวน"));
               for (const char* area : {"ErrorMsg", "UpdateData"}) ExpectBorder(user, area);
               Shoot(user.Window(), "reconcile-dialog");
             });
}

TEST_F(ErrorDialogs, AKeyboardIsEnough) {
  TReconcileErrorForm form = Made<TReconcileErrorForm>();
  User::With([&] { return form.ShowModal(); },
             [&](User& user) {
               std::vector<std::string> stops;
               for (int i = 0; i < 7; ++i) {
                 stops.push_back(user.FocusName());
                 EXPECT_EQ(form.ActiveControl()->Name(), stops.back());
                 user.Key(Qt::Key_Tab);
               }
               EXPECT_THAT(stops, ElementsAre("ActionGroup", "UpdateData", "ConflictsOnly",
                                              "ChangedOnly", "OKBtn", "CancelBtn", "ErrorMsg"));
               EXPECT_EQ(user.FocusName(), "ActionGroup");
               user.Key(Qt::Key_Down);
               user.Key(Qt::Key_Down);
               EXPECT_EQ(form.ActionGroup.ItemIndex(), 2) << "Correct, by arrows";
               user.Key(Qt::Key_Tab);
               user.Key(Qt::Key_Down);  // the second row, the modified value
               user.Key(Qt::Key_F2);
               user.Type("น้ำ"_th);
               user.Key(Qt::Key_Return);  // ends the typing, not the dialog
               EXPECT_THAT(user.TableShown("UpdateData"), HasSubstr("\nName|น้ำ|"));
               user.Key(Qt::Key_Return);
             });
  EXPECT_EQ(form.ModalResult, mrOk);
  EXPECT_EQ(Value("NAME"), "น้ำ"_th);
}

TEST_F(ErrorDialogs, EveryWayOut) {
  struct Case {
    const char* why;
    std::function<void(User&)> act;
    TReconcileAction want;
  };
  const Case cases[] = {
      {"Enter", [](User& user) { user.Key(Qt::Key_Return); }, TReconcileAction::raSkip},
      {"OK by mouse", [](User& user) { user.Click("OKBtn"); }, TReconcileAction::raSkip},
      {"OK of another action",
       [](User& user) {
         user.ClickRadio("ActionGroup", 4);
         user.Click("OKBtn");
       },
       TReconcileAction::raMerge},
      {"OK by the space bar",
       [](User& user) {
         user.Find<QWidget>("OKBtn").setFocus();
         user.Key(Qt::Key_Space);
       },
       TReconcileAction::raSkip},
      {"Esc", [](User& user) { user.Key(Qt::Key_Escape); }, TReconcileAction::raAbort},
      {"Cancel by mouse", [](User& user) { user.Click("CancelBtn"); }, TReconcileAction::raAbort},
      {"Enter on Cancel",
       [](User& user) {
         user.Find<QWidget>("CancelBtn").setFocus();
         user.Key(Qt::Key_Return);
       },
       TReconcileAction::raAbort},
      {"the close box", [](User& user) { user.Window().close(); }, TReconcileAction::raAbort},
  };
  for (const Case& c : cases) {
    const TReconcileAction action = User::With(
        [&] {
          return HandleReconcileError(set, TUpdateKind::ukModify,
                                      EReconcileError("refused", "", 1, 0));
        },
        c.act);
    EXPECT_EQ(action, c.want) << c.why;
  }
}

// A text that a field refuses is reported in a box over the dialog, which stays with all that was
// typed.
TEST_F(ErrorDialogs, ARefusedTextIsToldAndNothingTypedIsLost) {
  TPostErrorForm form = Made<TPostErrorForm>();
  form.Create();
  User::With([&] { return form.Ask(); },
             [&](User& user) {
               user.ClickRadio("ActionGroup", 2);  // Retry
               user.ClickCell("UpdateData", 2, 0);
               user.Type("12x");
               User::AtNextBox([](User& box, const std::string& text) {
                 EXPECT_EQ(text, "CUSTOMERS: Invalid value for field 'QTY'");
                 box.Key(Qt::Key_Return);
               });
               user.Click("OKBtn");  // while the cell is still being typed into
               EXPECT_TRUE(user.Window().isVisible());
               EXPECT_THAT(user.TableShown("UpdateData"), HasSubstr("QTY|12x"));
               user.ClickCell("UpdateData", 2, 0);
               user.Type("12");
               user.Key(Qt::Key_Return);
               user.Click("OKBtn");
             });
  EXPECT_EQ(form.ModalResult, mrOk);
  EXPECT_EQ(Value("QTY"), "12");
}

TEST_F(ErrorDialogs, ScreenReadersHaveNamesForAll) {
  TReconcileErrorForm form = Made<TReconcileErrorForm>();
  User::With([&] { return form.ShowModal(); },
             [&](User& user) {
               EXPECT_EQ(user.Find<QWidget>("ErrorMsg").accessibleName(), "Error Message");
               EXPECT_EQ(user.Find<QWidget>("UpdateData").accessibleName(), "Update Data");
               EXPECT_EQ(user.Find<QWidget>("IconImage").accessibleName(), "Error");
               user.ClickCell("UpdateData", 0, 0);
               user.Type("x");
               EXPECT_EQ(user.Window().findChild<QLineEdit*>(), nullptr) << "Skip lets nobody type";
             });
}

}  // namespace
}  // namespace kvshare
