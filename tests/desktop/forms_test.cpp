// Forms as windows: places, states, and what a user and a program change under each other's eyes.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <climits>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

#include "desktop/formwindow.h"
#include "desktop/windows.h"
#include "kvshare/os/files.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/platform/win32.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/start/package.h"
#include "kvshare/ui/application.h"
#include "kvshare/ui/stdcontrols.h"
#include "tests/desktop/shot.h"
#include "tests/desktop/user.h"
#include "tests/support.h"

namespace kvshare {
namespace {

class Ledger : public TForm {
 public:
  Ledger() : TForm(nullptr, "Ledger") {
    SetCaption("สมุดรายวัน"_th);
    SetBounds({100, 80, 300, 200});
    bar.SetBounds({10, 20, 100, 30});
    edit.SetBounds({10, 60, 100, 21});
    note.SetBounds({10, 90, 150, 60});
  }
  TButton bar{this, "TBarMain"};
  TEdit edit{this, "Amount"};
  TMemo note{this, "Note"};
};

QWidget& WindowOf(const TForm& form) {
  return dynamic_cast<desktop::FormWindow&>(*form.Window()).Widget();
}

class FormWindows : public testing::Test {
 protected:
  static void Settle() {
    for (int i = 0; i < 3; ++i) Application.ProcessMessages();
  }

