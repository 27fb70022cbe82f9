// Message boxes as windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QPushButton>
#include <QScrollBar>

#include "desktop/windows.h"
#include "kvshare/rtl/cp874.h"
#include "tests/desktop/shot.h"
#include "tests/desktop/user.h"

namespace kvshare {
namespace {

using testing::ElementsAre;
using enum TMsgDlgBtn;
using enum TMsgDlgType;

constexpr std::string_view kSure = "แน่ใจหรือ"_th;

class MessageWindows : public testing::Test {
 protected:
  static int Ask(TMsgDlgType type, TMsgDlgButtons buttons, const std::function<void(User&)>& user,
                 std::string_view text = kSure) {
    return User::With([&] { return MessageDlg(text, type, buttons, 0); }, user);
  }
  // From left to right.
  static std::vector<QPushButton*> Buttons(const User& user) {
    const auto found = user.Window().findChildren<QPushButton*>();
    std::vector<QPushButton*> buttons(found.begin(), found.end());
    std::ranges::sort(buttons, {}, [](const QPushButton* button) { return button->x(); });
    return buttons;
  }

  desktop::WindowsInterface windows;
  TUseInterface use{windows};
};

TEST_F(MessageWindows, EveryButtonInItsPlaceAndItsAnswer) {
  const TMsgDlgButtons all{mbHelp,  mbYesToAll, mbNoToAll, mbAll, mbIgnore, mbRetry,
                           mbAbort, mbCancel,   mbOK,      mbNo,  mbYes};
  const char* const captions[] = {"Yes",    "No",  "OK",        "Cancel",     "Abort", "Retry",
                                  "Ignore", "All", "No to All", "Yes to All", "Help"};
  const int results[] = {mrYes,   mrNo,     mrOk,  mrCancel,  mrAbort,
                         mrRetry, mrIgnore, mrAll, mrNoToAll, mrYesToAll};
  for (std::size_t i = 0; i < std::size(results); ++i) {
    const int answer = Ask(mtConfirmation, all, [&](User& user) {
      const auto buttons = Buttons(user);
      ASSERT_EQ(buttons.size(), std::size(captions));
      QTest::mouseClick(buttons.back(), Qt::LeftButton);  // help ends nothing
      EXPECT_EQ(buttons[i]->text().remove('&'), captions[i]);
      QTest::mouseClick(buttons[i], Qt::LeftButton);
    });
    EXPECT_EQ(answer, results[i]) << captions[i];
  }
}

TEST_F(MessageWindows, KeysAndTheCloseBox) {
  struct Case {
    TMsgDlgButtons buttons;
    int enter, esc;
  };
  const Case cases[] = {
      {{mbOK}, mrOk, mrOk},
      {{mbYes, mbNo}, mrYes, mrNo},
      {{mbYes, mbNo, mbCancel}, mrYes, mrCancel},
      {{mbAbort, mbRetry, mbIgnore}, mrRetry, mrNone},
      {{}, mrNone, mrNone},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Ask(mtConfirmation, c.buttons, [](User& user) { user.Key(Qt::Key_Return); }),
              c.enter);
    for (const bool byKey : {true, false}) {
      const int answer = Ask(mtConfirmation, c.buttons, [&](User& user) {
        byKey ? user.Key(Qt::Key_Escape) : static_cast<void>(user.Window().close());
        if (c.esc != mrNone || Buttons(user).empty()) return;
        EXPECT_TRUE(user.Window().isVisible()) << "nothing is answered by itself";
        user.Key(Qt::Key_A, Qt::AltModifier);
      });
      EXPECT_EQ(answer, c.esc == mrNone && c.enter == mrRetry ? mrAbort : c.esc);
    }
  }
}

TEST_F(MessageWindows, TextsAreShownAsTheyAre) {
  Ask(
      mtError, {mbOK},
      [](User& user) {
        EXPECT_EQ(user.Window().windowTitle(), "Error");
        EXPECT_EQ(user.Find<QLabel>("Text").text(), "พบข้อผิดพลาด\nน้ำ <b>x</b>");
        user.Key(Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text(), "พบข้อผิดพลาด\nน้ำ <b>x</b>");
        Shoot(user.Window(), "message-box");
      },
      "พบข้อผิดพลาด\r\nน้ำ <b>x</b>"_th);

  std::string longText;
  for (int line = 0; line < 500; ++line) longText += "statement " + std::string(300, 'x') + "\r\n";
  Ask(
      mtError, {mbOK},
      [](User& user) {
        const QSize screen = QApplication::primaryScreen()->availableSize();
        EXPECT_LE(user.Window().width(), screen.width());
        EXPECT_LE(user.Window().height(), screen.height()) << "its button can be reached";
        const QScrollBar& bar = *user.Window().findChild<QPlainTextEdit*>()->verticalScrollBar();
        user.Key(Qt::Key_PageDown);
        EXPECT_GT(bar.value(), 0);
        user.Key(Qt::Key_End);
        EXPECT_EQ(bar.value(), bar.maximum());
        user.Key(Qt::Key_Home);
        EXPECT_EQ(bar.value(), 0);
      },
      longText);
}

}  // namespace
}  // namespace kvshare
