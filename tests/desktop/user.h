// A user in front of the windows: what he sees, by the toolkit's widgets, and what his mouse and
// keys do.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/toolkit.h"

namespace kvshare {

class User {
 public:
  // The window that he works with; `action` runs once it is shown, in its own loop. A window that
  // it leaves open is closed by Esc, so that no test hangs.
  template <typename Show>
  static auto With(Show show, std::function<void(User&)> action) {
    QTimer::singleShot(0, [action = std::move(action)] {
      User user(*QApplication::activeModalWidget());
      action(user);
      if (user.window_ != nullptr && user.window_->isVisible()) user.Key(Qt::Key_Escape);
    });
    return show();
  }

  // What he does with the box that comes next, with its text.
  static void AtNextBox(std::function<void(User&, std::string)> action) {
    QTimer::singleShot(0, [action = std::move(action)] {
      User box(*QApplication::activeModalWidget());
      EXPECT_EQ(box.window_->objectName(), "MessageBox");
      action(box, box.Find<QLabel>("Text").text().toStdString());
      if (box.window_->isVisible()) box.window_->close();
    });
  }

  explicit User(QWidget& window) : window_(&window) {}

  QWidget& Window() const { return *window_; }

  template <typename Widget>
  Widget& Find(const char* name) const {
    auto* found = window_->findChild<Widget*>(name);
    if (found == nullptr) throw std::runtime_error(std::string("no widget ") + name);
    return *found;
  }

  // A key goes to the widget that has the keyboard; a letter as an input method sends it.
  void Key(Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QTest::keyClick(Focus(), key, with);
    QCoreApplication::processEvents();  // a cell takes what was typed a moment later
  }
  void Type(std::string_view cp874) {
    for (const QChar letter : desktop::Shown(cp874)) {
      QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, letter);
      QApplication::sendEvent(Focus(), &press);
    }
  }
  void Click(const char* name) { QTest::mouseClick(&Find<QAbstractButton>(name), Qt::LeftButton); }
  void ClickRadio(const char* group, int index) {
    QTest::mouseClick(Radios(group)[static_cast<std::size_t>(index)], Qt::LeftButton, {}, {4, 8});
  }
  void ClickCell(const char* grid, int row, int col) {
    auto& view = Find<QTableView>(grid);
    const QPoint middle = view.visualRect(view.model()->index(row, col)).center();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, middle);
  }

  std::vector<QRadioButton*> Radios(const char* group) const {
    const auto found = Find<QGroupBox>(group).findChildren<QRadioButton*>();
    return {found.begin(), found.end()};
  }
  // The name of the control that has the keyboard.
  std::string FocusName() const {
    const QWidget* widget = Focus();
    while (widget != window_ && widget->parentWidget() != window_) widget = widget->parentWidget();
    return widget->objectName().toStdString();
  }

  // What a table shows, its headings first: cells parted by `|`, rows by a line end.
  std::string TableShown(const char* grid) const {
    const auto& view = Find<QTableView>(grid);
    const QAbstractItemModel& cells = *view.model();
    QString shown;
    for (int row = -1; row < cells.rowCount(); ++row) {
      shown += row < 0 ? "" : cells.headerData(row, Qt::Vertical).toString();
      for (int col = 0; col < cells.columnCount(); ++col) {
        shown += "|" + (row < 0 ? cells.headerData(col, Qt::Horizontal).toString()
                                : cells.index(row, col).data().toString());
      }
      shown += "\n";
    }
    return shown.toStdString();
  }

 private:
  // A window that another has covered gets the keyboard back a moment later.
  QWidget* Focus() const {
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
    QWidget* focus = QApplication::focusWidget();
    return focus != nullptr && focus->window() == window_ ? focus : window_;
  }

  QWidget* window_;
};

}  // namespace kvshare