  desktop::WindowsInterface windows;
  TUseInterface use{windows};
};

TEST_F(FormWindows, WindowAndFormHaveOnePlace) {
  Ledger form;
  form.Show();
  QWidget& window = WindowOf(form);
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(window.pos(), QPoint(100, 80));
  EXPECT_EQ(window.windowTitle(), "สมุดรายวัน");

  form.SetBounds({-20, 30, 420, 240});  // the program
  EXPECT_EQ(window.pos(), QPoint(-20, 30));
  EXPECT_EQ(window.size(), QSize(form.ClientWidth(), form.ClientHeight()));
  EXPECT_EQ(window.frameGeometry().width(), 420);

  window.move(50, 60);  // the user
  window.resize(333, 222);
  Settle();
  EXPECT_EQ(form.Left(), 50);
  EXPECT_EQ(form.Top(), 60);
  EXPECT_EQ(form.ClientWidth(), 333);
  EXPECT_EQ(form.ClientHeight(), 222);

  const TBounds before = form.Bounds();
  form.SetWindowState(TWindowState::wsMaximized);
  Settle();
  EXPECT_TRUE(window.isMaximized());
  EXPECT_GT(form.Width(), before.Width) << "the bounds are the work area's";
  window.setWindowState(Qt::WindowNoState);
  Settle();
  EXPECT_EQ(form.WindowState(), TWindowState::wsNormal);
  EXPECT_EQ(form.Bounds(), before);
  form.SetBounds({INT_MAX, INT_MIN, -5, 0});  // any integers
  Settle();
}

TEST_F(FormWindows, TheSettingsStoreMovesRealWindows) {
  const TemporaryHome home;
  Initialize();
  {
    Ledger form;
    form.Show();
    WindowOf(form).move(77, 66);
    form.bar.SetLeft(40);
    Settle();
    MyKovraRegistry->SaveFormPosition(form);
    MyKovraRegistry->SaveLocation(form.bar);
  }
  {
    Ledger form;
    form.Show();
    MyKovraRegistry->SetFormPosition(form);
    MyKovraRegistry->SetLocation(form.bar, 0, 0);
    Settle();
    EXPECT_EQ(WindowOf(form).pos(), QPoint(77, 66));
    EXPECT_EQ(User(WindowOf(form)).Find<QWidget>("TBarMain").geometry(), QRect(40, 20, 100, 30));
    form.SetWindowState(TWindowState::wsMaximized);
    MyKovraRegistry->SaveFormPosition(form);
  }
  Ledger form;
  MyKovraRegistry->SetFormPosition(form);
  form.Show();
  Settle();
  EXPECT_TRUE(WindowOf(form).isMaximized());
  Finalize();
}

TEST_F(FormWindows, AWindowKeepsItsSizeFromStartToStart) {
  const TemporaryHome home;
  Initialize();
  {
    Ledger form;
    form.Show();
    form.SetBounds({70, 60, 444, 333});
    Settle();
    MyKovraRegistry->SaveFormPosition(form);
  }
  using Restore = std::function<void()>;
  const std::pair<const char*, std::function<void(TForm&, Restore)>> orders[] = {
      {"OnCreate", [](TForm& form, Restore restore) { form.OnCreate = std::move(restore); }},
      {"OnShow", [](TForm& form, Restore restore) { form.OnShow = std::move(restore); }},
      {"before", [](TForm&, const Restore& restore) { restore(); }},
      {"after",
       [](TForm& form, const Restore& restore) {
         form.Show();
         restore();
       }},
  };
  for (const auto& [order, restoreIn] : orders) {
    for (int start = 0; start < 2; ++start) {
      SCOPED_TRACE(order);
      Ledger form;
      restoreIn(form, [&form] { MyKovraRegistry->SetFormPosition(form); });
      form.Show();
      Settle();
      EXPECT_GT(form.Width(), form.ClientWidth()) << "there is a frame";
      EXPECT_EQ(form.Bounds(), (TBounds{70, 60, 444, 333}));
      EXPECT_EQ(WindowOf(form).frameGeometry(), QRect(70, 60, 444, 333));
      MyKovraRegistry->SaveFormPosition(form);
    }
  }
  Finalize();
}

TEST_F(FormWindows, AFormThatWasMaximisedBeforeItsWindowComesBack) {
  Ledger form;
  form.SetBounds({70, 60, 444, 333});
  form.SetWindowState(TWindowState::wsMaximized);
  EXPECT_EQ(form.Bounds(), windows.WorkArea());
  form.Show();
  Settle();
  EXPECT_TRUE(WindowOf(form).isMaximized());
  WindowOf(form).setWindowState(Qt::WindowNoState);
  Settle();
  EXPECT_EQ(form.Bounds(), (TBounds{70, 60, 444, 333}));
}

TEST_F(FormWindows, AWindowOutOfReachComesBack) {
  Ledger form;
  form.SetBounds({5000, 5000, 300, 200});  // where another screen was
  form.Show();
  EXPECT_TRUE(QApplication::primaryScreen()->geometry().contains(WindowOf(form).pos()));
  EXPECT_EQ(form.Left(), WindowOf(form).x());
}

TEST_F(FormWindows, TextsGoBothWays) {
  Ledger form;
  std::vector<std::string> typed;
  form.edit.OnChange = [&] { typed.push_back(form.edit.Text()); };
  form.Show();
  User user(WindowOf(form));
  auto& edit = user.Find<QLineEdit>("Amount");
  edit.setFocus();
  user.Type("12"_th);
  user.Type("\xE9");  // a tone mark
  EXPECT_EQ(typed, (std::vector<std::string>{"1", "12", "12\xE9"}));
  QKeyEvent other(QEvent::KeyPress, 0, Qt::NoModifier, QString::fromUtf8("é"));
  QApplication::sendEvent(&edit, &other);
  EXPECT_EQ(edit.text(), desktop::Shown("12\xE9")) << "a letter that cannot be kept is not taken";
  form.edit.OnChange = nullptr;
  form.edit.SetText("บาท"_th);
  form.edit.MaxLength = 4;
  form.edit.RightAligned = true;
  Settle();
  EXPECT_EQ(edit.text(), "บาท");
  user.Type("12");
  EXPECT_EQ(form.edit.Text(), "บาท1"_th);

  auto& note = user.Find<QPlainTextEdit>("Note");
  note.setFocus();
  user.Type("SELECT");
  user.Key(Qt::Key_Return);
  user.Type("1");
  EXPECT_EQ(form.note.Text(), "SELECT\r\n1");
  note.insertPlainText(QString::fromUtf8("é"));
  EXPECT_EQ(form.note.Text(), "SELECT\r\n1");
  EXPECT_EQ(note.toPlainText(), "SELECT\n1");
  form.note.SetText("<b>not bold</b>\r\n");
  Settle();
  EXPECT_EQ(note.toPlainText(), "<b>not bold</b>\n");
}

TEST_F(FormWindows, ControlsComeAndGoWhileTheWindowIsOpen) {
  Ledger form;
  auto extra = std::make_unique<TButton>(&form, "Extra");
  form.bar.OnClick = [&] { extra.reset(); };
  form.Show();
  User user(WindowOf(form));
  EXPECT_NE(user.Window().findChild<QPushButton*>("Extra"), nullptr);
  user.Click("TBarMain");
  Settle();
  EXPECT_EQ(user.Window().findChild<QPushButton*>("Extra"), nullptr);
  TCheckBox box(&form, "Box");
  box.SetCaption("Posted");
  form.bar.SetVisible(false);
  form.edit.SetEnabled(false);
  Settle();
  EXPECT_EQ(user.Find<QAbstractButton>("Box").text(), "Posted");
  EXPECT_TRUE(user.Find<QAbstractButton>("Box").isVisible());
  EXPECT_FALSE(user.Find<QWidget>("TBarMain").isVisible());
  EXPECT_FALSE(user.Find<QWidget>("Amount").isEnabled());
}

TEST_F(FormWindows, WhatAHandlerThrowsReachesTheUserOrTheProgram) {
  Ledger form;
  std::function<void()> thrown = [] { throw Exception("ยอดไม่เท่ากัน"_th); };
  form.bar.ModalResult = mrOk;
  form.bar.OnClick = [&] { thrown(); };
  User::With(
      [&] { return form.ShowModal(); },
      [&](User& user) {
        User::AtNextBox([](User&, const std::string& text) { EXPECT_EQ(text, "ยอดไม่เท่ากัน"); });
        user.Click("TBarMain");
        EXPECT_TRUE(user.Window().isVisible()) << "a button that has failed closes nothing";
        thrown = [] { throw EAbort("silent"); };
        user.Click("TBarMain");
        EXPECT_TRUE(user.Window().isVisible());
        thrown = [] {};
        user.Click("TBarMain");
      });
  EXPECT_EQ(form.ModalResult, mrOk);
  EXPECT_EQ(form.Window(), nullptr) << "a modal window is gone when it is answered";

  thrown = [] { throw std::runtime_error("no Exception of ours"); };
  const auto show = [&] {
    return User::With([&] { return form.ShowModal(); }, [](User& user) { user.Click("TBarMain"); });
  };
  EXPECT_THROW(show(), std::runtime_error);
}

TEST_F(FormWindows, TheMainFormOwnsTheDialogsAndEndsTheProgram) {
  Ledger main;
  Application.MainForm = &main;
  Ledger dialog;
  QTimer::singleShot(0, [&] {
    EXPECT_NE(Application.MainFormHandle(), 0u);
    User::With([&] { return dialog.ShowModal(); },
               [&](User& user) {
                 EXPECT_EQ(user.Window().windowHandle()->transientParent(),
                           WindowOf(main).windowHandle());
               });
    WindowOf(main).close();
  });
  Application.Run();
  EXPECT_FALSE(main.Showing());
}

TEST_F(FormWindows, AScreenIsCapturedAsItIsSeen) {
  const TemporaryHome home;
  TForm form(nullptr, "Dark");
  form.BorderStyle = TFormBorderStyle::bsNone;
  form.SetBounds({10, 10, 50, 40});
  form.Show();
  WindowOf(form).setStyleSheet("background: #0a141e");
  QTest::qWait(50);
  const TPicture picture = windows.CaptureScreen();
  const double scale = QApplication::primaryScreen()->devicePixelRatio();
  EXPECT_EQ(picture.width, qRound(windows.ScreenSize().Width * scale));
  const auto at = [&](int x, int y) {
    const int place = qRound(y * scale) * picture.width + qRound(x * scale);
    return picture.pixels[static_cast<std::size_t>(place)];
  };
  EXPECT_EQ(at(30, 30), (TPixel{0x1e, 0x14, 0x0a}));
  EXPECT_NE(at(200, 200), at(30, 30));
  TKovraWin32::SaveScreenImageToFile(R"(C:\screen.bmp)");
  EXPECT_TRUE(home.Has("screen.bmp"));
  EXPECT_THROW(TKovraWin32::SaveScreenImageToFile(R"(C:\no\screen.bmp)"), EInOutError);
}

}  // namespace
}  // namespace kvshare
