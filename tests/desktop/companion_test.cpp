// The dialogs of the companion library as windows, through the bridge.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <cmath>

#include "desktop/windows.h"
#include "kvshare/platform/kovrawin.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/settings/datetimeformat.h"
#include "kvshare/start/package.h"
#include "tests/desktop/shot.h"
#include "tests/desktop/user.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class CompanionWindows : public testing::Test {
 protected:
  CompanionWindows() {
    Initialize();
    SetDefaultDateTimeFormat();
  }
  ~CompanionWindows() override { Finalize(); }

  // Whether the whole of each label and button can be read.
  static void ExpectNothingCut(const User& user) {
    for (const QLabel* label : user.Window().findChildren<QLabel*>()) {
      if (label->parentWidget() != &user.Window()) continue;
      EXPECT_TRUE(user.Window().rect().contains(label->geometry())) << label->text().toStdString();
    }
    for (const auto* button : user.Window().findChildren<QAbstractButton*>()) {
      EXPECT_LE(button->fontMetrics().horizontalAdvance(button->text()), button->width())
          << button->text().toStdString();
    }
  }

  const TemporaryHome home;
  const WithVariable era{"KVSHARE_ERA", "543"};
  desktop::WindowsInterface windows;
  TUseInterface use{windows};
};

TEST_F(CompanionWindows, ACalendarByKeys) {
  const TDateTime given = EncodeDate(2026, 11, 24);
  const TDateTime chosen =
      User::With([&] { return ExecCalendar(0, given); },
                 [](User& user) {
                   ExpectNothingCut(user);
                   EXPECT_EQ(user.FocusName(), "Days");
                   EXPECT_EQ(user.Find<QLabel>("MonthLabel").text(), "พฤศจิกายน 2569");
                   Shoot(user.Window(), "calendar");
                   user.Key(Qt::Key_Right);
                   user.Key(Qt::Key_Return);
                 });
  EXPECT_EQ(chosen, EncodeDate(2026, 11, 25));
  EXPECT_EQ(User::With([&] { return ExecCalendar(0, given); },
                       [](User& user) { user.Key(Qt::Key_Escape); }),
            given);
  EXPECT_EQ(User::With([&] { return ExecCalendar(0, given); },
                       [](User& user) {
                         user.Click("PrevMonthBtn");
                         user.Key(Qt::Key_Space);  // on the day: chosen
                       }),
            EncodeDate(2026, 10, 24));
}

TEST_F(CompanionWindows, ACalculatorByKeysAndByMouse) {
  EXPECT_EQ(User::With([] { return ExecCalculator(0, 0); },
                       [](User& user) {
                         ExpectNothingCut(user);
                         user.Find<QLineEdit>("Expression").selectAll();
                         user.Type("0.1+0.2");
                         user.Key(Qt::Key_Return);
                         Shoot(user.Window(), "calculator");
                         user.Key(Qt::Key_Return);
                       }),
            0.3);
  EXPECT_EQ(User::With([] { return ExecCalculator(0, 7); },
                       [](User& user) {
                         for (const char* key : {"Key1", "Key2", "KeyTimes", "Key3", "OKBtn"}) {
                           user.Click(key);
                         }
                       }),
            36);
}

TEST_F(CompanionWindows, ThePromptsAndTheTexts) {
  TDateTime date = EncodeDate(2026, 11, 24);
  const auto typeDate = [](User& user) {
    ExpectNothingCut(user);
    user.Find<QLineEdit>("DateEdit").selectAll();
    user.Type("1/2/2570");
    user.Key(Qt::Key_Return);
  };
  EXPECT_EQ(User::With([&] { return ExecGetDate(0, "วันที่"_th, date); }, typeDate), 1);
  EXPECT_EQ(date, EncodeDate(2027, 2, 1));

  std::int32_t year = 2569;
  EXPECT_EQ(User::With([&] { return ExecGetYear(0, "ปี"_th, year); },
                       [](User& user) {
                         ExpectNothingCut(user);
                         user.Key(Qt::Key_Return);
                       }),
            1);
  EXPECT_EQ(year, 2569);

  const std::string sql = User::With([] { return ExecReadSQLCmd(0, "SELECT 1"); },
                                     [](User& user) {
                                       auto& memo = *user.Window().findChild<QPlainTextEdit*>();
                                       memo.setFocus();
                                       memo.moveCursor(QTextCursor::End);
                                       user.Key(Qt::Key_Return);
                                       user.Type("FROM น้ำ"_th);
                                       user.Click("OKBtn");
                                     });
  EXPECT_EQ(sql, "SELECT 1\r\nFROM น้ำ"_th);
  User::With([] { return ExecAboutBox(0), 0; }, [](User& user) { ExpectNothingCut(user); });
}

}  // namespace
}  // namespace kvshare
